#include "rycore/undo/restore/RyRestoreGuard.h"

#include <utility>

RyRestoreGuard::RyRestoreGuard(const QString &caption) : m_points(ryRestorePoints()), m_caption(caption)
{
    if (!m_points)
        return;
    m_unkept = m_points->unkept();
    m_id = m_points->begin();
}

RyRestoreGuard::~RyRestoreGuard()
{
    finish();
}

bool RyRestoreGuard::isNeeded() const
{
    return m_id && m_points && m_points->unkept() != m_unkept;
}

void RyRestoreGuard::finish()
{
    const bool needed = isNeeded();
    if (const int id = std::exchange(m_id, 0); id && m_points)
        m_points->end(id, needed, m_caption);
}
