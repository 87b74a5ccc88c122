#pragma once

#include <QObject>
#include <QPointer>
#include <QScriptValue>
#include <QScriptable>
#include <QStringList>

class RyViewTool;
class RyViewportMgr;

/// The viewport tools in scripts, by class name. What a tool offers is its slots and properties. An unknown class is a
/// script error.
class RyScriptTools : public QObject, protected QScriptable
{
    Q_OBJECT
public:
    RyScriptTools(RyViewportMgr *viewports, QObject *parent);

    Q_INVOKABLE QStringList names() const;
    Q_INVOKABLE QScriptValue find(const QString &className) const;
    /// Null when none is active.
    Q_INVOKABLE QScriptValue getActive() const;
    /// Makes the tool of that class the active one, and returns it.
    Q_INVOKABLE QScriptValue activate(const QString &className) const;

private:
    RyViewTool *toolOf(const QString &className) const;
    QScriptValue toScript(RyViewTool *tool) const;

    QPointer<RyViewportMgr> m_viewports;
};
