#include "rycore/figure/RyLegacyFigure.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyJointMaker.h"
#include "rycore/figure/RyPropConversion.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/undo/RyUndoStackSilence.h"

bool RyLegacyFigure::mayJoinOuterSkeleton(const RyNode *prop)
{
    return !qobject_cast<const RyFigure *>(RyPropConversion::outerSkeleton(prop));
}

RyLegacyFigure *RyLegacyFigure::convertPropToFigure(RyNode *node, const QString &rootName, bool inherit)
{
    if (inherit && !mayJoinOuterSkeleton(node))
        return nullptr;
    const RyRef<RyLegacyFigure> figure(RyPropConversion::makeNew<RyLegacyFigure>());
    const auto rig = [&figure](RyBone *root, RyObject *object, const RyFacetMesh &mesh) {
        if (mesh.getNumFaceGroups() == 1)
            figure->getSelectionMap()->addPair(mesh.getFaceGroup(0)->getName(), root, false);
        auto *binding = new RyLegacyBinding;
        object->addModifier(binding);
        // Nothing of the joint is recorded: it is new, as its bone is, and comes and goes with the binding.
        const RyUndoStackSilence silence;
        RyLegacyJointMaker(root, RyLegacyJointMaker::Side::ByDirection).makeRoot(*binding);
    };
    return RyPropConversion::run(node, figure.get(), rootName, inherit, rig) ? figure.get() : nullptr;
}
