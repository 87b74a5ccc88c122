#pragma once

#include "rycore/scene/RyNode.h"

#include <QPointer>

class RyBone;
class RySelectionMap;

/// The root of a hierarchy of bones. Its `getSkeleton()` is itself.
class RySkeleton : public RyNode
{
    Q_OBJECT
public:
    RySkeleton();
    ~RySkeleton() override;

    /// All bones below, pre-order in child order, the skeleton not included. Bone ids are positions in this list.
    void getAllBones(std::vector<RyBone *> &list) const;
    std::vector<RyBone *> getAllBones() const;
    /// The same without those of skeletons that hang below this one.
    std::vector<RyBone *> ownBones() const;
    /// Exact, case-sensitive; the first in getAllBones order, else null.
    RyBone *findBone(const QString &name) const;
    RyBone *findBoneByLabel(const QString &label) const;
    /// A free text comes back unchanged; otherwise its number is stripped and the first free one from 2 is appended
    /// ("Bone2", label "Bone 2"). The name of `ignore` does not count as taken.
    QString getUniqueBoneName(const QString &name, const RyNode *ignore = nullptr) const;
    QString getUniqueBoneLabel(const QString &label, const RyNode *ignore = nullptr) const;

    /// The skeleton that this one follows; null when none. Never itself. This and the flag below are undoable.
    RySkeleton *getFollowTarget() const { return m_flags.followTarget; }
    void setFollowTarget(RySkeleton *target);
    bool drawsGLBones() const { return m_flags.drawGLBones; }
    void setDrawGLBones(bool draw);

    /// May be null. Setting takes ownership and is undoable.
    RySelectionMap *getSelectionMap() const { return m_selectionMap.get(); }
    void setSelectionMap(RySelectionMap *map);

    /// Replaces a skeleton by a prop of that name with the same object, at rest; its bones go, what else hung on them
    /// hangs on the prop and stays where it is in the world. Of the figures that its bones moved, those without bones
    /// of their own become props likewise; in the others their first own bone takes over what its bones held. The prop
    /// is selected where the skeleton was. One undo step of its own. Null for null.
    static RyNode *convertFigureToProp(RySkeleton *skeleton, const QString &name);

    /// The followed skeleton and the face groups of duplicated bones, pointing at the duplicates.
    void resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context) override;

protected:
    RyNode *makeSameKind() const override { return new RySkeleton; }

signals:
    void selectionMapChanged();
    void followTargetChanged();

private:
    struct SelectionMapValue;
    struct FlagsValue;
    struct Flags
    {
        QPointer<RySkeleton> followTarget;
        bool drawGLBones = false;
    };
    void recordFlags();
    void applyFlags(const Flags &flags);
    void applySelectionMap(const RyRef<RySelectionMap> &map);
    RyRef<RySelectionMap> m_selectionMap;
    Flags m_flags;
};
