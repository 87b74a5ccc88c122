#include "ryhost/ActionSearch.h"

#include "ryhost/menuText.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCompleter>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMenu>
#include <QStringListModel>

#include <utility>
#include <vector>

namespace {

/// Every command below the menu bar with its path.
std::vector<std::pair<QString, QAction *>> commandsOf(const QMenuBar *bar)
{
    std::vector<std::pair<QString, QAction *>> commands;
    std::vector<std::pair<QString, QList<QAction *>>> pending{{QString(), bar->actions()}};
    while (!pending.empty()) {
        const auto [path, actions] = pending.back();
        pending.pop_back();
        for (QAction *action : actions) {
            if (action->isSeparator() || !action->isVisible())
                continue;
            const QString text = path + plainMenuText(action->text());
            if (action->menu())
                pending.emplace_back(text + QStringLiteral(" > "), action->menu()->actions());
            else
                commands.emplace_back(text, action);
        }
    }
    return commands;
}

} // namespace

ActionSearch::ActionSearch(QMenuBar *menus)
    : QLineEdit(menus), m_menus(menus), m_completer(new QCompleter(new QStringListModel(this), this))
{
    setObjectName(QStringLiteral("ActionSearch"));
    setPlaceholderText(tr("Search actions (F3)"));
    setAccessibleName(tr("Search actions"));
    setFixedWidth(220);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setFilterMode(Qt::MatchContains);
    m_completer->setMaxVisibleItems(12);
    setCompleter(m_completer);
    connect(m_completer, QOverload<const QString &>::of(&QCompleter::activated), this, &ActionSearch::run,
            Qt::QueuedConnection);
}

void ActionSearch::collect()
{
    static_cast<QStringListModel *>(m_completer->model())->setStringList(texts());
}

QStringList ActionSearch::texts() const
{
    QStringList texts;
    for (const auto &[text, action] : commandsOf(m_menus)) {
        if (action->isEnabled())
            texts.append(text);
    }
    texts.removeDuplicates();
    texts.sort(Qt::CaseInsensitive);
    return texts;
}

void ActionSearch::begin()
{
    collect();
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
}

void ActionSearch::focusInEvent(QFocusEvent *event)
{
    collect();
    QLineEdit::focusInEvent(event);
}

void ActionSearch::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        clear();
        if (QWidget *window = this->window())
            window->setFocus();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const QAbstractItemView *popup = m_completer->popup();
        if (!popup->currentIndex().isValid() && m_completer->completionCount() > 0 && !text().isEmpty()) {
            m_completer->setCurrentRow(0);
            run(m_completer->currentCompletion());
            return;
        }
    }
    QLineEdit::keyPressEvent(event);
}

void ActionSearch::run(const QString &text)
{
    clear();
    m_completer->popup()->hide();
    for (const auto &[path, action] : commandsOf(m_menus)) {
        if (path == text && action->isEnabled()) {
            action->trigger();
            return;
        }
    }
}
