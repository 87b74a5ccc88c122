#pragma once

#include <QMenu>

#include <vector>

/// A menu filled with class names of actions; sub-menus go by ids, 0 is the menu itself.
class RyMenu : public QMenu
{
    Q_OBJECT
public:
    explicit RyMenu(const QString &title = QString(), QWidget *parent = nullptr);

    /// Removes all entries and sub-menus.
    void clear();
    using QMenu::addAction;
    using QMenu::addSeparator;
    /// A class name that nobody registered adds nothing.
    void addAction(const QString &className, int subMenuId);
    /// Returns the new sub-menu's id. It shows once there is an action in it.
    int addSubMenu(const QString &title, int parentId);
    void addSeparator(int subMenuId);

    /// One line per visible entry, two blanks per level: class names, "-" for a separator, "Title >" for a sub-menu.
    QStringList describe() const;

private:
    QMenu *subMenu(int id) const;

    std::vector<QMenu *> m_subMenus;
};
