#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"

#include "pluginsource/RyJointTools/operations/extractDonor.h"
#include "pluginsource/RyJointTools/operations/memorizeRigging.h"
#include "pluginsource/RyJointTools/operations/restoreRigging.h"
#include "pluginsource/RyJointTools/operations/transferRigging.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionBoxes.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSet>

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

/// The skeletons of the selected nodes but the primary one, less the target.
static QSet<const RySkeleton *> selectedSources(const RySkeleton *target)
{
    std::vector<RyNode *> nodes = ryScene()->selectedNodeListIterator();
    nodes.pop_back();
    QSet<const RySkeleton *> sources;
    for (const RyNode *node : nodes) {
        const RySkeleton *skeleton = node->getSkeleton();
        if (skeleton && skeleton != target)
            sources.insert(skeleton);
    }
    return sources;
}

static void reportTransfer(const RyRiggingTransfer &transfer, const RySkeleton &source, const RySkeleton &target)
{
    QString text = RyJEToolAction::tr("Bones placed as in %1: %2. In %1 alone: %3. Without a namesake there: %4.")
                       .arg(source.getLabel())
                       .arg(transfer.matched)
                       .arg(transfer.sourceOnly)
                       .arg(transfer.unmatched.size());
    if (!transfer.unmatched.isEmpty())
        text += QLatin1Char(' ') + transfer.unmatched.join(QStringLiteral(", "));
    if (RyMainWindow *window = RyApp::getInterface())
        window->showMessage(text);
    RyMessageLog::global().info(target.getLabel() + QStringLiteral(": ") + text);
}

void RyJETransferWSRiggingAction::executeAction()
{
    const RyNode *primary = ryScene()->getPrimarySelection();
    const auto *target = primary ? qobject_cast<const RyFigure *>(primary->getSkeleton()) : nullptr;
    const QSet<const RySkeleton *> sources = target ? selectedSources(target) : QSet<const RySkeleton *>();
    if (sources.size() != 1) {
        informOfSelection(RyJEToolAction::tr("Select a source figure, and then a target, to use this action.<br />Both "
                                             "figures must be based on Korvex<sup>TM</sup> technology."));
        return;
    }
    const RySkeleton &source = **sources.begin();
    RyUndoStackHold hold;
    const RyRiggingTransfer transfer = transferRigging(source, *target);
    hold.accept(text());
    reportTransfer(transfer, source, *target);
}

void RyJECreateDonorFigureAction::executeAction()
{
    RyNode *primary = ryScene()->getPrimarySelection();
    const auto *bone = qobject_cast<const RyBone *>(primary);
    const auto *source = qobject_cast<const RyFigure *>(bone ? bone->getSkeleton() : primary);
    if (!source) {
        warnOfSelection(RyJEToolAction::tr("A weight mapped figure must be selected to continue."),
                        RyApp::getInterface());
        return;
    }
    RyUndoStackHold hold;
    const RyFigure *donor = extractDonor(*source);
    hold.accept(text());
    if (RyMainWindow *window = RyApp::getInterface())
        window->showMessage(RyJEToolAction::tr("%1 was added to the scene.").arg(donor->getLabel()));
}
