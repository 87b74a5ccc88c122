#include "pluginsource/RyJointTools/tool/display/RyToolDisplay.h"

#include "rycore/viewport/RyViewTool.h"

RyToolDisplay::RyToolDisplay(RyViewTool &tool) : m_tool(tool)
{
    m_values.readSettings();
}

void RyToolDisplay::setNumber(const RyDisplaySettings::Number &number, int value)
{
    m_values.*number.value = number.inRange(value);
    RyDisplaySettings::write(number.key, m_values.*number.value);
    redraw();
}

void RyToolDisplay::setColor(const RyDisplaySettings::Color &color, const QColor &value)
{
    m_values.*color.value = value;
    RyDisplaySettings::write(color, value);
    redraw();
}

void RyToolDisplay::setFlag(const RyDisplaySettings::Flag &flag, bool value)
{
    m_values.*flag.value = value;
    RyDisplaySettings::write(flag, value);
    if (flag.isDrawn)
        redraw();
}

void RyToolDisplay::setFlag(bool RyJointToolDisplay::*flag, bool value)
{
    m_values.*flag = value;
    redraw();
}

void RyToolDisplay::redraw() const
{
    m_tool.drawnDataChanged();
}
