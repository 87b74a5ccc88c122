#pragma once

#include "rycore/scene/RySkeleton.h"

class RySkinBinding;

/// A weight-mapped skeleton: its object may have a skin binding.
class RyFigure : public RySkeleton
{
    Q_OBJECT
public:
    RyFigure();

    /// The skin of the figure's object or null.
    RySkinBinding *getSkinBinding() const;

    /// Replaces a prop by a figure of its name with one root bone, which moves every vertex with full weight: by three
    /// local maps and a scale map, or (`localMaps` false) by a general map. What hung on the prop hangs on the bone;
    /// nothing moves in the world. An empty root name stands for "Bone".
    ///
    /// `inherit`: when the prop hangs on a node of a skeleton, the bone takes its place there, so that it is a bone of
    /// that skeleton (its name made unique in it); the figure is then a child of the skeleton and follows it.
    ///
    /// One undo step of its own. Null, and nothing done, for null, a skeleton, a bone, a node without facets' vertices,
    /// and a node that stands neither in a scene nor below another one: nobody would hold the figure.
    static RyFigure *convertPropToFigure(RyNode *node, const QString &rootName, bool localMaps, bool inherit);

protected:
    RyNode *makeSameKind() const override { return new RyFigure; }
};
