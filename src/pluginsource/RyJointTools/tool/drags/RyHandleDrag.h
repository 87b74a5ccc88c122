#pragma once

#include "rycore/math/RyLine3.h"
#include "rycore/math/RyVec3.h"

#include <QPointer>

#include <memory>

class RyElement;
class RyNode;
class RyUndoStackHold;

/// One drag of a handle, made at the press. It records there what it starts from; every move computes from that and
/// never from the move before. The first move opens the undo step and the edit of the element; both are ended together,
/// by finish, cancel or the destructor, which cancels.
class RyHandleDrag
{
public:
    /// What holds during one move.
    struct Options
    {
        bool keepLength = false;
        bool propagate = false;
        bool isAligned = false;    // the orientation of bones follows their points
        bool restrictAxes = false; // spheres are not turned
    };

    /// `element` is edited by the drag; null where nothing is.
    explicit RyHandleDrag(RyElement *element);
    virtual ~RyHandleDrag();
    RyHandleDrag(const RyHandleDrag &) = delete;
    RyHandleDrag &operator=(const RyHandleDrag &) = delete;

    /// Where a ray of the world meets the handle's plane or line, from the handle's anchor.
    virtual RyVec3 dragVector(const RyLine3 &ray) const;
    /// The ray through the place of the press; ways are measured from there.
    void press(const RyLine3 &ray);
    /// Changes the scene by the way from the press to where the ray points.
    void move(const RyLine3 &ray, const Options &options);
    /// Whether the handle's axis points at the eye or its plane is seen from its edge, so that no way can be told from
    /// the mouse and the drag moves nothing.
    virtual bool pointsAtEye() const { return false; }
    /// Takes over the propagation of a change of the origin that this drag makes: everything is placed from where it
    /// was at the press. False when the drag does not move that node's origin.
    virtual bool propagateOrigin(RyNode *node, const RyVec3 &newOrigin);

    bool isOpen() const { return m_hold != nullptr; }
    void finish(const QString &caption);
    void cancel();

protected:
    virtual void apply(const Options &options);
    const RyVec3 &pressVector() const { return m_pressVector; }
    const RyVec3 &currentVector() const { return m_currentVector; }

private:
    void open();

    QPointer<RyElement> m_element;
    RyVec3 m_pressVector;
    RyVec3 m_currentVector;
    std::unique_ptr<RyUndoStackHold> m_hold;
};
