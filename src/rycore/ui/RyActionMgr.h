#pragma once

#include <QObject>

#include <vector>

class RyAction;
class RyClassFactory;

/// One instance of each action class; resolves names for menus and scripts.
class RyActionMgr : public QObject
{
    Q_OBJECT
public:
    explicit RyActionMgr(QObject *parent = nullptr);
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

private:
    std::vector<RyAction *> m_actions;
};
