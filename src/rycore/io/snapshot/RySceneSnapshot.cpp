#include "rycore/io/snapshot/RySceneSnapshot.h"

#include "rycore/base/RyMessageLog.h"
#include "rycore/io/gltf/open/RyGltfSceneReader.h"
#include "rycore/io/gltf/save/RyGltfJoin.h"
#include "rycore/io/gltf/save/RyGltfNewNodes.h"
#include "rycore/io/gltf/save/RyGltfSceneWriter.h"
#include "rycore/io/snapshot/RySnapshotState.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoHistoryAccess.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <exception>
#include <new>

namespace {

/// The scene in its file; null where it does not fit into that.
std::shared_ptr<const RyGltfDocument> documentOf(const RyScene &scene, bool jointsOnly, QStringList *losses)
{
    const std::vector<const RyGltfOrigin *> origins = RyGltfJoin::liveOrigins(scene);
    if (origins.empty())
        return nullptr;
    QString reason;
    std::shared_ptr<const RyGltfDocument> document;
    try {
        document = RyGltfSceneWriter(origins, jointsOnly).patch(scene, &reason, nullptr, losses);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &failure) {
        reason = QString::fromUtf8(failure.what());
    }
    if (!document)
        losses->append(QStringLiteral("What the file held besides the scene: %1").arg(reason));
    return document;
}

QString noMemory()
{
    return QStringLiteral("it needs more memory than this machine has");
}

/// No history, and none that would lead to a saved state.
void countAsUnsaved()
{
    RyUndoHistoryAccess stack(ryUndoStack());
    RyUndoHistoryAccess::History history;
    history.cleanIndex = -1;
    stack.exchangeHistory(history, [] {});
}

void addSubtree(RyNode &node, std::vector<RyNode *> &nodes)
{
    nodes.push_back(&node);
    for (RyNode *child : node.nodeChildrenIterator())
        addSubtree(*child, nodes);
}

/// Fits were made for the joints of some earlier state; the next save makes them for those that stand here.
void forgetFits(const std::vector<RyNode *> &nodes)
{
    for (const RyNode *node : nodes) {
        if (RyLegacyBinding *joints = RyLegacyBinding::findBinding(qobject_cast<const RySkeleton *>(node)))
            joints->keepFit(nullptr);
    }
}

} // namespace

std::optional<RySceneSnapshot> RySceneSnapshot::take(const RyScene &scene, bool jointsOnly, QString *error)
{
    try {
        const RyClipPlayer::Aside aside(scene);
        RySceneSnapshot snapshot;
        std::shared_ptr<const RyGltfDocument> document = documentOf(scene, jointsOnly, &snapshot.losses);
        if (!document) {
            document = RyGltfNewNodes::writeScene(scene);
            snapshot.hasFile = false;
        }
        if (const auto *obj = dynamic_cast<const RyObjOrigin *>(scene.getOrigin()))
            snapshot.obj = obj->keep(scene);
        snapshot.document = RyGltfParts::of(*document);
        // What was read from a foreign file came through another one that is gone by now.
        if (const std::vector<const RyGltfOrigin *> origins = RyGltfJoin::liveOrigins(scene); !origins.empty())
            snapshot.document.path = origins.front()->filePath;
        snapshot.values = RySnapshotState::valuesOf(scene);
        snapshot.selection = RySnapshotState::selectionOf(scene);
        for (const RyNode *node : scene.getNodesInTreeOrder())
            snapshot.positions.push_back(RySnapshotState::positionsOf(*node));
        return snapshot;
    } catch (const std::bad_alloc &) {
        *error = QStringLiteral("the scene needs more memory than this machine has");
    } catch (const std::exception &failure) {
        *error = QString::fromUtf8(failure.what());
    }
    return {};
}

bool RySceneSnapshot::restore(RyScene &scene, const QString &path, QString *error, QStringList *messages) const
{
    std::vector<RyRef<RyNode>> tops;
    std::unique_ptr<RyGltfOrigin> origin;
    std::unique_ptr<RyObjOrigin> objOrigin;
    std::vector<RyNode *> nodes;
    int inexact = 0;
    const RyUndoStackLock lock;
    try {
        std::unique_ptr<RyGltfDocument> read = document.document(error, messages);
        if (!read)
            return false;
        RyGltfSceneReader reader(std::move(read), document.path.isEmpty() ? path : document.path, 0.0);
        if (!reader.build(error, messages))
            return false;
        tops = reader.topLevelNodes();
        origin = reader.takeOrigin();
        for (const RyRef<RyNode> &top : tops)
            addSubtree(*top, nodes);
        inexact = RySnapshotState::applyValues(values, nodes);
        for (size_t i = 0; i < nodes.size() && i < positions.size(); ++i)
            RySnapshotState::applyPositions(positions[i], *nodes[i]);
        forgetFits(nodes);
        objOrigin = obj ? RyObjOrigin::makeAgain(*obj, nodes) : nullptr;
    } catch (const std::bad_alloc &) {
        *error = noMemory();
        return false;
    } catch (const std::exception &failure) {
        RyMessageLog::global().warning(QString::fromUtf8(failure.what()));
        *error = QStringLiteral("its parts do not fit together");
        return false;
    }
    if (inexact > 0 && messages)
        messages->append(QStringLiteral("The values of %1 nodes may differ in their last digits").arg(inexact));
    ryUndoStack()->clearAll();
    scene.clear();
    try {
        for (const RyRef<RyNode> &top : tops)
            scene.addNode(top.get());
        if (objOrigin)
            scene.addOrigin(std::move(objOrigin));
        if (hasFile)
            scene.addOrigin(std::move(origin));
        RySnapshotState::applySelection(selection, scene);
        countAsUnsaved();
    } catch (const std::bad_alloc &) {
        scene.clear(); // rather than half of it, which somebody might save
        *error = noMemory();
        return false;
    }
    return true;
}
