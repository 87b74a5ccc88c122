#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QMenu;

/// A model of a menu of action class names. Position -1 appends.
class RyActionMenu
{
public:
    RyActionMenu();
    ~RyActionMenu();

    void insertAction(const QString &className, int position);
    void insertSeparator(int position);
    /// Takes ownership.
    void insertMenu(const QString &title, RyActionMenu *menu, int position);

    /// Adds the entries to a real menu; unknown class names add nothing.
    void fill(QMenu *menu) const;
    QStringList describe() const;

private:
    struct Entry;
    std::vector<std::unique_ptr<Entry>> m_entries;
};
