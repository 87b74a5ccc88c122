#pragma once

#include <QString>

class RyScene;

/// One canonical text of a scene: every node in tree order with class, name, label, flags, place in the tree; every
/// property with default, current value and limits; rotation order, links, selection, face groups, selection maps;
/// joints with their parameters;
/// meshes and weight maps as counts, sums and hashes. Floats as %.9g. No paths, addresses or times: equal scenes give
/// equal texts.
QString rySceneDump(const RyScene &scene);
