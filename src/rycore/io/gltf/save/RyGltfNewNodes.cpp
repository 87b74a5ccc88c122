#include "rycore/io/gltf/save/RyGltfNewNodes.h"
#include "rycore/io/gltf/document/RyGltfMatrices.h"

#include "rycore/io/gltf/clips/RyGltfTransforms.h"
#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/save/RyGltfMeshPatch.h"
#include "rycore/io/gltf/save/RyGltfMorphWriter.h"
#include "rycore/io/gltf/save/RyGltfNewMesh.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"
#include "rycore/io/gltf/save/RyGltfTreePatch.h"
#include "rycore/io/gltf/save/RyGltfVertexPatch.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

namespace {

const RyFacetShape *shapeOf(const RyNode &node)
{
    return qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
}

const RyFacetMesh *meshOf(const RyNode &node)
{
    const RyFacetShape *shape = shapeOf(node);
    return shape ? shape->getFacetMesh() : nullptr;
}

RyGltfTransform transformOf(const RyAffine &local)
{
    bool exact = true;
    const RyGltfTransform transform = ryGltfTransformOf(local, {1, 1, 1}, &exact);
    return exact ? transform : ryGltfMatrixOf(local);
}

/// From the mesh space of a part of the file to figure space in centimetres.
RyAffine frameOf(const RyGltfOrigin &source, const RyGltfPartSource &part)
{
    for (const RyGltfFigureSource &figure : source.figures) {
        for (const RyGltfSkinSource &skin : figure.skins) {
            if (skin.skin == part.skin)
                return skin.toFigure;
        }
    }
    for (const RyGltfNodeSource &node : source.nodes) {
        if (node.node == part.node)
            return node.bind;
    }
    return RyAffine::fromScale(source.unit);
}

/// The bone's frame: joint space in file units to figure space in centimetres.
RyAffine bindOf(const RyNode &node, double unit)
{
    return RyAffine::fromScale(unit) * RyAffine::fromRotation(node.getOrientation()) *
           RyAffine::fromTranslation(node.getOrigin());
}

} // namespace

std::unique_ptr<RyGltfDocument> RyGltfNewNodes::writeScene(const RyScene &scene, QStringList *messages)
{
    constexpr double CentimetresPerMetre = 100.0;
    const auto *source = dynamic_cast<const RyGltfOrigin *>(scene.getOrigin());
    const double unit = source ? source->unitFactor() : CentimetresPerMetre;
    std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
    RyGltfNewNodes newNodes(*document, unit);
    for (const RyNode *top : scene.getTopLevelNodes())
        newNodes.addTree(*top);
    newNodes.storeExtras(messages);
    return document;
}

void RyGltfNewNodes::addTree(const RyNode &top)
{
    if (qobject_cast<const RyCamera *>(&top))
        return;
    if (ryFirstOwnBone(top)) {
        // The figure node carries the figure's own transform, its joints stand in figure space.
        const RyAffine own = RyAffine::fromScale(m_unit) * top.worldMap() * RyAffine::fromScale(1.0 / m_unit);
        const int node = m_document.addNode(top.getName(), transformOf(own), -1);
        m_nodeOf.add(&top, node);
        for (const RyNode *child : top.nodeChildrenIterator())
            addNode(*child, node, RyAffine::fromScale(m_unit));
        addSkinnedMesh(top);
    } else {
        addNode(top, -1, RyAffine::fromScale(m_unit));
    }
}

void RyGltfNewNodes::addMeshes(const RyGltfScenePatch &patch)
{
    m_nodeOf = patch.nodeOf;
    for (const auto &[node, index] : patch.added) {
        if (ryFirstOwnBone(*node))
            addSkinnedMesh(*node);
        else if (meshOf(*node))
            addMeshOf(*node, index, patch.edits.at(index).bind);
    }
}

