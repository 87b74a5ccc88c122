#include "rycore/undo/restore/RyRestoreSpan.h"

#include <utility>

RyRestoreSpan::RyRestoreSpan(Scope scope, const QString &caption) : m_points(ryRestorePoints()), m_caption(caption)
{
    if (!m_points)
        return;
    m_unkept = m_points->unkept();
    m_cleared = m_points->cleared();
    m_id = m_points->begin(scope == Scope::Work);
}

RyRestoreSpan::~RyRestoreSpan()
{
    finish();
}

bool RyRestoreSpan::isNeeded() const
{
    return m_id && m_points && m_points->unkept() != m_unkept;
}

bool RyRestoreSpan::hasLostSteps() const
{
    return m_points && m_points->cleared() != m_cleared;
}

bool RyRestoreSpan::finish()
{
    const bool needed = isNeeded();
    const int id = std::exchange(m_id, 0);
    return id && m_points && m_points->end(id, needed, m_caption);
}

bool RyRestoreSpan::goBack()
{
    if (!m_id || !m_points || !m_points->goBack(m_id))
        return false;
    m_id = 0;
    return true;
}
