#pragma once

#include "rycore/io/gltf/save/RyGltfInfluenceWriter.h"
#include "rycore/math/RyVec3.h"

#include <map>
#include <tuple>
#include <vector>

/// Writes influences into primitives of a document. Where two vertices of the scene would look alike to a reader, who
/// joins such vertices, the primitive's extras say that they are two.
class RyGltfMeshPatch
{
public:
    RyGltfMeshPatch(RyGltfDocument &document, const RyGltfInfluences &influences, const std::vector<RyVec3> &positions)
        : m_document(document), m_influences(influences), m_writer(influences), m_positions(positions)
    {}

    struct Part
    {
        int mesh = -1;
        int primitive = -1;
        const std::vector<int> *vertexOfSplit = nullptr;
        bool isWritten = true; // others are only there to be told apart from
    };
    /// Parts of one skin; `places` says where in its list of joints each bone of the influences stands.
    void writeInfluences(const std::vector<Part> &parts, const std::vector<int> &places);

private:
    /// Primitives with the same influences on the same vertices; they go on sharing.
    struct Sharers
    {
        std::vector<int> joints, weights; // accessors
        std::vector<Part> parts;
    };
    /// Where in a list of them those with the same joints, weights and vertices stand.
    using Places = std::map<std::tuple<std::vector<int>, std::vector<int>, const std::vector<int> &>, size_t>;
    void addToSharers(std::vector<Sharers> &groups, Places &known, const Part &part) const;
    void writeSharers(const Sharers &sharers, RyGltfInfluenceWriter::Part influences);
    std::vector<int> tellApart(const std::vector<Part> &parts) const;
    void writeTags(const Part &part, const std::vector<int> &tags);

    RyGltfDocument &m_document;
    const RyGltfInfluences &m_influences;
    RyGltfInfluenceWriter m_writer;
    const std::vector<RyVec3> &m_positions;
};
