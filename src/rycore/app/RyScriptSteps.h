#pragma once

#include <QMetaObject>
#include <QObject>
#include <QPointer>

class RyScene;
class RyScriptEngine;
class RyViewportMgr;

/// Lets the active tool take a new selection after each step of a script. Tools take it by an event, and between the
/// steps there is no loop that would deliver it: an edit would meet the tool on the node before.
class RyScriptSteps : public QObject
{
    Q_OBJECT
public:
    RyScriptSteps(RyScene *scene, RyViewportMgr *viewports, RyScriptEngine *scripts, QObject *parent);

private:
    /// Listens to the selection after whoever has listened so far.
    void follow();
    void deliver();

    QPointer<RyScene> m_scene;
    QPointer<RyViewportMgr> m_viewports;
    QPointer<RyScriptEngine> m_scripts;
    QMetaObject::Connection m_following;
};
