#pragma once

#include "rycore/io/gltf/extras/RyGltfFigureSource.h"

#include <string>

class RyGltfDocument;
struct RyMeshPart;

/// Brings directions of primitives, tangents and what targets add to normals and tangents, from the space that their
/// mesh had in the file to the one in which it is written. Numbers that come out as they were keep their accessors.
class RyGltfSpaceChange
{
public:
    /// `before`, `now`: from mesh space to figure space in centimetres.
    /// `carried`: how each vertex was turned and scaled in figure space since it was read; empty where none was.
    RyGltfSpaceChange(RyGltfDocument &document, const RyGltfFigureSource &figure, const RyAffine &before,
                      const RyAffine &now, const std::vector<RyGltfLinear> &carried = {})
        : m_document(document), m_figure(figure), m_before(before), m_toMesh(now.inverse()), m_carried(carried)
    {}

    /// Of a primitive that has the vertices of a part of the figure.
    void turnTangents(int mesh, int primitive, const RyMeshPart &part) const;
    /// The accessor of what a target of such a primitive adds to its "NORMAL" or "TANGENT", which must have been
    /// written; other attributes keep theirs.
    int turnDeltas(const std::string &attribute, int accessor, int mesh, int primitive, const RyMeshPart &part) const;

private:
    int attributeOf(int mesh, int primitive, const std::string &name) const;
    RyAffine changeOf(int vertex) const;
    int replace(int accessor, const std::vector<float> &before, const std::vector<float> &now) const;

    RyGltfDocument &m_document;
    const RyGltfFigureSource &m_figure;
    RyAffine m_before;
    RyAffine m_toMesh;
    std::vector<RyGltfLinear> m_carried;
};
