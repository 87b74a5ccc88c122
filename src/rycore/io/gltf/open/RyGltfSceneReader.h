#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/open/RyGltfFigureFinder.h"
#include "rycore/io/gltf/open/RyGltfMeshBuilder.h"
#include "rycore/io/gltf/open/RyGltfRest.h"

#include <QSet>
#include <QStringList>

#include <map>

class RyBone;
class RyFacetMesh;
class RyFigure;
class RySkinBinding;

/// Makes the nodes of a scene from a glTF document. The scene itself is touched only by `commit`, when everything is
/// there.
class RyGltfSceneReader
{
public:
    /// `unit`: centimetres per file unit, 0 to find it.
    RyGltfSceneReader(std::unique_ptr<RyGltfDocument> document, const QString &path, double unit);
    ~RyGltfSceneReader();

    void build(QStringList *messages);
    /// Top-level nodes, not yet in a scene.
    const std::vector<RyRef<RyNode>> &topLevelNodes() const { return m_tops; }
    std::unique_ptr<RyGltfOrigin> takeOrigin() { return std::move(m_origin); }

private:
    struct Figure
    {
        RyGltfJointSet joints;
        RyGltfRest rest;
        std::vector<RyBone *> bones;
        RyFigure *figure = nullptr;
        RyGltfFigureSource source;
        int entry = -1; // of what an earlier save stored
        std::unique_ptr<RyGltfMeshBuilder> mesh;
    };

    void leaveOutRemoved();
    double findUnit() const;
    void buildFigure(Figure &figure);
    void buildMesh(Figure &figure);
    void bringToNodePose(Figure &figure);
    void attachMesh(Figure &figure, std::vector<RyGltfMeshBuilder::BoneWeights> weights);
    RySkinBinding *bindBones(Figure &figure, int vertexCount,
                             std::vector<RyGltfMeshBuilder::BoneWeights> weights) const;
    void placeBones(Figure &figure);
    void addPartGroups(RyFacetMesh &mesh, const RyMeshParts &parts);
    void buildProps();
    int placeBelow(const RyNode &above, int node) const;
    void setPropPose(RyGltfNodeSource &source) const;
    void fillLooks(RyMeshParts &parts);
    void setPose(RyGltfNodeSource &source, float height);
    QString figureName(const Figure &figure) const;
    QString partName(int mesh, int primitive) const;
    QString uniqueName(const QString &wanted, QSet<QString> &taken) const;
    void say(const QString &message);

    std::unique_ptr<RyGltfOrigin> m_origin;
    std::vector<int> m_preOrder;
    std::vector<RyAffine> m_worldMaps; // file units
    std::vector<Figure> m_figures;
    std::vector<RyRef<RyNode>> m_tops;
    std::vector<RyNode *> m_sceneNodeOf; // per file node
    QSet<QString> m_topNames;
    std::map<RyNode *, QSet<QString>> m_namesBelow;
    std::vector<RyMaterialLook> m_looks;
    QStringList *m_messages = nullptr;
};
