#include "rycore/io/gltf/save/RyGltfSceneWriter.h"

#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/save/RyGltfNewNodes.h"
#include "rycore/io/gltf/save/RyGltfNodePatch.h"
#include "rycore/io/gltf/save/RyGltfSkinPatch.h"
#include "rycore/io/gltf/save/RyGltfStructurePatch.h"
#include "rycore/io/gltf/save/RyGltfWeightComparison.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

bool RyGltfSceneWriter::isEdited(const RyScene &scene) const
{
    if (RyGltfStructurePatch::isEdited(m_source) || !newTops(scene).empty())
        return true;
    for (const RyGltfNodeSource &source : m_source.nodes) {
        if (!(RyNodeValues::of(*source.sceneNode) == source.loaded) ||
            RyRiggingExtras::nodeText(*source.sceneNode) != source.riggingText) {
            return true;
        }
    }
    for (const RyGltfFigureSource &figure : m_source.figures) {
        if (isFigureEdited(figure))
            return true;
    }
    return m_source.unitWasChosen && m_source.unit != RyFigureExtras::storedUnit(*m_source.document);
}

bool RyGltfSceneWriter::isFigureEdited(const RyGltfFigureSource &figure) const
{
    const RyNode &node = *figure.sceneNode;
    if (figure.canWriteVertices())
        return true;
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    if (shape && shape->getFacetMesh() && RyFigureExtras::groupsText(*shape->getFacetMesh()) != figure.groupsText)
        return true;
    if (!qobject_cast<const RySkeleton *>(&node))
        return false;
    return !(RyNodeValues::of(node) == figure.loaded) || RyRiggingExtras::nodeText(node) != figure.riggingText ||
           RyFigureExtras::selectionText(node) != figure.selectionText || ryGltfWeightsChanged(figure) ||
           RyMapExtras::text(RySkinBinding::findSkinFromNode(&node)) != figure.mapsText;
}

std::vector<const RyNode *> RyGltfSceneWriter::newTops(const RyScene &scene) const
{
    std::vector<const RyNode *> tops;
    for (const RyNode *top : scene.getTopLevelNodes()) {
        if (!m_source.findSource(top) && !m_source.findFigureSource(top))
            tops.push_back(top);
    }
    return tops;
}

std::unique_ptr<RyGltfDocument> RyGltfSceneWriter::patch(const RyScene &scene, QString *error,
                                                         QStringList *messages) const
{
    std::unique_ptr<RyGltfDocument> document = m_source.document->clone();
    reportMeshes(messages);
    if (!isEdited(scene))
        return document;
    RyGltfScenePatch patch(m_source, *document, messages);
    RyGltfNodePatch nodes(patch);
    QString reason;
    bool valid = RyGltfStructurePatch(patch).apply(scene, &reason);
    if (valid) {
        nodes.apply();
        valid = RyGltfSkinPatch(patch).apply(&reason);
    }
    if (!valid) {
        if (error)
            *error = QStringLiteral("The scene cannot be written into its file: %1").arg(reason);
        return nullptr;
    }
    // Nodes that the file does not know: merged files, new props and figures.
    RyGltfNewNodes newNodes(*document, m_source.unit, &m_source);
    for (const RyNode *top : newTops(scene))
        newNodes.addTree(*top);
    newNodes.storeNodes();
    patch.nodeOf.add(newNodes.nodes());
    patch.joints.insert(newNodes.joints().begin(), newNodes.joints().end());
    storeExtras(patch, newNodes.figures());
    reportNewMeshes(patch);
    nodes.reportClips();
    return document;
}

void RyGltfSceneWriter::storeExtras(RyGltfScenePatch &patch, const std::vector<const RyNode *> &newFigures) const
{
    for (const auto &[index, edit] : patch.edits) {
        const RyVec3 place = edit.source ? edit.source->bind.translation() : RyVec3();
        const bool isProp = edit.source && !edit.source->isBone;
        RyRiggingExtras::storeNode(patch.document, index, *edit.node, isProp ? &place : nullptr);
    }
    for (const auto &[skin, toFigure] : patch.toFigure)
        RyTreeExtras::storeToFigure(patch.document, skin, toFigure);
    // In the order in which they will be read: all figures with skins, then all props.
    std::vector<const RyNode *> figures, props;
    for (const RyGltfFigureSource &figure : m_source.figures) {
        if (figure.sceneNode && figure.sceneNode->getScene())
            (figure.skins.empty() ? props : figures).push_back(figure.sceneNode);
    }
    for (const RyNode *figure : newFigures)
        (qobject_cast<const RySkeleton *>(figure) ? figures : props).push_back(figure);
    figures.insert(figures.end(), props.begin(), props.end());
    RyFigureExtras::storeFile(patch.document, m_source.unit, figures, patch.nodeOf, patch.joints);
}

void RyGltfSceneWriter::reportMeshes(QStringList *messages) const
{
    for (const RyGltfFigureSource &figure : m_source.figures) {
        const RyNode *node = figure.sceneNode;
        if (!node || !messages || !node->getScene() || !figure.hasOtherVertices())
            continue;
        const auto hasMorphs = [&](const RyGltfPartSource &part) {
            return !m_source.document->model()
                        .meshes[size_t(part.mesh)]
                        .primitives[size_t(part.primitive)]
                        .morphPositions.empty();
        };
        if (!figure.canWriteVertices()) {
            messages->append(
                QStringLiteral("\"%1\" has other vertices than its mesh in the file, which is kept as it is")
                    .arg(node->getName()));
        } else if (std::any_of(figure.parts.begin(), figure.parts.end(), hasMorphs)) {
            messages->append(
                QStringLiteral("The vertices of \"%1\" were moved; its morphs in the file stay as they were")
                    .arg(node->getName()));
        }
    }
}

void RyGltfSceneWriter::reportNewMeshes(const RyGltfScenePatch &patch) const
{
    for (const auto &[node, index] : patch.added) {
        if (node->getObject()) {
            patch.say(QStringLiteral("The mesh of \"%1\" is new below a node of the file and was not written")
                          .arg(node->getName()));
        }
    }
}
