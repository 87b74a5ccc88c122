#include "pluginsource/RyJointTools/ryjeaction/RyJENodeActions.h"

#include "pluginsource/RyJointTools/dialogs/RyJESelectedNodesAttributesEditDlg.h"
#include "pluginsource/RyJointTools/operations/reparentBone.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScript.h"
#include "rycore/ui/RyNodeDlg.h"

#include <QMessageBox>

RyJERenameNodeAction::RyJERenameNodeAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJERenameNodeAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJERenameNodeAction::executeAction()
{
    RyScript script{QString()};
    if (script.loadFromFile(
            RyApp::getHomePath() + QStringLiteral("/scripts/support/Velmor/OstraToolkit/ryRenameNode.rsx"), true))
        script.execute();
}

/// Whether a bone may go from one parent to the other; asks where that changes its level.
static bool allowsReparenting(const RyBone *bone, const RyNode *newParent)
{
    const QString title = RyJEToolAction::tr("Reparenting Warning");
    if (!canHangBelow(bone, newParent)) {
        QMessageBox::warning(RyApp::getInterface(), title,
                             RyJEToolAction::tr("A bone cannot become a child of itself or of a bone below it."),
                             QMessageBox::Ok);
        return false;
    }
    if (areAtTheSameLevel(bone->getNodeParent(), newParent))
        return true;
    return QMessageBox::warning(RyApp::getInterface(), title,
                                RyJEToolAction::tr("The bone you have selected is not at the same level in the "
                                                   "hierarchy. This can have unexpected results. Would you like to "
                                                   "continue?"),
                                QMessageBox::Ok | QMessageBox::Cancel)
        == QMessageBox::Ok;
}

RyJEReparentBoneAction::RyJEReparentBoneAction() : RyJEToolAction(staticMetaObject)
{
    setEnabled(true);
}

void RyJEReparentBoneAction::executeAction()
{
    RyNode *primary = ryScene()->getPrimarySelection();
    auto *bone = qobject_cast<RyBone *>(primary);
    if (!isBoneOfFigure(primary)) {
        QMessageBox::warning(RyApp::getInterface(), RyJEToolAction::tr("Selection Error"),
                             RyJEToolAction::tr("A bone from a weight mapped figure must be selected to continue."),
                             QMessageBox::Ok);
        return;
    }
    RyNodeDlg picker(RyApp::getInterface(), bone->getSkeleton(), QStringLiteral("RyNode"), true, true, false);
    if (picker.exec() != QDialog::Accepted)
        return;
    RyNode *newParent = picker.getNode();
    if (allowsReparenting(bone, newParent))
        reparentBone(bone, newParent);
}

RyJESelectedNodesAttributesEditAction::RyJESelectedNodesAttributesEditAction() : RyJEToolAction(staticMetaObject)
{
    setObjectName(QStringLiteral("RyJESelectedNodeAttributesEditAction"));
    setEnabled(true);
}

void RyJESelectedNodesAttributesEditAction::executeAction()
{
    RyJESelectedNodesAttributesEditDlg().exec();
}
