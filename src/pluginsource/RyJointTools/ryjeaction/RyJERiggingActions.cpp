#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"

#include "pluginsource/RyJointTools/operations/memorizeRigging.h"
#include "pluginsource/RyJointTools/operations/restoreRigging.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStackHold.h"

using RyRiggingOperation = void (*)(const std::vector<RyNode *> &);

/// One undo step, also where nothing changes.
static void runAsStep(RyRiggingOperation operation, const std::vector<RyNode *> &nodes, const QString &caption)
{
    RyUndoStackHold hold;
    operation(nodes);
    hold.accept(caption);
}

static void runOnFigure(RyRiggingOperation operation, const QString &caption)
{
    const RyNode *primary = ryScene()->getPrimarySelection();
    RySkeleton *skeleton = primary ? primary->getSkeleton() : nullptr;
    if (!skeleton)
        return;
    const std::vector<RyBone *> bones = skeleton->getAllBones();
    std::vector<RyNode *> nodes(bones.begin(), bones.end());
    nodes.push_back(skeleton);
    runAsStep(operation, nodes, caption);
}

void RyJEMemorizeFigureRiggingPropertiesAction::executeAction()
{
    runOnFigure(memorizeRigging, text());
}

void RyJERestoreFigureRiggingPropertiesAction::executeAction()
{
    runOnFigure(restoreRigging, text());
}

void RyJEMemorizeNodeRiggingPropertiesAction::executeAction()
{
    if (ryScene()->getPrimarySelection())
        runAsStep(memorizeRigging, ryScene()->selectedNodeListIterator(), text());
}

RyJERestoreNodeRiggingPropertiesAction::RyJERestoreNodeRiggingPropertiesAction() : RyJEToolAction(staticMetaObject)
{
    connect(this, &QAction::changed, this, &RyJERestoreNodeRiggingPropertiesAction::followData);
}

void RyJERestoreNodeRiggingPropertiesAction::followData()
{
    if (const QObject *object = data().value<QObject *>())
        connect(object, &QObject::destroyed, this, &RyJERestoreNodeRiggingPropertiesAction::forget,
                Qt::UniqueConnection);
}

/// A variant keeps the address of an object that was deleted. Null stands for one that is gone.
void RyJERestoreNodeRiggingPropertiesAction::forget(const QObject *gone)
{
    if (data().value<QObject *>() == gone)
        setData(QVariant::fromValue<QObject *>(nullptr));
}

bool RyJERestoreNodeRiggingPropertiesAction::findNodes(std::vector<RyNode *> &nodes) const
{
    QObject *object = data().value<QObject *>();
    if (auto *node = qobject_cast<RyNode *>(object)) {
        nodes.push_back(node);
        node->getNodeChildren(nodes, true);
        return node->getScene() == ryScene();
    }
    if (!object && (QMetaType::typeFlags(data().userType()) & QMetaType::PointerToQObject))
        return false;
    nodes = ryScene()->selectedNodeListIterator();
    return ryScene()->getPrimarySelection();
}

void RyJERestoreNodeRiggingPropertiesAction::executeAction()
{
    std::vector<RyNode *> nodes;
    if (findNodes(nodes))
        runAsStep(restoreRigging, nodes, text());
}
