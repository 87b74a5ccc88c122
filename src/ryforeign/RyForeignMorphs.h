#pragma once

#include "ryforeign/RyForeignInput.h"

#include <cstdint>
#include <map>
#include <vector>

struct aiAnimMesh;
struct aiMesh;
struct aiNode;
class RyGltfDocument;

/// The morphs of the meshes of one node, by name: all primitives of a mesh have all of them, as the format wants it.
class RyForeignMorphs
{
public:
    RyForeignMorphs(const RyForeignInput &input, RyGltfDocument &document, const aiNode &node);

    /// `firsts`: a corner for each vertex.
    void writeTargets(int mesh, int primitive, const aiMesh &source, const std::vector<std::uint32_t> &firsts);
    void writeNames(int mesh);

    /// Names of the morphs of a node's meshes, each once, in the order in which they become targets.
    static QStringList namesOf(const RyForeignInput &input, const aiNode &node);
    static QString nameOf(const aiMesh &mesh, unsigned morph);

private:
    int addDeltas(const std::vector<float> &deltas);

    const RyForeignInput &m_input;
    RyGltfDocument &m_document;
    QStringList m_names;
    std::vector<double> m_values;
    std::map<size_t, int> m_zeros; // accessors by number of vertices
};
