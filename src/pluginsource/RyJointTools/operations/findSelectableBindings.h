#pragma once

#include <vector>

class RyBoneBinding;

/// For each binding the place of the one whose bone is selected in place of its own: that of the nearest selectable
/// node from its bone upwards, or of the topmost node below the skeleton where none is selectable. The binding itself
/// where nothing binds the node that is reached. Of several bindings of one bone it is the last.
std::vector<int> findSelectableBindings(const std::vector<RyBoneBinding *> &bindings);
