#pragma once

/// A moment of the scene's time line, in ticks.
class RyTime
{
public:
    RyTime(int ticks = 0) : m_ticks(ticks) {}
    operator int() const { return m_ticks; }

private:
    int m_ticks;
};
