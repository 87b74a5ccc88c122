#pragma once

#include "rycore/viewport/RyViewportMgr.h"

#include <QObject>
#include <QPointer>

#include <vector>

class RyAction;
class RyClassFactory;

/// One instance of each action class; resolves names for menus and scripts.
class RyActionMgr : public QObject
{
    Q_OBJECT
public:
    /// `viewports` is what the actions that switch tools act on; may be null.
    explicit RyActionMgr(RyViewportMgr *viewports, QObject *parent = nullptr);
    ~RyActionMgr() override;

    /// The application's, null when there is none.
    static RyActionMgr *instance();

    /// Makes the action of every factory whose class is an action and calls init(); others are passed over.
    void createActions(const std::vector<RyClassFactory *> &factories);
    /// Takes ownership.
    void addAction(RyAction *action);
    RyAction *findAction(const QString &className) const;
    const std::vector<RyAction *> &getActions() const { return m_actions; }
    void deleteActions();
    RyViewportMgr *getViewportMgr() const { return m_viewports; }

signals:
    void actionListChanged();

private:
    QPointer<RyViewportMgr> m_viewports;
    std::vector<RyAction *> m_actions;
};
