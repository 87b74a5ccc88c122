#include "rycore/app/RyFitZonesToBoneAction.h"

#include "rycore/app/RyApp.h"
#include "rycore/figure/RyLegacyZoneFit.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QMessageBox>

/// In the order of selection, so that the primary one is the last.
static std::vector<RyBone *> selectedBones()
{
    std::vector<RyBone *> bones;
    for (RyNode *node : ryScene()->selectedNodeListIterator()) {
        if (RyLegacyJoint::findJoint(node))
            bones.push_back(qobject_cast<RyBone *>(node));
    }
    return bones;
}

RyFitZonesToBoneAction::RyFitZonesToBoneAction()
    : RyAction(
          tr("Fit Zones to Bone"),
          tr("Turns the bend angles of the selected bones along the bones, and puts spheres, twist and smooth zones "
             "around them."))
{
    setObjectName(QStringLiteral("RyFitZonesToBoneAction"));
    setSearchWords(tr("joint parameters angles spheres adjust reset align falloff"));
}

void RyFitZonesToBoneAction::init()
{
    connect(ryScene(), &RyScene::nodeSelectionListChanged, this, &RyFitZonesToBoneAction::updateEnabled);
    updateEnabled();
}

void RyFitZonesToBoneAction::updateEnabled()
{
    setEnabled(!selectedBones().empty());
    if (!isEnabled())
        setUnavailableReason(tr("Select a bone of a parametric figure first."));
}

void RyFitZonesToBoneAction::executeAction()
{
    const std::vector<RyBone *> bones = selectedBones();
    if (bones.empty()) {
        QMessageBox::warning(RyApp::getDialogParent(), tr("Selection Error"),
                             tr("A bone of a parametric figure must be selected to continue."));
        return;
    }
    RyUndoStackHold hold;
    for (RyBone *bone : bones)
        RyLegacyZoneFit::fit(bone);
    hold.accept(text());
}
