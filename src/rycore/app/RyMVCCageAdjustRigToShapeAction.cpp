#include "rycore/app/RyMVCCageAdjustRigToShapeAction.h"

RyMVCCageAdjustRigToShapeAction::RyMVCCageAdjustRigToShapeAction()
    : RyAction(tr("Adjust Rig to Shape"),
               tr("Moves the center and end points of the bones to follow the current shape of the figure."))
{
    setObjectName(QStringLiteral("RyMVCCageAdjustRigToShapeAction"));
    setSearchWords(tr("fit follow morph"));
    setEnabled(false);
    setUnavailableReason(tr("Not available yet: no figure has a shape other than its base."));
}