void RyGltfNewNodes::addNode(const RyNode &root, int rootParent, const RyAffine &rootParentBind)
{
    struct Pending
    {
        const RyNode *node;
        int parent;
        RyAffine parentBind;
    };
    std::vector<Pending> pending{{&root, rootParent, rootParentBind}};
    std::vector<const RyNode *> figures; // that hang on something
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        const RyAffine bind = bindOf(*next.node, m_unit);
        const RyAffine localPose = next.node->getNodeParent() && !next.node->inheritsScale()
                                       ? next.node->figureMap() * next.node->getNodeParent()->figureMap().inverse()
                                       : next.node->getLocalMap();
        const int index = m_document.addNode(next.node->getName(),
                                             transformOf(bind * localPose * next.parentBind.inverse()), next.parent);
        m_nodeOf.add(next.node, index);
        if (ryFirstOwnBone(*next.node))
            figures.push_back(next.node);
        else if (meshOf(*next.node))
            addMeshOf(*next.node, index, bind);
        const std::vector<RyNode *> children = next.node->nodeChildrenIterator();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            pending.push_back({*child, index, bind});
    }
    for (const RyNode *figure : figures)
        addSkinnedMesh(*figure);
}

void RyGltfNewNodes::addMeshOf(const RyNode &node, int fileNode, const RyAffine &frame)
{
    const RyFacetMesh &mesh = *meshOf(node);
    if (mesh.getNumVertices() == 0 || mesh.getNumFacets() == 0)
        return;
    if (const RyGltfFigureSource *known = knownMesh(node)) {
        m_document.setNodeMeshAndSkin(fileNode, addKnownMesh(node, *known, frame), -1);
        m_moved.push_back({known, shapeOf(node), fileNode});
        m_figures.push_back(&node);
        return;
    }
    const int index = RyGltfNewMesh(m_document, m_looks, *shapeOf(node), frame.inverse()).write(node.getName());
    m_document.setNodeMeshAndSkin(fileNode, index, -1);
    m_figures.push_back(&node);
}

void RyGltfNewNodes::addSkinnedMesh(const RyNode &skeletonNode)
{
    const auto &skeleton = static_cast<const RySkeleton &>(skeletonNode);
    const RyFacetMesh *mesh = meshOf(skeleton);
    const std::vector<RyBone *> bones = ryOwnBones(skeleton);
    m_figures.push_back(&skeletonNode);
    std::vector<int> joints;
    RyGltfNodeIndex jointOf;
    std::vector<float> inverseBinds;
    const RyGltfFigureSource *known = knownMesh(skeletonNode);
    const RyAffine toFigure = known ? frameOf(*m_source, known->parts.front()) : RyAffine::fromScale(m_unit);
    for (const RyBone *bone : bones) {
        jointOf.add(bone, int(joints.size()));
        joints.push_back(m_nodeOf.of(bone));
        m_joints.insert(joints.back());
        ryGltfAppendMatrix(toFigure * bindOf(*bone, m_unit).inverse(), inverseBinds);
    }
    const int skin =
        m_document.addSkin(skeleton.getName(), joints, m_document.addFloatAccessor(inverseBinds, 16, 0), -1);
    RyTreeExtras::storeToFigure(m_document, skin, toFigure * RyAffine::fromScale(1.0 / m_unit));
    if (!mesh || mesh->getNumVertices() == 0 || mesh->getNumFacets() == 0)
        return;

    if (known) {
        const int knownIndex = addKnownMesh(skeletonNode, *known, toFigure);
        bindKnownMesh(skeletonNode, knownIndex, jointOf);
        const int holder = m_document.addNode(skeleton.getName() + QStringLiteral(" mesh"), RyGltfTransform(), -1);
        m_document.setNodeMeshAndSkin(holder, knownIndex, skin);
        m_moved.push_back({known, shapeOf(skeleton), holder});
        return;
    }
    const RyGltfInfluences influences(&skeletonNode, mesh->getNumVertices());
    RyGltfNewMesh newMesh(m_document, m_looks, *shapeOf(skeleton), RyAffine::fromScale(1.0 / m_unit));
    const int meshIndex = newMesh.write(skeleton.getName(), &influences, influences.placesIn(jointOf));
    const int node = m_document.addNode(skeleton.getName() + QStringLiteral(" mesh"), RyGltfTransform(), -1);
    m_document.setNodeMeshAndSkin(node, meshIndex, skin);
}

