#include "rycore/ui/RyActionMenu.h"

#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"

#include <QMenu>

#include <algorithm>

struct RyActionMenu::Entry
{
    QString text; // class name, or title of a sub-menu; empty for a separator
    std::unique_ptr<RyActionMenu> menu;
};

RyActionMenu::RyActionMenu() = default;
RyActionMenu::~RyActionMenu() = default;

void RyActionMenu::insert(std::unique_ptr<Entry> entry, int position)
{
    const bool append = position < 0 || position > int(m_entries.size());
    m_entries.insert(append ? m_entries.end() : m_entries.begin() + position, std::move(entry));
}

void RyActionMenu::insertAction(const QString &className, int position)
{
    insert(std::unique_ptr<Entry>(new Entry{className, nullptr}), position);
}

void RyActionMenu::insertSeparator(int position)
{
    insert(std::make_unique<Entry>(), position);
}

void RyActionMenu::insertMenu(const QString &title, RyActionMenu *menu, int position)
{
    if (menu)
        insert(std::unique_ptr<Entry>(new Entry{title, std::unique_ptr<RyActionMenu>(menu)}), position);
}

void RyActionMenu::fill(QMenu *menu) const
{
    const RyActionMgr *manager = RyActionMgr::instance();
    for (const auto &entry : m_entries) {
        if (entry->menu) {
            QMenu *subMenu = menu->addMenu(entry->text);
            subMenu->setToolTipsVisible(true);
            entry->menu->fill(subMenu);
            const QList<QAction *> entries = subMenu->actions();
            subMenu->menuAction()->setVisible(std::any_of(entries.begin(), entries.end(), [](const QAction *action) {
                return action->isVisible() && !action->isSeparator();
            }));
        } else if (entry->text.isEmpty()) {
            menu->addSeparator();
        } else if (RyAction *action = manager ? manager->findAction(entry->text) : nullptr) {
            menu->addAction(action);
        }
    }
}

QStringList RyActionMenu::describe() const
{
    QStringList lines;
    for (const auto &entry : m_entries) {
        if (!entry->menu) {
            lines.append(entry->text.isEmpty() ? QStringLiteral("-") : entry->text);
            continue;
        }
        lines.append(entry->text + QStringLiteral(" >"));
        for (const QString &line : entry->menu->describe())
            lines.append(QStringLiteral("  ") + line);
    }
    return lines;
}
