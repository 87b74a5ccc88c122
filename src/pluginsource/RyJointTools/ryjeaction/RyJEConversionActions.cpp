#include "pluginsource/RyJointTools/ryjeaction/RyJEConversionActions.h"

#include "pluginsource/RyJointTools/dialogs/RyConvertPropToFigureDlg.h"
#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionBoxes.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RyShape.h"

#include <QPointer>

#include <algorithm>

static bool hasGeometry(const RyNode *node)
{
    const RyShape *shape = RyShape::getCurrentShapeForNode(node);
    const auto *mesh = shape ? qobject_cast<const RyFacetMesh *>(shape->getGeometry()) : nullptr;
    return mesh && mesh->getNumVertices() > 0;
}

/// Whether vertices stand elsewhere than at rest, by more than the last digits.
static bool isDeformed(const RySkeleton &skeleton)
{
    RyObject *object = skeleton.getObject();
    const std::vector<RyVec3> &rest = object->getCurrentShape()->getCurrentPositions();
    const std::vector<RyVec3> &shown = object->getDeformedPositions();
    const float tolerance = 1e-5f * skeleton.getBoundingBox().getSize();
    return !std::equal(rest.begin(), rest.end(), shown.begin(), shown.end(),
                       [tolerance](const RyVec3 &a, const RyVec3 &b) { return (a - b).length() <= tolerance; });
}

void RyJEConvertPropToFigureAction::executeAction()
{
    const QPointer<RyNode> prop = ryScene()->getPrimarySelection();
    if (!prop || qobject_cast<RySkeleton *>(prop) || qobject_cast<RyBone *>(prop) || !hasGeometry(prop)) {
        warnOfSelection(
            RyJEToolAction::tr("A simple object in the scene containing geometry must be selected to continue."));
        return;
    }
    // The main window that owns the dialog may go while it is open, and so may the prop.
    RyGuardedDialog<RyConvertPropToFigureDlg> dialog(RyApp::getInterface());
    if (dialog.exec() != QDialog::Accepted || !prop)
        return;
    const auto rigging = dialog->getRigging();
    const bool inherit = dialog->inheritsParentSkeleton();
    const bool parametric = rigging == RyConvertPropToFigureDlg::Rigging::Parametric;
    if (parametric && inherit && !RyLegacyFigure::mayJoinOuterSkeleton(prop)) {
        warnOfSelection(RyJEToolAction::tr(
            "A bone with joint parameters cannot join the weight mapped skeleton of the parent. Convert "
            "the object without inheriting that skeleton, or with weight mapping."));
        return;
    }
    RyApp::startBusyCursor();
    if (parametric)
        RyLegacyFigure::convertPropToFigure(prop, dialog->getRootBoneName(), inherit);
    else
        RyFigure::convertPropToFigure(prop, dialog->getRootBoneName(),
                                      rigging == RyConvertPropToFigureDlg::Rigging::LocalMaps, inherit);
    RyApp::endBusyCursor();
}

void RyJEConvertFigureToPropAction::executeAction()
{
    RyNode *node = ryScene()->getPrimarySelection();
    const auto *bone = qobject_cast<RyBone *>(node);
    auto *skeleton = bone ? bone->getSkeleton() : qobject_cast<RySkeleton *>(node);
    if (!skeleton || !hasGeometry(skeleton)) {
        warnOfSelection(RyJEToolAction::tr("A figure in the scene must be selected to continue."));
        return;
    }
    const QString label = skeleton->getLabel();
    RyApp::startBusyCursor();
    const bool wasDeformed = isDeformed(*skeleton);
    RySkeleton::convertFigureToProp(skeleton, skeleton->getName());
    RyApp::endBusyCursor();
    if (!wasDeformed)
        return;
    const QString text = RyJEToolAction::tr("%1 was posed: the object has its shape at rest.").arg(label);
    if (RyMainWindow *window = RyApp::getInterface())
        window->showMessage(text);
    RyMessageLog::global().info(text);
}
