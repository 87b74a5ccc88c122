#include "rycore/app/RySymmetricEditingAction.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"

RySymmetricEditingAction::RySymmetricEditingAction()
    : RyAction(tr("Symmetric Editing"),
               tr("Carries what is done to the rigging of a bone over to the bone on the other side of the figure."))
{
    setObjectName(QStringLiteral("RySymmetricEditingAction"));
    setSearchWords(tr("mirror symmetry x-mirror both sides left right live"));
    setCheckable(true);
}

void RySymmetricEditingAction::init()
{
    RySymmetricEditing &editing = RySymmetricEditing::of(*ryScene());
    setChecked(editing.isOn());
    connect(this, &QAction::toggled, &editing, &RySymmetricEditing::setOn);
    connect(&editing, &RySymmetricEditing::toggled, this, &QAction::setChecked);
    connect(&editing, &RySymmetricEditing::unmatchedEdited, this, &RySymmetricEditingAction::tellUnmatched);
}

void RySymmetricEditingAction::tellUnmatched(RyNode *node) const
{
    if (RyMainWindow *window = RyApp::getInterface())
        window->showMessage(tr("%1 has no opposite: only this bone is edited.").arg(node->getLabel()));
}
