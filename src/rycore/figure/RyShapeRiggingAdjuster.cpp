#include "rycore/figure/RyShapeRiggingAdjuster.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/adjustValues.h"
#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/moveWithSurface.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QPointer>

namespace {

/// Who is told of the progress may delete them.
using Bones = std::vector<QPointer<RyBone>>;

/// Parents first, without those of figures that hang below this one.
Bones bonesOf(const RyFigure &figure)
{
    const std::vector<RyBone *> bones = figure.ownBones();
    return Bones(bones.begin(), bones.end());
}

/// The origin and the end point of each bone, whatever links add to them; true when one of them changed.
bool writePoints(const Bones &bones, const std::vector<RyVec3> &points)
{
    std::vector<RyWantedValue> wanted;
    for (size_t i = 0; i < bones.size(); ++i) {
        const RyBone *bone = bones[i];
        for (int k = 0; bone && k < RyNodeRigging::Orientation; ++k)
            wanted.push_back({bone->riggingControls()[size_t(k)], points[2 * i + size_t(k / 3)][k % 3]});
    }
    std::vector<float> before;
    for (const RyWantedValue &each : wanted)
        before.push_back(each.property->getValue());
    const RyExactRiggingEdit edit;
    adjustValues(wanted);
    for (size_t i = 0; i < wanted.size(); ++i) {
        if (wanted[i].property && wanted[i].property->getValue() != before[i])
            return true;
    }
    return false;
}

} // namespace

QString RyShapeRiggingAdjuster::caption()
{
    return tr("Adjust Rig to Shape");
}

RyError RyShapeRiggingAdjuster::fail(int code, const QString &error)
{
    m_lastError = error;
    return RyError(code);
}

RyError RyShapeRiggingAdjuster::adjustRiggingToShape(RyFigure *figure)
{
    m_lastError.clear();
    if (!figure)
        return fail(RyError::UnusableObject, tr("There is no figure to adjust."));
    auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure));
    if (!shape || !shape->getFacetMesh() || shape->getFacetMesh()->getNumFacets() == 0)
        return fail(RyError::UnusableObject, tr("The figure has no facets to follow."));
    // Opened before anything is read: a clip that plays shows morphs of its own until then.
    RyUndoStackHold hold;
    const std::vector<RyVec3> base = shape->getBasePositions();
    const std::vector<RyVec3> positions = shape->getCurrentPositions();
    if (positions == base)
        return fail(RyError::UnusableObject, tr("The figure has no shape that differs from its base."));
    const Bones bones = bonesOf(*figure);
    std::vector<RyVec3> points;
    for (const auto &bone : bones) {
        points.push_back(bone->getOrigin(true));
        points.push_back(bone->getEndPoint(true));
    }
    const QPointer<RyFigure> guard(figure);
    const std::vector<RyFacet> facets = shape->getFacetMesh()->getFacets(); // may go with the figure
    const auto places = moveWithSurface(points, base, positions, facets, m_progress);
    if (!guard)
        return fail(RyError::UnusableObject, tr("There is no figure to adjust."));
    if (!places)
        return fail(Cancelled, tr("The rig was not adjusted: cancelled."));
    if (writePoints(bones, *places))
        hold.accept(caption());
    return RyError();
}
