#include "rycore/io/gltf/save/RyGltfSceneWriter.h"

#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyMeshExtras.h"
#include "rycore/io/gltf/extras/RyMorphExtras.h"
#include "rycore/io/gltf/extras/RyParametricExtras.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/save/RyGltfCarriers.h"
#include "rycore/io/gltf/save/RyGltfClipPatch.h"
#include "rycore/io/gltf/save/RyGltfFrameChanges.h"
#include "rycore/io/gltf/save/RyGltfJoin.h"
#include "rycore/io/gltf/save/RyGltfMorphPatch.h"
#include "rycore/io/gltf/save/RyGltfNewNodes.h"
#include "rycore/io/gltf/save/RyGltfNodePatch.h"
#include "rycore/io/gltf/save/RyGltfSkinPatch.h"
#include "rycore/io/gltf/save/RyGltfStructurePatch.h"
#include "rycore/io/gltf/save/RyGltfWeightComparison.h"
#include "rycore/io/gltf/save/RyGltfWeightsPatch.h"
#include "rycore/math/RyLargePages.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

namespace {

bool isFigureEdited(const RyGltfFigureSource &figure)
{
    const RyNode &node = *figure.sceneNode;
    if (figure.canWriteVertices())
        return true;
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    if (shape && shape->getFacetMesh() && RyMeshExtras::groupsText(*shape->getFacetMesh()) != figure.groupsText)
        return true;
    if (shape && RyMorphExtras::text(*shape) != figure.morphsText)
        return true;
    if (!qobject_cast<const RySkeleton *>(&node))
        return false;
    return !(RyNodeValues::of(node) == figure.loaded) || RyRiggingExtras::nodeState(node) != figure.riggingState ||
           RyFigureExtras::selectionText(node) != figure.selectionText || ryGltfWeightsChanged(figure) ||
           RyMapExtras::text(RySkinBinding::findSkinFromNode(&node)) != figure.mapsText ||
           RyParametricExtras::text(node) != figure.parametricText;
}

/// Says what the file cannot take of changed vertices.
void reportMeshes(const RyGltfOrigin &source, QStringList *messages)
{
    for (const RyGltfFigureSource &figure : source.figures) {
        const RyNode *node = figure.sceneNode;
        if (!node || !messages || !node->getScene() || !figure.hasOtherVertices())
            continue;
        const auto hasMorphs = [&](const RyGltfPartSource &part) {
            return !source.document->model()
                        .meshes[size_t(part.mesh)]
                        .primitives[size_t(part.primitive)]
                        .morphPositions.empty();
        };
        if (!figure.canWriteVertices()) {
            messages->append(
                QStringLiteral("\"%1\" has other vertices than its mesh in the file, which is kept as it is")
                    .arg(node->getName()));
        } else if (!figure.skins.empty() && figure.skins.front().rebound &&
                   std::any_of(figure.parts.begin(), figure.parts.end(), hasMorphs)) {
            messages->append(QStringLiteral("The vertices of \"%1\" were moved; its morphs are written for the new "
                                            "space of its mesh and move them as before")
                                 .arg(node->getName()));
        }
    }
}

/// Whether bones of a figure were placed, hung elsewhere, added or removed.
bool areBonesEdited(const RyGltfScenePatch &patch, const RyGltfFigureSource &figure)
{
    const int place = int(&figure - patch.source.figures.data());
    return std::any_of(patch.edits.begin(), patch.edits.end(),
                       [&figure](const auto &entry) {
                           const RyGltfScenePatch::Edit &edit = entry.second;
                           return edit.node->getSkeleton() == figure.sceneNode.data() &&
                                  (!edit.source || edit.restChanged || edit.moved);
                       }) ||
           std::any_of(patch.source.nodes.begin(), patch.source.nodes.end(), [&](const RyGltfNodeSource &node) {
               return node.isBone && node.figure == place && patch.removed.count(node.node);
           });
}

/// Stored joints that do not fit their figure stay in the file as long as its weights, vertices and bones do.
std::map<const RyNode *, QString> parametricToKeep(const RyGltfScenePatch &patch)
{
    std::map<const RyNode *, QString> kept;
    for (const RyGltfFigureSource &figure : patch.source.figures) {
        if (!figure.sceneNode || !figure.sceneNode->getScene() || figure.keptParametric.isEmpty())
            continue;
        if (!ryGltfWeightsChanged(figure) && !figure.hasOtherVertices() && !areBonesEdited(patch, figure))
            kept.emplace(figure.sceneNode, figure.keptParametric);
        else
            patch.say(QStringLiteral("The joint parameters that the file had for \"%1\" did not fit it and are gone")
                          .arg(figure.sceneNode->getName()));
    }
    return kept;
}

/// Stores what glTF has no place for.
void storeExtras(RyGltfScenePatch &patch, const std::vector<const RyNode *> &newFigures)
{
    for (const auto &[index, edit] : patch.edits) {
        if (ryFirstOwnBone(*edit.node)) {
            RyTreeExtras::markFigure(patch.document, index);
            continue;
        }
        const RyVec3 place = edit.source ? edit.source->bind.translation() : RyVec3();
        const bool isProp = edit.source && !edit.source->isBone;
        const bool isBone = edit.source && edit.source->isBone;
        RyRiggingExtras::storeNode(patch.document, index, *edit.node, isProp ? &place : nullptr,
                                   isBone ? &edit.bind : nullptr);
    }
    for (const auto &[skin, toFigure] : patch.toFigure)
        RyTreeExtras::storeToFigure(patch.document, skin, toFigure);
    // In the order in which they will be read: all figures with skins, then all props.
    std::vector<const RyNode *> figures, props;
    for (const RyGltfFigureSource &figure : patch.source.figures) {
        if (figure.sceneNode && figure.sceneNode->getScene())
            (figure.skins.empty() ? props : figures).push_back(figure.sceneNode);
    }
    for (const RyNode *figure : newFigures)
        (qobject_cast<const RySkeleton *>(figure) ? figures : props).push_back(figure);
    figures.insert(figures.end(), props.begin(), props.end());
    RyFigureExtras::storeFile(patch.document, patch.source.unit, figures, patch.nodeOf, patch.joints,
                              parametricToKeep(patch), patch.messages);
}

} // namespace

