#include "ryhost/commands/ActionSearch.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMenu.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/look/clearButton.h"

#include <QApplication>
#include <QCompleter>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTimer>
#include <QTreeView>

#include <algorithm>

namespace {

constexpr int FieldWidth = 220;
constexpr int ResultsWidth = 820;
constexpr int VisibleRows = 14;
constexpr int ReasonMilliseconds = 6000;

} // namespace

ActionSearch::ActionSearch(RyMainWindow *window)
    : QLineEdit(window->menuBar()), m_window(window), m_model(new QStandardItemModel(this)),
      m_completer(new QCompleter(m_model, this)), m_results(new QTreeView)
{
    setObjectName(QStringLiteral("ActionSearch"));
    setPlaceholderText(tr("Search actions (F3)"));
    setAccessibleName(tr("Search actions"));
    setToolTip(tr("Find a command by its name or by what it does"));
    giveClearButton(this);
    setFixedWidth(FieldWidth);
    m_results->setObjectName(QStringLiteral("ActionSearchResults"));
    m_results->setHeaderHidden(true);
    m_results->setRootIsDecorated(false);
    m_results->setUniformRowHeights(true);
    m_results->setAllColumnsShowFocus(true);
    m_results->setTextElideMode(Qt::ElideRight);
    m_completer->setPopup(m_results);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(VisibleRows);
    // Not as the field's own completer, which would write the row that the arrow keys reach over the query.
    m_completer->setWidget(this);
    connect(this, &QLineEdit::textEdited, this, &ActionSearch::search);
    connect(m_completer, QOverload<const QModelIndex &>::of(&QCompleter::highlighted), this, &ActionSearch::showTip);
    connect(m_completer, QOverload<const QModelIndex &>::of(&QCompleter::activated), this, &ActionSearch::choose);
}

CommandList ActionSearch::commands() const
{
    CommandList list;
    list.addMenu(m_window->menuBar()->actions());
    if (RyViewTool *tool = m_window->getViewportMgr()->getActiveTool()) {
        RyActionMenu model;
        tool->fillToolOptionsMenu(&model);
        QMenu menu;
        model.fill(&menu);
        // A place in the menu bar goes first, it is the one that can be read off the screen.
        CommandList context;
        context.addMenu(menu.actions(), tr("Right click"));
        const std::vector<CommandList::Command> known = list.commands();
        for (const CommandList::Command &command : context.commands()) {
            const bool isKnown = std::any_of(known.begin(), known.end(),
                                             [&](const auto &each) { return each.action == command.action; });
            if (!isKnown)
                list.add(command.action, command.path);
        }
    }
    return list;
}

void ActionSearch::begin()
{
    if (!hasFocus())
        m_focusBefore = QApplication::focusWidget();
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
    search();
}

void ActionSearch::search()
{
    m_found = commands().find(text());
    m_model->clear();
    m_model->setColumnCount(3);
    int firstEnabled = -1;
    for (const CommandList::Command &command : m_found) {
        const QAction *action = command.action;
        const QString reason = CommandList::reasonOf(action);
        const QList<QStandardItem *> row = {
            new QStandardItem(action->icon(), command.name),
            new QStandardItem(reason.isEmpty() ? command.path : command.path + QStringLiteral(" - ") + reason),
            new QStandardItem(action->shortcut().toString(QKeySequence::NativeText))};
        for (QStandardItem *item : row) {
            item->setEditable(false);
            item->setEnabled(action->isEnabled());
            item->setToolTip(reason.isEmpty() || action->toolTip().contains(reason) ? action->toolTip() : reason);
        }
        if (firstEnabled < 0 && action->isEnabled())
            firstEnabled = m_model->rowCount();
        m_model->appendRow(row);
    }
    if (m_found.empty()) {
        auto *nothing = new QStandardItem(tr("No command is called so."));
        nothing->setEnabled(false);
        m_model->appendRow(nothing);
    }
    const int resultsWidth = std::min(ResultsWidth, m_window->width());
    m_completer->complete(QRect(width() - resultsWidth, 0, resultsWidth, height()));
    QHeaderView *header = m_results->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    if (header->count() > 1)
        header->setSectionResizeMode(1, QHeaderView::Stretch);
    if (firstEnabled >= 0)
        m_results->setCurrentIndex(m_results->model()->index(firstEnabled, 0));
}

void ActionSearch::showTip(const QModelIndex &index)
{
    const bool known = index.isValid() && index.row() < int(m_found.size()) && m_found[size_t(index.row())].action;
    QStatusTipEvent event(known ? m_found[size_t(index.row())].action->statusTip() : QString());
    QCoreApplication::sendEvent(m_window, &event);
}

void ActionSearch::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        finish();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_results->isVisible())
            choose(m_results->currentIndex());
        else
            search();
        return;
    case Qt::Key_Down:
        if (!m_results->isVisible()) {
            search();
            return;
        }
        break;
    default:
        break;
    }
    QLineEdit::keyPressEvent(event);
}

void ActionSearch::choose(const QModelIndex &index)
{
    const int row = index.isValid() ? index.row() : 0;
    const QPointer<QAction> action = row < int(m_found.size()) ? m_found[size_t(row)].action : nullptr;
    if (!action)
        return;
    if (!action->isEnabled()) {
        m_window->statusBar()->showMessage(CommandList::reasonOf(action), ReasonMilliseconds);
        return;
    }
    finish();
    // What opens a dialog must not run inside the list's own event.
    QTimer::singleShot(0, this, [action] {
        if (action && action->isEnabled())
            action->trigger();
    });
}

void ActionSearch::finish()
{
    clear();
    m_results->hide();
    m_found.clear();
    showTip(QModelIndex());
    // The list passes the keyboard to this field once more when it closes.
    const QPointer<QWidget> back = m_focusBefore ? m_focusBefore.data() : m_window->centralWidget();
    QTimer::singleShot(0, this, [back] {
        if (back)
            back->setFocus(Qt::OtherFocusReason);
    });
    m_focusBefore = nullptr;
}
