#include "rycore/app/RyBindToNearestBonesAction.h"

#include "rycore/app/RyApp.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/skin/bindToNearestBones.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QMessageBox>

static RySkinBinding *selectedSkin()
{
    return RySkinBinding::findSkinFromNode(ryScene()->getPrimarySelection());
}

RyBindToNearestBonesAction::RyBindToNearestBonesAction()
    : RyAction(
          tr("Bind to Nearest Bones"),
          tr("Gives every vertex of the selected figure weights of the bones nearest to it, in place of those it had."))
{
    setObjectName(QStringLiteral("RyBindToNearestBonesAction"));
}

void RyBindToNearestBonesAction::init()
{
    connect(ryScene(), &RyScene::nodeSelectionListChanged, this, &RyBindToNearestBonesAction::updateEnabled);
    updateEnabled();
}

void RyBindToNearestBonesAction::updateEnabled()
{
    setEnabled(selectedSkin() != nullptr);
    if (!isEnabled())
        setUnavailableReason(tr("Select a weight mapped figure or one of its bones."));
}

void RyBindToNearestBonesAction::executeAction()
{
    RySkinBinding *skin = selectedSkin();
    RyApp::startBusyCursor();
    RyUndoStackHold hold;
    const bool isBound = skin && bindToNearestBones(*skin);
    if (isBound)
        hold.accept(text());
    else
        hold.cancel();
    RyApp::endBusyCursor();
    if (!isBound)
        QMessageBox::warning(RyApp::getDialogParent(), tr("Selection Error"),
                             tr("A weight mapped figure with a mesh and bones must be selected to continue."));
}
