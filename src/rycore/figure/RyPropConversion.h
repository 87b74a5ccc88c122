#pragma once

#include "rycore/undo/RyUndoStackSilence.h"

#include <functional>

class QString;
class RyBone;
class RyFacetMesh;
class RyNode;
class RyObject;
class RySkeleton;

/// Makes a figure with one root bone of a prop, whatever kind of figure.
namespace RyPropConversion {

/// A figure for `run`, made before its step begins: what a constructor writes is no change of the document.
template<typename Figure>
Figure *makeNew()
{
    const RyUndoStackSilence silence;
    return new Figure;
}

/// Gives the object what deforms it: it is the figure's already, and the bone has its place.
using Rig = std::function<void(RyBone *root, RyObject *object, const RyFacetMesh &mesh)>;

/// See RyFigure::convertPropToFigure. `figure` is a new one; false, and nothing done, where the prop is none.
bool run(RyNode *prop, RySkeleton *figure, const QString &rootName, bool inherit, const Rig &rig);
/// The skeleton that the root bone of a prop joins when it inherits one; null when none.
RySkeleton *outerSkeleton(const RyNode *prop);

} // namespace RyPropConversion
