#pragma once

#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/open/RyGltfFigureDraft.h"
#include "rycore/io/gltf/open/RyGltfMorphReader.h"
#include "rycore/io/gltf/open/RyGltfNames.h"

#include <QStringList>

#include <functional>
#include <map>
#include <optional>
#include <unordered_map>

class RyFacetMesh;
class RyModifier;
class RySkinBinding;
class RyWaiting;

/// Makes the nodes of a scene from a glTF document. The scene itself is touched only by `commit`, when everything is
/// there.
class RyGltfSceneReader
{
public:
    /// `unit`: centimetres per file unit, 0 to find it.
    RyGltfSceneReader(std::unique_ptr<RyGltfDocument> document, const QString &path, double unit);
    ~RyGltfSceneReader();

    /// False with a reason when a figure of the file makes no sense, without one when nobody wants the scene any more.
    /// `waiting`: may be null.
    bool build(QString *error, QStringList *messages, RyWaiting *waiting = nullptr);
    /// Top-level nodes, not yet in a scene.
    const std::vector<RyRef<RyNode>> &topLevelNodes() const { return m_tops; }
    std::unique_ptr<RyGltfOrigin> takeOrigin() { return std::move(m_origin); }

private:
    using Figure = RyGltfFigureDraft;

    void leaveOutRemoved();
    double findUnit() const;
    QString findUnusableNumbers() const;
    void draftFigures();
    int findCarrier(const RyGltfJointSet &joints, const std::vector<bool> &carries) const;
    void buildFigure(Figure &figure);
    void hangFigure(Figure &figure);
    RyGltfNodeSource carrierSource(const Figure &figure) const;
    void addSource(RyGltfNodeSource source);
    void noteNode(int node, RyNode &sceneNode);
    RyNode *sceneNodeAbove(int node) const;
    void buildMesh(Figure &figure);
    std::vector<RyGltfLinear> bringToNodePose(Figure &figure);
    void readMorphs(RyGltfFigureSource &source, RyShape &shape, int entry, const RyAffine &propFrame);
    std::vector<std::vector<RyAffine>> restToNodePose(const Figure &figure) const;
    std::vector<size_t> bonesToBind(const Figure &figure,
                                    const std::vector<RyGltfMeshBuilder::BoneWeights> &weights) const;
    void attachMesh(Figure &figure, std::vector<RyGltfMeshBuilder::BoneWeights> weights);
    bool attachSkin(Figure &figure);
    bool findParametric(Figure &figure, const std::vector<RyGltfMeshBuilder::BoneWeights> &weights);
    RyModifier *bindJoints(Figure &figure, std::vector<RyGltfMeshBuilder::BoneWeights> weights) const;
    void noteFits();
    RySkinBinding *bindBones(Figure &figure, int vertexCount,
                             std::vector<RyGltfMeshBuilder::BoneWeights> weights) const;
    void addPartGroups(RyFacetMesh &mesh, const RyMeshParts &parts);
    std::vector<bool> findProps() const;
    void buildProp(int index);
    RyGltfNodeSource propSource(int index, const RyNode *above) const;
    void hangProp(RyNode &prop, RyNode *above, int index);
    void buildPropMesh(const RyGltfNodeSource &source);
    void finishProp(RyGltfNodeSource &source);
    int placeBelow(const RyNode &above, int node) const;
    void setPropPose(RyGltfNodeSource &source) const;
    void readLinks();
    void readPicture(int image, RyMaterialLook &look);
    QString imageName(int image) const;
    void fillLooks(RyMeshParts &parts);
    QString figureName(const Figure &figure) const;
    QString partName(int mesh, int primitive) const;
    RyGltfNames &namesBeside(RyNode *above);
    void say(const QString &message);
    bool doLong(const std::function<void()> &work);
    bool isWanted();

    std::unique_ptr<RyGltfOrigin> m_origin;
    std::vector<int> m_preOrder;
    std::vector<RyAffine> m_nodeToWorld; // per file node: node space to world, in file units
    std::vector<Figure> m_figures;
    std::vector<RyRef<RyNode>> m_tops;
    std::vector<int> m_placeInOrder;                   // per file node: its place in m_preOrder
    std::vector<RyNode *> m_sceneNodeOf;               // per file node
    std::unordered_map<const RyNode *, int> m_placeOf; // of nodes of the scene, the place in m_preOrder
    std::vector<int> m_sourceOf;                       // likewise: its place among the origin's nodes, -1 for none
    std::optional<RyFigureExtras::Entries> m_entries;
    RyGltfNames m_topNames;
    std::map<RyNode *, RyGltfNames> m_namesBelow;
    std::vector<RyMaterialLook> m_looks;
    QStringList *m_messages = nullptr;
    RyWaiting *m_waiting = nullptr;
};
