#pragma once

#include <string>

/// One primitive of the mesh of one node. `skin` is -1 where the node has none.
struct GltfPrimitive
{
    int node = -1;
    int mesh = -1;
    int primitive = -1;
    int skin = -1;
    std::string name; ///< of the mesh
};
