#pragma once

#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"
#include "rycore/io/gltf/save/RyGltfTreePatch.h"

#include <memory>

class RyBone;
class RyFacetMesh;
struct RyMeshParts;

/// Writes what the edited figures of a file bind: the joints of their skins with inverse bind matrices, and the
/// influences of the parts whose weights or joints changed. Figures that nobody touched stay as they are, bit for bit;
/// a mesh that other nodes use too is copied first. Nodes must have been written.
class RyGltfSkinPatch
{
public:
    explicit RyGltfSkinPatch(RyGltfScenePatch &patch) : m_patch(patch), m_tree(patch.document) {}

    /// False with a reason when the document would not be valid.
    bool apply(QString *error);
    /// Whether weights, or which bones have some, are others than those that were read. `changed` gets the vertices.
    static bool weightsChanged(const RyGltfFigureSource &figure, std::vector<bool> *changed = nullptr);

private:
    struct Skin
    {
        const RyGltfSkinSource *source = nullptr;
        std::vector<int> joints;
        bool isOther = false;   // not the file's list
        bool isShifted = false; // joints have other places than in the file
    };
    struct Figure
    {
        const RyGltfFigureSource *source = nullptr;
        const RyFacetMesh *mesh = nullptr;
        std::shared_ptr<const RyMeshParts> parts;
        std::vector<RyBone *> bones;
        std::vector<Skin> skins; // in step with the source's
        std::unique_ptr<RyGltfInfluences> influences;
        std::vector<bool> isDirty; // parts whose influences are written
        std::vector<int> meshes;   // where parts are written
        bool isRebuilt = false;    // vertices and bind matrices are written anew
        bool isMoved = false;      // vertices of the scene are elsewhere than the file's
    };

    Figure plan(const RyGltfFigureSource &source) const;
    bool mustBeRebuilt(const RyGltfFigureSource &source, bool weightsAreOther) const;
    void keepJoints(Figure &figure) const;
    void addJoints(Figure &figure) const;
    Skin &skinFor(Figure &figure, const RyBone &bone) const;
    void findDirtyParts(Figure &figure, const std::vector<bool> &changed) const;
    void addNeededJoints(Figure &figure) const;
    size_t placeOfSkin(const Figure &figure, int skin) const;
    RyAffine toFigure(const Figure &figure, const Skin &skin) const;
    bool standsAbove(int node, const std::vector<int> &joints) const;
    void writeJoints(const Figure &figure);
    void separateMeshes(Figure &figure);
    void writeBinds(const Figure &figure);
    void writeInfluences(const Figure &figure);
    void writeVertices(const Figure &figure);
    void separateProp(const RyGltfFigureSource &source);
    void writeProp(const RyGltfFigureSource &source, int mesh);

    RyGltfScenePatch &m_patch;
    RyGltfTreePatch m_tree;
    std::vector<std::pair<const RyGltfFigureSource *, int>> m_props; // with other vertices, and their meshes
    std::map<int, std::vector<int>> m_users;                         // nodes by the mesh that they use
};

/// Appends a map as the sixteen numbers of a matrix accessor.
void ryGltfAppendMatrix(const RyAffine &map, std::vector<float> &values);
