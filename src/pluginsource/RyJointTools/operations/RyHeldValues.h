#pragma once

#include <QPointer>

#include <vector>

class RyBone;
class RyFloatProperty;

/// What properties shall result in, whatever links add to them and however they pass on what is written to another.
class RyHeldValues
{
public:
    void add(RyFloatProperty *property, float value) { m_values.push_back({property, value}); }
    /// All that links let these bones control, directly or over others, as it is; their own poses and rigging left out.
    void addControlledBy(const std::vector<RyBone *> &bones);

    /// Writes own shares until all result so. Limits that do not allow one are widened to it, which the log tells.
    void apply() const;

private:
    struct Value
    {
        QPointer<RyFloatProperty> property;
        float value;
    };
    std::vector<Value> m_values;
};
