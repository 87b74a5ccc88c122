#pragma once

#include <QPointer>
#include <QString>

#include <vector>

class QAction;

/// Commands with the places where they are found in menus, searchable by what people call them. A command says further
/// words in its property `searchWords`, a text, and its description in `description` or its status tip.
class CommandList
{
public:
    struct Command
    {
        QPointer<QAction> action;
        QString name;
        QString path; // "Edit > Align", of the menu with the fewest levels
    };

    /// Everything that can be chosen in a menu and below it.
    void addMenu(const QList<QAction *> &entries, const QString &path = QString());
    /// A command that is there already keeps the shorter path.
    void add(QAction *action, const QString &path);
    const std::vector<Command> &commands() const { return m_commands; }

    /// Every word of the query must be found, case apart. Names that begin with the query come first, then those with
    /// words that begin so, then those called so elsewhere, then those with the letters anywhere in name, path or
    /// description. Among equals, what can be run now goes before what cannot, then the order of the further words
    /// decides, then that of the menus. An empty query finds everything in order of the menus.
    std::vector<Command> find(const QString &query) const;
    /// Why a command is disabled, empty when it is not or nobody knows.
    static QString reasonOf(const QAction *action);

private:
    std::vector<Command> m_commands;
};
