#include "pluginsource/RyJointTools/operations/bakePose.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"

#include "rycore/app/RyApp.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyScene.h"

void RyJEBakeRotationsAction::executeAction()
{
    const RyNode *primary = ryScene()->getPrimarySelection();
    auto *figure = qobject_cast<RyFigure *>(primary ? primary->getSkeleton() : nullptr);
    if (!figure)
        return;
    RyApp::startBusyCursor();
    bakePose(figure);
    RyApp::endBusyCursor();
}