bool RyGltfSceneWriter::isEdited(const RyScene &scene) const
{
    const RyGltfOrigin &source = *m_origins.front();
    if (m_origins.size() > 1 || RyGltfStructurePatch::isEdited(source))
        return true;
    for (const RyNode *top : scene.getTopLevelNodes()) {
        if (!source.findSource(top) && !source.findFigureSource(top))
            return true; // it came from elsewhere
    }
    for (const RyGltfNodeSource &node : source.nodes) {
        if (!(RyNodeValues::of(*node.sceneNode) == node.loaded) ||
            RyRiggingExtras::nodeState(*node.sceneNode) != node.riggingState) {
            return true;
        }
    }
    if (std::any_of(source.figures.begin(), source.figures.end(), isFigureEdited) || source.isLinkedOtherwise())
        return true;
    return source.unitWasChosen && source.unit != RyFigureExtras::storedUnit(*source.document);
}

/// The origins as one, with a node for every figure that stands elsewhere than in its file.
std::unique_ptr<RyGltfOrigin> RyGltfSceneWriter::joined(QString *error, QStringList *losses) const
{
    RyGltfJoin join(*m_origins.front());
    for (size_t i = 1; i < m_origins.size(); ++i) {
        if (!join.add(*m_origins[i], error))
            return nullptr;
    }
    if (losses)
        losses->append(join.losses());
    std::unique_ptr<RyGltfOrigin> origin = join.take();
    ryGltfAddCarriers(*origin);
    return origin;
}

std::shared_ptr<const RyGltfDocument> RyGltfSceneWriter::patch(const RyScene &scene, QString *error,
                                                               QStringList *messages, QStringList *losses) const
{
    if (!isEdited(scene))
        return m_origins.front()->document;
    QString reason;
    const auto refuse = [&] {
        if (error)
            *error = QStringLiteral("The scene cannot be written into its file: %1").arg(reason);
        return nullptr;
    };
    // The copy of the tree and what is stored in it, 2 kB or so for each node.
    constexpr size_t ManyNodes = 2000, BytesOfNode = 2048;
    if (m_origins.front()->nodes.size() >= ManyNodes)
        RyLargePages::growHeap(m_origins.front()->nodes.size() * BytesOfNode);
    const std::unique_ptr<RyGltfOrigin> source = joined(&reason, losses);
    if (!source)
        return refuse();
    reportMeshes(*source, messages);
    const RyGltfClips clips = m_jointsOnly ? RyGltfClips() : RyGltfClips(*source->document);
    std::unique_ptr<RyGltfDocument> document = source->document->moveTree();
    document->reuseSpares();
    RyGltfScenePatch patch(*source, *document, messages);
    if (!RyGltfStructurePatch(patch).apply(scene, &reason))
        return refuse();
    RyGltfFrameChanges(patch, clips).apply();
    RyGltfNodePatch(patch).apply();
    if (!RyGltfClipPatch(patch, clips).apply(&reason) || !RyGltfSkinPatch(patch).apply(&reason))
        return refuse();
    RyGltfMorphPatch(patch).apply(losses);
    // Meshes and skins that no file had.
    RyGltfNewNodes newNodes(*document, source->unit, source.get());
    newNodes.addMeshes(patch);
    RyGltfWeightsPatch(patch, newNodes.movedMeshes()).apply();
    patch.joints.insert(newNodes.joints().begin(), newNodes.joints().end());
    storeExtras(patch, newNodes.figures());
    document->dropUnused();
    return document;
}
