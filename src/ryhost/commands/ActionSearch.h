#pragma once

#include "ryhost/commands/CommandList.h"

#include <QLineEdit>
#include <QPointer>

class QCompleter;
class QStandardItemModel;
class QTreeView;
class RyMainWindow;

/// A field that finds commands by their names, by what else they are called and by what they do, and runs the one that
/// is chosen. Those that cannot be run now are shown grey and say why.
class ActionSearch : public QLineEdit
{
    Q_OBJECT
public:
    explicit ActionSearch(RyMainWindow *window);

    /// Takes the keyboard and shows all commands.
    void begin();
    /// All commands as they are now: those of the menu bar, of the active tool's context menu, and the rest.
    CommandList commands() const;
    /// The list under the field; rows are the commands found, in columns name, place and key.
    QTreeView *results() const { return m_results; }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void search();
    void showTip(const QModelIndex &index);
    void choose(const QModelIndex &index);
    void finish();

    RyMainWindow *m_window;
    QStandardItemModel *m_model;
    QCompleter *m_completer;
    QTreeView *m_results;
    std::vector<CommandList::Command> m_found;
    QPointer<QWidget> m_focusBefore;
};
