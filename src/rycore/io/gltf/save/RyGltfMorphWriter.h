#pragma once

#include "rycore/io/gltf/save/RyGltfSpaceChange.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

class RyGltfDocument;
class RyMorph;
class RyShape;
struct RyMeshPart;

/// Writes the morphs of a shape into primitives of a document: deltas, names and values. All primitives of a mesh get
/// all morphs, as the format wants it.
class RyGltfMorphWriter
{
public:
    /// `toFigure`: from the mesh space of the primitives to figure space in centimetres.
    RyGltfMorphWriter(RyGltfDocument &document, const RyShape &shape, const RyAffine &toFigure);

    /// Where a primitive comes from, and how directions go along.
    struct Origin
    {
        const RyGltfFigureSource &figure;
        const RyGltfPartSource &part;
        const RyGltfSpaceChange &change;
    };

    /// All morphs of the shape as targets of a primitive. Those of its origin keep what the primitive had in its mesh,
    /// as far as that still holds; null for a primitive that no file had.
    void writeTargets(int mesh, int primitive, const RyMeshPart &part, const Origin *origin = nullptr);
    /// Renews the deltas of a primitive of the file that are others now.
    void renewTargets(int mesh, int primitive, const RyMeshPart &part, const Origin &origin);
    /// Morphs behind the targets that a primitive has.
    void appendTargets(int mesh, int primitive, const RyMeshPart &part, const std::vector<const RyMorph *> &morphs);
    /// Names of the morphs and their values, for a mesh of which only one node has to show them.
    void writeValues(int mesh);

    /// What is shown of a morph without a clip, as far as a file can say it.
    static float valueOf(const RyMorph &morph);
    /// The value, or the nearest that readers take.
    static float readable(float value);

private:
    using Target = std::vector<std::pair<std::string, int>>;
    std::vector<float> deltasOf(const RyMorph &morph, const RyMeshPart &part) const;
    bool isSame(int accessor, const RyMorph &morph, const RyMeshPart &part) const;
    int addDeltas(const RyMorph &morph, const RyMeshPart &part);
    Target targetAt(int mesh, int primitive, int number) const;
    static int numberIn(const RyGltfFigureSource &known, const RyMorph &morph, int node);

    RyGltfDocument &m_document;
    const RyShape &m_shape;
    RyAffine m_toFigure;
    RyAffine m_toMesh;
    std::map<size_t, int> m_zeros; // accessors by number of vertices
};
