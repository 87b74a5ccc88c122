#pragma once

#include "rycore/base/RyProperty.h"

#include <QPointer>

#include <vector>

class RyERCLink;

/// A float with default, current and limits. The resulting value is the raw value plus what links add to it; the limits
/// hold for the raw value. A change works out the resulting values of all that hangs on the property by links before
/// anything is announced: each one once, controllers first.
/// Every change is undoable where a hold is open. A change of the default alone emits nothing but
/// `defaultValueChanged`. Values that are not finite are refused.
class RyFloatProperty : public RyProperty
{
    Q_OBJECT
public:
    RyFloatProperty(RyElement *owner, const QString &name, float defaultValue = 0.0f);
    ~RyFloatProperty() override;

    /// The resulting value.
    float getValue() const { return m_value; }
    float getRawValue() const { return m_raw; }
    /// Writes the raw value, clamped to the limits of the moment where the property is clamped.
    void setValue(float value);
    /// Writes the raw value such that the resulting value is `value`; the raw value is clamped as by `setValue`.
    void adjustValue(float value);
    float getDefaultValue() const { return m_default; }
    void setDefaultValue(float value);

    bool isClamped() const { return m_clamped; }
    /// Clamping acts on the next write; switching it on does not move the value.
    void setIsClamped(bool clamped);
    float getMin() const { return m_min; }
    float getMax() const { return m_max; }
    void setMin(float min);
    void setMax(float max);
    /// Takes the other's raw value, default, limits and label; undoable where a hold is open. Name and links stay.
    void copyFrom(const RyFloatProperty &other);

    /// The labels of the owner and of the property, for messages.
    QString getFullLabel() const;

    const std::vector<RyERCLink *> &getControllerLinks() const { return m_incoming; }
    const std::vector<RyERCLink *> &getControlledLinks() const { return m_outgoing; }

signals:
    /// The resulting value really changed.
    void currentValueChanged();
    void defaultValueChanged();
    void limitsChanged();

private:
    friend class RyERCLink;
    friend class RyFloatPropertyChange;
    struct State
    {
        float raw, defaultValue, min, max;
        bool clamped;
        bool operator==(const State &) const = default;
    };
    State state() const { return {m_raw, m_default, m_min, m_max, m_clamped}; }
    void restore(const State &state);
    void recordChange();
    float linkedShare() const;
    float clamp(float value) const;
    using Dependents = std::vector<QPointer<RyFloatProperty>>;
    void workOut();
    Dependents workOutDependents(bool defaultChanged);
    void update();
    void announceIfChanged();
    static void announce(const Dependents &properties);

    float m_raw;
    float m_value;     // the resulting one
    float m_announced; // the one that listeners know
    float m_default;
    float m_min = -10000.0f;
    float m_max = 10000.0f;
    bool m_clamped = false;
    std::vector<RyERCLink *> m_incoming;
    std::vector<RyERCLink *> m_outgoing;
};
