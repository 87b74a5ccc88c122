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
    RyActionMenu(const RyActionMenu &) = delete;
    RyActionMenu &operator=(const RyActionMenu &) = delete;

    void insertAction(const QString &className, int position);
    void insertSeparator(int position);
    /// Takes ownership.
    void insertMenu(const QString &title, RyActionMenu *menu, int position);

    /// Adds the entries to a real menu; unknown class names add nothing, sub-menus without actions do not show.
    void fill(QMenu *menu) const;
    /// One line per entry, two blanks per level: class names, "-" for a separator, "Title >" for a sub-menu.
    QStringList describe() const;

private:
    struct Entry;
    void insert(std::unique_ptr<Entry> entry, int position);

    std::vector<std::unique_ptr<Entry>> m_entries;
};
