#pragma once

#include <QScriptEngine>

#include <vector>

class RyClassFactory;

/// The application's script engine: registered classes can be constructed by name, the scene is a global object, and
/// every error and every `print` goes to the message log. It must be deleted before the plug-ins whose classes it knows
/// are unloaded.
class RyScriptEngine : public QScriptEngine
{
    Q_OBJECT
public:
    explicit RyScriptEngine(QObject *parent = nullptr);
    ~RyScriptEngine() override;

    /// The engine made last that still lives; null when there is none. Scripts run in it.
    static RyScriptEngine *current();

    /// Lets every factory register its class, in this order.
    void registerFactories(const std::vector<RyClassFactory *> &factories);
    /// Makes an object known to all scripts under a name. The engine does not own it. Null removes the name.
    void setGlobal(const QString &name, QObject *object);
    /// The scene is `Scene`, and its own operations and signals can be used without that name too, except where the
    /// language or a class has the name already.
    void setGlobalScene(QObject *scene);

    /// Runs a program in the global scope, also when a running script leads here. An uncaught error is logged with file
    /// and line, does not stay pending, and is the result. So is, of the outermost program, why it was stopped.
    QScriptValue evaluate(const QString &program, const QString &fileName = QString(), int firstLine = 1);
    /// Whether the latest `evaluate` ended with an error.
    bool hasFailed() const { return m_failed; }

    /// Ends all running programs soon, as by an error that no program catches. Does nothing while none runs.
    void stop(const QString &reason);
    bool isStopping() const { return !m_stopReason.isEmpty(); }

    /// Whether what happens is done by a program itself, step by step, and not by an action that it runs.
    bool isStepping() const { return m_actions == 0 && isEvaluating(); }
    /// Around an action, which a program may have run; a program that the action runs takes its own steps.
    void beginAction() { ++m_actions; }
    void endAction();

    /// How many programs have failed so far, those counted that could not be read, and why the latest did.
    int failures() const { return m_failures; }
    const QString &lastFailure() const { return m_lastFailure; }
    void noteFailure(const QString &message);

signals:
    /// An action that a program ran is done.
    void actionFinished();

private:
    QStringList m_sceneNames;
    QString m_stopReason;
    QString m_lastFailure;
    int m_failures = 0;
    int m_running = 0;
    int m_actions = 0; // since the innermost program began
    bool m_failed = false;
};
