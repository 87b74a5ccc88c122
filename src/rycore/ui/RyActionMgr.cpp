#include "rycore/ui/RyActionMgr.h"

#include "rycore/base/RyClassFactory.h"
#include "rycore/ui/RyAction.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <algorithm>

static RyActionMgr *s_instance = nullptr;

RyActionMgr::RyActionMgr(RyViewportMgr *viewports, QObject *parent) : QObject(parent), m_viewports(viewports)
{
    if (!s_instance)
        s_instance = this;
}

RyActionMgr::~RyActionMgr()
{
    deleteActions();
    if (s_instance == this)
        s_instance = nullptr;
}

RyActionMgr *RyActionMgr::instance()
{
    return s_instance;
}

void RyActionMgr::createActions(const std::vector<RyClassFactory *> &factories)
{
    for (RyClassFactory *factory : factories) {
        if (!factory->metaObject()->inherits(&RyAction::staticMetaObject) || findAction(factory->className()))
            continue;
        if (auto *action = qobject_cast<RyAction *>(factory->createInstance()))
            addAction(action);
    }
}

void RyActionMgr::addAction(RyAction *action)
{
    if (!action || std::find(m_actions.begin(), m_actions.end(), action) != m_actions.end())
        return;
    action->setParent(this);
    m_actions.push_back(action);
    action->init();
    if (action->shortcut().isEmpty())
        action->setShortcut(action->getDefaultAccel());
    emit actionListChanged();
}

RyAction *RyActionMgr::findAction(const QString &className) const
{
    const auto found = std::find_if(m_actions.begin(), m_actions.end(), [&](const RyAction *action) {
        return className == QLatin1String(action->metaObject()->className());
    });
    return found != m_actions.end() ? *found : nullptr;
}

void RyActionMgr::deleteActions()
{
    const std::vector<RyAction *> actions = std::move(m_actions);
    m_actions.clear();
    if (!actions.empty())
        emit actionListChanged();
    for (RyAction *action : actions)
        delete action;
}