const RyGltfFigureSource *RyGltfNewNodes::knownMesh(const RyNode &node) const
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    if (!m_source || !shape || !shape->getParts() || !shape->getFacetMesh())
        return nullptr;
    for (const RyGltfFigureSource &figure : m_source->figures) {
        if (figure.meshParts == shape->getParts() && !figure.parts.empty() &&
            figure.vertexCount == shape->getFacetMesh()->getNumVertices()) {
            return &figure;
        }
    }
    return nullptr;
}

int RyGltfNewNodes::addKnownMesh(const RyNode &node, const RyGltfFigureSource &known, const RyAffine &toFigure)
{
    std::vector<std::pair<int, int>> primitives;
    for (const RyGltfPartSource &part : known.parts)
        primitives.emplace_back(part.mesh, part.primitive);
    RyGltfTreePatch tree(m_document);
    const int mesh = tree.addMeshOf(node.getName(), primitives);
    QString error;
    tree.finish(&error); // copies of what has been checked
    std::vector<RyGltfVertexPatch::Part> parts;
    for (size_t p = 0; p < known.parts.size(); ++p)
        parts.push_back({mesh, int(p), &known.meshParts->parts[p]});
    RyGltfVertexPatch(m_document, *meshOf(node), toFigure).write(parts);
    const bool hasMorphs = !known.morphs.empty() || !shapeOf(node)->getMorphs().empty();
    RyGltfMorphWriter morphs(m_document, *shapeOf(node), toFigure);
    for (size_t p = 0; p < known.parts.size(); ++p) {
        const RyGltfSpaceChange change(m_document, known, frameOf(*m_source, known.parts[p]), toFigure);
        change.turnTangents(mesh, int(p), known.meshParts->parts[p]);
        const RyGltfMorphWriter::Origin origin{known, known.parts[p], change};
        if (hasMorphs)
            morphs.writeTargets(mesh, int(p), known.meshParts->parts[p], &origin);
    }
    if (hasMorphs)
        morphs.writeValues(mesh);
    for (const RyGltfPartSource &part : known.parts) {
        RyTreeExtras::copySurface(m_document, {part.mesh, part.primitive}, {mesh, int(&part - known.parts.data())});
    }
    return mesh;
}

void RyGltfNewNodes::bindKnownMesh(const RyNode &skeleton, int mesh, const RyGltfNodeIndex &jointOf)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&skeleton));
    const RyFacetMesh &facets = *shape->getFacetMesh();
    const RyGltfInfluences influences(&skeleton, facets.getNumVertices());
    std::vector<RyGltfMeshPatch::Part> parts;
    for (size_t p = 0; p < shape->getParts()->parts.size(); ++p)
        parts.push_back({mesh, int(p), &shape->getParts()->parts[p].vertexOfSplit});
    RyGltfMeshPatch(m_document, influences, facets.getPositions()).writeInfluences(parts, influences.placesIn(jointOf));
}

std::vector<const RyNode *> RyGltfNewNodes::figures() const
{
    std::vector<const RyNode *> sorted = m_figures;
    std::stable_partition(sorted.begin(), sorted.end(),
                          [](const RyNode *node) { return qobject_cast<const RySkeleton *>(node) != nullptr; });
    return sorted;
}

void RyGltfNewNodes::storeExtras(QStringList *messages)
{
    for (const auto &[node, index] : m_nodeOf.entries()) {
        if (!ryFirstOwnBone(*node))
            RyRiggingExtras::storeNode(m_document, index, *node);
        else
            RyTreeExtras::markFigure(m_document, index);
    }
    RyFigureExtras::storeFile(m_document, m_unit, figures(), m_nodeOf, m_joints, {}, messages);
}
