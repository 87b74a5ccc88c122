#pragma once

#include "rycore/figure/pairing/RyBonePairing.h"

#include "rycore/scene/RyNode.h"

#include <QSet>

#include <QPointer>

#include <array>
#include <deque>
#include <memory>

class RyFloatProperty;
class RyScene;

/// While it is on, what an undo step writes to the current rigging of a bone is written, reflected through the plane of
/// figure space's origin at right angles to X, to its opposite in the same step; joint parameters are not. Bones in the
/// plane stay in it: their points along the axis at 0, one of their axes along it.
///
/// Within a rig edit nothing follows. At its end bones whose opposites were not placed by the same work are followed,
/// in a rig edit of their own; where both were, the work meant what it did, and as well for the bones in the plane of
/// that figure, but for one that is being edited itself. What a link passes on does not count as placed. A
/// command that means exactly what it places opens a `RyExactRiggingEdit`. Undo and redo swap both sides of a step by
/// themselves.
///
/// Bones are paired by the usual prefixes within their figure, anew when a name, the tree or a default of a point has
/// changed; a step that changes a name or the tree itself is not followed from there on. Opposites of which one hangs
/// on the other are edited alone.
class RySymmetricEditing : public QObject
{
    Q_OBJECT
public:
    /// That of a scene, off at first; goes with the scene.
    static RySymmetricEditing &of(RyScene &scene);

    bool isOn() const { return m_isOn; }
    void setOn(bool onOff);

    /// A point of a node as it may be written, or a way that it may go: a bone in the plane stays there while edits are
    /// followed.
    RyVec3 held(const RyNode &node, RyVec3 point) const;

    /// Nothing is followed while one lives: of commands that mean both sides, or one.
    class Suspension
    {
    public:
        Suspension();
        ~Suspension();
        Suspension(const Suspension &) = delete;
        Suspension &operator=(const Suspension &) = delete;
    };

    /// While one lives, values that are written outside of a step are followed too: of commands that open none.
    class WithoutSteps
    {
    public:
        WithoutSteps();
        ~WithoutSteps();
        WithoutSteps(const WithoutSteps &) = delete;
        WithoutSteps &operator=(const WithoutSteps &) = delete;
    };

signals:
    void toggled(bool onOff);
    /// A bone beside the plane was edited that has no opposite; once for each row of its edits.
    void unmatchedEdited(RyNode *node);
    /// A node was written as the opposite of an edited one, outside of a rig edit.
    void followed(RyNode *node);

private slots:
    void prepare();
    void forgetBones();
    void renewBones();

private:
    struct Bone
    {
        RyNode *node;
        RyNode *opposite; // null for none
        bool isOnPlane;
        std::array<RyFloatProperty *, 9> controls;
        std::array<RyFloatProperty *, 9> oppositeControls;
    };
    explicit RySymmetricEditing(RyScene &scene);
    void watchFigure(const RyBonePairing &pairing);
    void watch(RyNode *node, RyNode *opposite, bool isOnPlane);
    void forget(RyNode *removed);
    bool isFollowing() const;
    void valueChanged(const Bone &bone, int control);
    void settle(const Bone &bone);
    void follow(const Bone &bone, int control);
    void followRiggingEdit();
    void followOpposite(const Bone &bone, int control);
    void openEdit(const Bone &bone);
    void keepOnPlane(const Bone &bone, int control);
    void putOnPlane(RyFloatProperty &control);
    void turnIntoPlane(RyNode &node);
    void write(RyFloatProperty &control, float value);

    RyScene &m_scene;
    bool m_isOn = false;
    bool m_isReady = false;
    bool m_isOutdated = false;                        // pairs are looked for anew before the next step
    float m_tolerance = 0.0f;                         // cm
    std::unique_ptr<QObject> m_watch;                 // holds the connections to bones
    std::deque<Bone> m_bones;                         // connections know them by address
    std::vector<std::pair<const Bone *, int>> m_put;  // off until the rig edit ends: bones and controls
    QHash<const RyNode *, QPointer<RyNode>> m_edited; // opposites whose edit lasts as long as that of a bone
    QSet<const RyNode *> m_inPlane;
    QSet<const RyNode *> m_turned;        // in the plane, until they announce their rigging
    QSet<const RyFloatProperty *> m_busy; // being followed, with those that follow: links lead back to them
    const RyNode *m_told = nullptr;       // the last one without an opposite
};
