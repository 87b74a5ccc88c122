#pragma once

#include "rycore/base/RyRefCounted.h"
#include "rycore/parametric/RyLegacyBinding.h"

#include <vector>

/// What becomes of joints when a bone of a parametric figure goes. Made while everything is in its place; opens no undo
/// hold.
class RyLegacyBoneRemoval
{
public:
    explicit RyLegacyBoneRemoval(RyBone *bone);

    /// The bone's joint goes, with what it drives on joints of others; what its children have to say about its scale
    /// waits for `rebuildLegacyJoint`.
    void removeLegacyJoint();
    /// For a child of the bone, which hangs on `parent` by now. Its parameters that the bone drove are driven by the
    /// parent, and the parent's joint gets what the bone's had of the child. Below something that is no bone they go.
    void rebuildLegacyJoint(RyNode *child, RyNode *parent);

private:
    struct Place
    {
        RyRef<RyLegacyBinding> binding;
        RyRef<RyLegacyJoint> joint; // of the bone; null where another figure's bones are driven by it
    };
    void driveByParent(RyLegacyJoint &joint, RyBone *parent) const;
    static void makeCopies(const RyLegacyJoint &own, const RyLegacyJoint *old, RyLegacyJoint &parentJoint);

    RyRef<RyBone> m_bone;
    std::vector<RyRef<RyNode>> m_children;
    std::vector<Place> m_places;
};
