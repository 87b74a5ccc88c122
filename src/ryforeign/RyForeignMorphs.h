#pragma once

#include "ryforeign/RyForeignMorphPlan.h"

#include <cstdint>
#include <map>
#include <vector>

struct aiMesh;
struct aiNode;
class RyGltfDocument;

/// Writes the morphs of the meshes of one node: all primitives of a mesh have all of them, as the format wants it.
class RyForeignMorphs
{
public:
    RyForeignMorphs(const RyForeignInput &input, RyGltfDocument &document, const aiNode &node);

    /// `number`: of the mesh among those of the node. `firsts`: a corner for each vertex.
    void writeTargets(int mesh, int primitive, const aiMesh &source, unsigned number,
                      const std::vector<std::uint32_t> &firsts);
    void writeNames(int mesh, const QString &name);

private:
    std::vector<float> positionsOf(const aiMesh &source, int shape, const std::vector<std::uint32_t> &firsts) const;
    std::vector<float> normalsOf(const aiMesh &source, int shape, const std::vector<std::uint32_t> &firsts) const;
    int addDeltas(const std::vector<float> &deltas);

    const RyForeignInput &m_input;
    RyGltfDocument &m_document;
    RyForeignMorphPlan m_plan;
    std::map<size_t, int> m_zeros; // accessors by number of vertices
};
