#include "pluginsource/RyJointTools/ryjeaction/RyJENodeActions.h"

#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"
#include "pluginsource/RyJointTools/dialogs/RyJESelectedNodesAttributesEditDlg.h"
#include "pluginsource/RyJointTools/dialogs/runMessageBox.h"
#include "pluginsource/RyJointTools/operations/hierarchyLevel.h"
#include "pluginsource/RyJointTools/operations/reparentBone.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionBoxes.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScript.h"
#include "rycore/ui/RyNodeDlg.h"

void RyJERenameNodeAction::executeAction()
{
    RyScript script{QString()};
    if (script.loadFromFile(
            RyApp::getHomePath() + QStringLiteral("/scripts/support/Velmor/OstraToolkit/ryRenameNode.rsx"), true))
        script.execute();
}

namespace {

/// A bone that gets another parent. While dialogs are open it, its figure and the parent may leave the scene.
class Reparenting
{
public:
    explicit Reparenting(RyBone *bone) : m_bone(bone), m_skeleton(bone->getSkeleton()) {}

    /// Lets pick again after a parent that cannot be.
    void run()
    {
        while (pickParent()) {
            const ReparentObstacle obstacle = findReparentObstacle(m_bone, m_parent);
            if (obstacle == ReparentObstacle::None) {
                if (agreesToLevel())
                    reparentBone(m_bone, m_parent);
                return;
            }
            const QString reason =
                obstacle == ReparentObstacle::Loop
                    ? RyJEToolAction::tr("A bone cannot become a child of itself or of a bone below it.")
                    : RyJEToolAction::tr(
                          "A bone cannot move to another figure: the skin of its own figure moves vertices by it.");
            if (!warnOfSelection(reason, RyApp::getInterface()))
                return;
        }
    }

private:
    bool isThere() const
    {
        return m_bone && m_skeleton && m_bone->getScene() == ryScene() && m_bone->getSkeleton() == m_skeleton;
    }

    /// False when the picker was cancelled and when what it is about has gone.
    bool pickParent()
    {
        if (!isThere())
            return false;
        RyGuardedDialog<RyNodeDlg> picker(RyApp::getInterface(), m_skeleton.get(), QStringLiteral("RyNode"), true, true,
                                          false);
        if (picker.exec() != QDialog::Accepted || !isThere())
            return false;
        m_parent = picker->getNode();
        return isParentThere();
    }

    bool isParentThere() const { return m_parent && m_parent->getScene() == ryScene(); }

    bool agreesToLevel() const
    {
        if (areAtTheSameLevel(m_bone->getNodeParent(), m_parent))
            return true;
        const auto answer = runMessageBox(
            QMessageBox::Warning, RyApp::getInterface(), RyJEToolAction::tr("Reparenting Warning"),
            RyJEToolAction::tr("The bone you have selected is not at the same level in the hierarchy. This can have "
                               "unexpected results. Would you like to continue?"),
            QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok);
        return answer == QMessageBox::Ok && isThere() && isParentThere();
    }

    RyRef<RyBone> m_bone;
    RyRef<RySkeleton> m_skeleton;
    RyRef<RyNode> m_parent;
};

} // namespace

void RyJEReparentBoneAction::executeAction()
{
    RyNode *primary = ryScene()->getPrimarySelection();
    if (isBoneOfFigure(primary)) {
        Reparenting(qobject_cast<RyBone *>(primary)).run();
    } else {
        warnOfSelection(RyJEToolAction::tr("A bone from a weight mapped figure must be selected to continue."),
                        RyApp::getInterface());
    }
}

RyJESelectedNodesAttributesEditAction::RyJESelectedNodesAttributesEditAction() : RyJEToolAction(staticMetaObject)
{
    setObjectName(QStringLiteral("RyJESelectedNodeAttributesEditAction"));
    setEnabled(true);
}

void RyJESelectedNodesAttributesEditAction::executeAction()
{
    RyGuardedDialog<RyJESelectedNodesAttributesEditDlg>().exec();
}
