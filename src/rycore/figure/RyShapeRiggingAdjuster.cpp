#include "rycore/figure/RyShapeRiggingAdjuster.h"

#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/moveWithSurface.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/undo/RyUndoStackHold.h"

namespace {

/// Parents first, without those of figures that hang below this one.
std::vector<RyBone *> bonesOf(const RyFigure &figure)
{
    std::vector<RyBone *> bones = figure.getAllBones();
    std::erase_if(bones, [&](const RyBone *bone) { return bone->getSkeleton() != &figure; });
    return bones;
}

/// The origin and the end point of each bone; true when one of them changed.
bool writePoints(const std::vector<RyBone *> &bones, const std::vector<RyVec3> &points)
{
    const RyExactRiggingEdit edit;
    bool hasMoved = false;
    for (size_t i = 0; i < bones.size(); ++i) {
        RyBone *bone = bones[i];
        const RyVec3 origin = bone->getOrigin();
        const RyVec3 end = bone->getEndPoint();
        bone->beginEdit();
        bone->adjustOrigin(points[2 * i]);
        bone->adjustEndPoint(points[2 * i + 1]);
        bone->finishEdit();
        hasMoved = hasMoved || bone->getOrigin() != origin || bone->getEndPoint() != end;
    }
    return hasMoved;
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
    const std::vector<RyBone *> bones = bonesOf(*figure);
    std::vector<RyVec3> points;
    for (const RyBone *bone : bones) {
        points.push_back(bone->getOrigin(true));
        points.push_back(bone->getEndPoint(true));
    }
    const auto places = moveWithSurface(points, base, positions, shape->getFacetMesh()->getFacets(), m_progress);
    if (!places)
        return fail(Cancelled, tr("The rig was not adjusted: cancelled."));
    if (writePoints(bones, *places))
        hold.accept(caption());
    return RyError();
}
