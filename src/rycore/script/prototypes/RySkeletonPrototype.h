#pragma once

#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/script/prototypes/RyScriptPrototype.h"
#include "rycore/skin/RySkinBinding.h"

/// Skeletons and figures in scripts, beside what they can do as nodes.
class RySkeletonPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RySkeletonPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    /// An array in the order of bone ids.
    Q_INVOKABLE QScriptValue getAllBones() const;
    Q_INVOKABLE RyBone *findBone(const QString &name) const;
    Q_INVOKABLE RyBone *findBoneByLabel(const QString &label) const;
    Q_INVOKABLE QString getUniqueBoneName(const QString &name) const;
    Q_INVOKABLE QString getUniqueBoneLabel(const QString &label) const;
    /// The face group that belongs to a bone, or an empty text.
    Q_INVOKABLE QString getFaceGroup(RyBone *bone) const;
    /// Gives a face group of the mesh to a bone; no other group is the bone's then, and the group no other bone's. An
    /// empty name takes the bone's group from it. Throws for a bone of another figure and for a name that no group
    /// has. Undoable.
    Q_INVOKABLE void setFaceGroup(RyBone *bone, const QString &name) const;
    /// Null for a skeleton without skin.
    Q_INVOKABLE RySkinBinding *getSkinBinding() const;
    /// Null for a skeleton that is not parametric.
    Q_INVOKABLE RyLegacyBinding *getLegacyBinding() const;
};
