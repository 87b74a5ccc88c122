#pragma once

#include <QStringList>

/// Collects what was repaired while a file was read; of a flood only the first ones are kept.
class RyGltfWarnings
{
public:
    explicit RyGltfWarnings(QStringList *list) : m_list(list) {}

    void add(const QString &text)
    {
        if (!m_list)
            return;
        if (m_count < maximum)
            m_list->append(text);
        else if (m_count == maximum)
            m_list->append(QStringLiteral("there are more warnings like these"));
        ++m_count;
    }

private:
    static constexpr int maximum = 100;
    QStringList *m_list;
    int m_count = 0;
};
