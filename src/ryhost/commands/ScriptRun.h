#pragma once

#include <QObject>
#include <QString>

class RyMainWindow;
class RyScriptEngine;

/// Runs a script of a person at the window. Undo or a restore point takes back all it does. The window stays alive
/// while it works: Escape stops it, other keys and the mouse reach only what the script itself opens.
class ScriptRun : public QObject
{
    Q_OBJECT
public:
    explicit ScriptRun(RyMainWindow *window);

    /// False, with a message on the screen, when it could not be read, failed or was stopped.
    bool run(const QString &path);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void execute(const QString &path);
    void report(const QString &path, bool canGoBack);

    RyMainWindow *m_window;
    RyScriptEngine *m_engine;
    QString m_failure;
    bool m_isStopped = false;
};
