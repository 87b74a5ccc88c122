#pragma once

#include <QWidget>

class HistoryModel;
class HostFiles;
class QLabel;
class QTreeView;
class RyUndoStack;

/// The undo history: all steps with their times, where the scene is among them, which of them is the saved state, and
/// what was changed since. A click on a step, or the keys that move through the list, undo or redo up to it.
class HistoryPane : public QWidget
{
    Q_OBJECT
public:
    explicit HistoryPane(HostFiles *files, QWidget *parent = nullptr);

    QTreeView *list() const { return m_list; }

signals:
    void messagePosted(const QString &message);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void goTo(int row);
    /// Nothing while it is hidden: it is made anew when it shows.
    void refresh();

    HostFiles *m_files;
    RyUndoStack *m_stack;
    HistoryModel *m_model;
    QLabel *m_state;
    QTreeView *m_list;
    bool m_showing = false; // where the scene is, which is no wish to go anywhere
};
