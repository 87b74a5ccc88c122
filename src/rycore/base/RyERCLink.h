#pragma once

#include "rycore/base/RyError.h"
#include "rycore/base/RyFloatProperty.h"

#include <QPointer>

#include <memory>

/// A link from a controller property to a controlled one, additive with scale 1: (controller value minus controller
/// default) is added to the controlled property's resulting value. A change of the controller is announced by the
/// controlled property too. The link goes when either property goes.
class RyERCLink : public std::enable_shared_from_this<RyERCLink>
{
public:
    /// Makes and attaches a link. Null, `InvalidArgument` and a reason that names the properties for null ones or a
    /// link that would close a circle; null and Success when the same link exists already. Undoable where a hold is
    /// open.
    static RyERCLink *create(RyFloatProperty *controller, RyFloatProperty *controlled, RyError *error = nullptr,
                             QString *reason = nullptr);
    /// Null is ignored. Undoable where a hold is open.
    static void remove(RyERCLink *link);

    /// While one lives, what hangs on values that are deleted is not told at once, but when the last one ends: where
    /// many go, each would be told to all that are still there.
    class Deletion
    {
    public:
        Deletion();
        ~Deletion();
        Deletion(const Deletion &) = delete;
        Deletion &operator=(const Deletion &) = delete;
    };

    /// Null where it is gone, of a link that undo steps alone hold.
    RyFloatProperty *getController() const { return isAttached() ? m_attachedController : m_controller.data(); }
    RyFloatProperty *getControlled() const { return isAttached() ? m_attachedControlled : m_controlled.data(); }
    float contribution() const;

private:
    friend class RyFloatProperty;
    struct AttachedValue;
    RyERCLink(RyFloatProperty *controller, RyFloatProperty *controlled);
    ~RyERCLink() = default;
    bool isAttached() const { return m_attachedController; }
    /// Does nothing where the properties are gone or the link would repeat another or close a circle.
    static void attach(const std::shared_ptr<RyERCLink> &link);
    static void insert(const std::shared_ptr<RyERCLink> &link);
    void detach(bool announce = true);

    // While attached it goes before its properties do. Walks along links ask for nothing else.
    RyFloatProperty *m_attachedController = nullptr;
    RyFloatProperty *m_attachedControlled = nullptr;
    QPointer<RyFloatProperty> m_controller;
    QPointer<RyFloatProperty> m_controlled;
    // Where it stood in the lists of the properties when it was detached; at first behind all.
    size_t m_outgoingPlace = SIZE_MAX;
    size_t m_incomingPlace = SIZE_MAX;
    std::shared_ptr<RyERCLink> m_self; // set while attached: the properties keep the link alive
};
