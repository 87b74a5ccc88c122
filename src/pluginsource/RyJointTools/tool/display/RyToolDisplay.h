#pragma once

#include "pluginsource/RyJointTools/tool/display/RyDisplaySettings.h"

#include <type_traits>

class RyViewTool;

/// The display of a tool and the ways to set it: values come back into their range, what is kept is written at once,
/// and what shows asks the tool for a redraw.
class RyToolDisplay
{
public:
    /// Reads the settings.
    explicit RyToolDisplay(RyViewTool &tool);

    const RyJointToolDisplay &values() const { return m_values; }

    void setNumber(const RyDisplaySettings::Number &number, int value);
    void setColor(const RyDisplaySettings::Color &color, const QColor &value);
    void setFlag(const RyDisplaySettings::Flag &flag, bool value);
    /// A flag that is not kept.
    void setFlag(bool RyJointToolDisplay::*flag, bool value);
    /// A value that is not kept, and does nothing when it is no other one. `announce` comes before the redraw.
    template<typename T, typename Announce>
    void change(T RyJointToolDisplay::*value, std::type_identity_t<T> newValue, const Announce &announce)
    {
        if (m_values.*value == newValue)
            return;
        m_values.*value = newValue;
        announce();
        redraw();
    }

private:
    void redraw() const;

    RyViewTool &m_tool;
    RyJointToolDisplay m_values;
};
