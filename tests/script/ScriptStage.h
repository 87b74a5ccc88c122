#pragma once

#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/undo/RyUndoStack.h"

#include <memory>

/// A scene of its own and an engine that sees it. Tests of what scripts see inherit from it.
class ScriptStage
{
protected:
    void open()
    {
        RyMessageLog::global().setEcho(false);
        RyMessageLog::global().clear();
        ryUndoStack()->clearAll();
        m_scene = std::make_unique<RyScene>();
        m_engine = std::make_unique<RyScriptEngine>();
        m_engine->setGlobalScene(m_scene.get());
    }
    void close()
    {
        m_engine.reset();
        m_scene.reset();
        ryUndoStack()->clearAll();
        RyMessageLog::global().setEcho(true);
    }

    QScriptValue run(const char *program)
    {
        return m_engine->evaluate(QString::fromUtf8(program), QStringLiteral("test"));
    }
    bool holds(const char *program)
    {
        const QScriptValue value = run(program);
        if (m_engine->hasFailed())
            qWarning("%s", qPrintable(value.toString()));
        return !m_engine->hasFailed() && value.isBool() && value.toBool();
    }
    /// The message of the error that the program ends with.
    QString errorOf(const char *program)
    {
        const QScriptValue value = run(program);
        return m_engine->hasFailed() ? value.toString() : QStringLiteral("no error");
    }

    std::unique_ptr<RyScene> m_scene;
    std::unique_ptr<RyScriptEngine> m_engine;
};
