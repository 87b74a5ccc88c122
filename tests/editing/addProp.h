#pragma once

class QString;
class RyNode;

/// A small prop, node and object of that name, which hangs on `above` and is in the scene of the program.
RyNode *ryAddProp(RyNode *above, const QString &name);
