#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoItem.h"

#include <QPointer>

#include <optional>

/// Keeps all values of a float property; an undo item. What listeners of undo write into the property (a point that
/// follows another one) gives way to the value of the step.
class RyFloatPropertyChange : public RyUndoItem
{
public:
    explicit RyFloatPropertyChange(RyFloatProperty *property);

    static RyUndoKey keyOf(const RyFloatProperty *property);
    RyUndoKey key() const override { return m_key; }
    bool isAlive() const override { return m_property; }
    void prepare() override;
    void swap() override;
    bool settle() override;

private:
    QPointer<RyFloatProperty> m_property;
    RyUndoKey m_key;
    RyFloatProperty::State m_kept;
    RyFloatProperty::State m_written;
    std::optional<RyFloatProperty::State> m_inPlace;
};
