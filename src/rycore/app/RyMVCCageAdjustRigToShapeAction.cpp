#include "rycore/app/RyMVCCageAdjustRigToShapeAction.h"

#include "rycore/app/RyApp.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyShapeRiggingAdjuster.h"
#include "rycore/scene/RyScene.h"

#include <QMessageBox>
#include <QProgressDialog>

#include <memory>

static RyFigure *selectedFigure()
{
    const RyNode *node = ryScene()->getPrimarySelection();
    return node ? qobject_cast<RyFigure *>(node->getSkeleton()) : nullptr;
}

RyMVCCageAdjustRigToShapeAction::RyMVCCageAdjustRigToShapeAction()
    : RyAction(RyShapeRiggingAdjuster::caption(),
               tr("Moves the center and end points of the bones to follow the current shape of the figure."))
{
    setObjectName(QStringLiteral("RyMVCCageAdjustRigToShapeAction"));
    setSearchWords(tr("fit follow morph"));
}

void RyMVCCageAdjustRigToShapeAction::init()
{
    connect(ryScene(), &RyScene::nodeSelectionListChanged, this, &RyMVCCageAdjustRigToShapeAction::updateEnabled);
    updateEnabled();
}

void RyMVCCageAdjustRigToShapeAction::updateEnabled()
{
    setEnabled(selectedFigure() != nullptr);
    if (!isEnabled())
        setUnavailableReason(tr("Select a weight mapped figure or one of its bones."));
}

void RyMVCCageAdjustRigToShapeAction::executeAction()
{
    RyShapeRiggingAdjuster adjuster;
    std::unique_ptr<QProgressDialog> progress; // shown only where it takes long
    adjuster.setProgress([&progress](double done) {
        if (!progress) {
            progress = std::make_unique<QProgressDialog>(tr("Moving the bones with the surface"), tr("Cancel"), 0, 1000,
                                                         RyApp::getDialogParent());
            progress->setObjectName(QStringLiteral("AdjustRigProgress"));
            progress->setWindowModality(Qt::WindowModal);
            progress->setMinimumDuration(1000);
        }
        progress->setValue(int(1000 * done));
        return !progress->wasCanceled();
    });
    RyApp::startBusyCursor();
    const RyError error = adjuster.adjustRiggingToShape(selectedFigure());
    progress.reset();
    RyApp::endBusyCursor();
    if (!error.isSuccess() && error.code() != RyShapeRiggingAdjuster::Cancelled)
        QMessageBox::warning(RyApp::getDialogParent(), text(), adjuster.getLastError());
}
