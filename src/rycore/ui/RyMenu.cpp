#include "rycore/ui/RyMenu.h"

#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"

namespace {

void describeMenu(const QMenu *menu, const QString &indent, QStringList &lines)
{
    for (const QAction *action : menu->actions()) {
        if (!action->isVisible())
            continue;
        if (action->isSeparator()) {
            lines.append(indent + QLatin1Char('-'));
        } else if (action->menu()) {
            lines.append(indent + action->menu()->title() + QStringLiteral(" >"));
            describeMenu(action->menu(), indent + QStringLiteral("  "), lines);
        } else {
            const bool known = qobject_cast<const RyAction *>(action);
            lines.append(indent + (known ? QString::fromLatin1(action->metaObject()->className()) : action->text()));
        }
    }
}

} // namespace

RyMenu::RyMenu(const QString &title, QWidget *parent) : QMenu(title, parent)
{
    setToolTipsVisible(true);
}

void RyMenu::clear()
{
    QMenu::clear();
    // Later ones may be children of earlier ones.
    while (!m_subMenus.empty()) {
        delete m_subMenus.back();
        m_subMenus.pop_back();
    }
}

QMenu *RyMenu::subMenu(int id) const
{
    return id == 0                                  ? const_cast<RyMenu *>(this)
           : id > 0 && id <= int(m_subMenus.size()) ? m_subMenus[size_t(id - 1)]
                                                    : nullptr;
}

void RyMenu::addAction(const QString &className, int subMenuId)
{
    const RyActionMgr *manager = RyActionMgr::instance();
    RyAction *action = manager ? manager->findAction(className) : nullptr;
    QMenu *menu = subMenu(subMenuId);
    if (!menu || !action)
        return;
    menu->addAction(action);
    for (; menu && menu != this; menu = qobject_cast<QMenu *>(menu->parentWidget()))
        menu->menuAction()->setVisible(true);
}

int RyMenu::addSubMenu(const QString &title, int parentId)
{
    QMenu *parent = subMenu(parentId);
    if (!parent)
        parent = this;
    QMenu *menu = parent->addMenu(title);
    menu->setToolTipsVisible(true);
    menu->menuAction()->setVisible(false);
    m_subMenus.push_back(menu);
    return int(m_subMenus.size());
}

void RyMenu::addSeparator(int subMenuId)
{
    if (QMenu *menu = subMenu(subMenuId))
        menu->addSeparator();
}

QStringList RyMenu::describe() const
{
    QStringList lines;
    describeMenu(this, QString(), lines);
    return lines;
}
