#include "rycore/script/RyScriptEngine.h"

#include "rycore/base/RyClassFactory.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/base/registerErrorType.h"
#include "rycore/script/prototypes/registerSceneClasses.h"

#include <QMetaMethod>
#include <QScriptContext>
#include <QStringList>

#include <algorithm>
#include <utility>

static std::vector<RyScriptEngine *> engines;

static QScriptValue print(QScriptContext *context, QScriptEngine *engine)
{
    QStringList words;
    for (int i = 0; i < context->argumentCount(); ++i)
        words.append(context->argument(i).toString());
    RyMessageLog::global().info(words.join(QLatin1Char(' ')));
    return engine->undefinedValue();
}

RyScriptEngine::RyScriptEngine(QObject *parent) : QScriptEngine(parent)
{
    engines.push_back(this);
    registerErrorType(this);
    globalObject().setProperty(QStringLiteral("print"), newFunction(print));
    ryRegisterSceneClasses(this);
    // Nobody else would hear of an error in a function that a signal calls.
    connect(this, &QScriptEngine::signalHandlerException, this, [this](const QScriptValue &error) {
        const QString message = tr("A function that a signal called failed: %1").arg(error.toString());
        noteFailure(message);
        RyMessageLog::global().warning(message);
    });
}

RyScriptEngine::~RyScriptEngine()
{
    std::erase(engines, this);
}

RyScriptEngine *RyScriptEngine::current()
{
    return engines.empty() ? nullptr : engines.back();
}

void RyScriptEngine::registerFactories(const std::vector<RyClassFactory *> &factories)
{
    for (RyClassFactory *factory : factories)
        factory->registerClass(this);
}

void RyScriptEngine::setGlobal(const QString &name, QObject *object)
{
    globalObject().setProperty(name, object ? newQObject(object, QtOwnership, ExcludeDeleteLater) : QScriptValue());
}

void RyScriptEngine::setGlobalScene(QObject *scene)
{
    QScriptValue global = globalObject();
    for (const QString &name : qAsConst(m_sceneNames))
        global.setProperty(name, QScriptValue());
    m_sceneNames.clear();
    setGlobal(QStringLiteral("Scene"), scene);
    if (!scene)
        return;
    const QScriptValue wrapper = global.property(QStringLiteral("Scene"));
    const QMetaObject *metaObject = scene->metaObject();
    for (int i = QObject::staticMetaObject.methodCount(); i < metaObject->methodCount(); ++i) {
        const QMetaMethod method = metaObject->method(i);
        const QString name = QString::fromLatin1(method.name());
        if (method.access() == QMetaMethod::Private || m_sceneNames.contains(name) || global.property(name).isValid())
            continue;
        global.setProperty(name, wrapper.property(name));
        m_sceneNames.append(name);
    }
}

QScriptValue RyScriptEngine::evaluate(const QString &program, const QString &fileName, int firstLine)
{
    // Called by a native function of a running script: the program does not see that function's variables.
    const bool nested = currentContext()->parentContext() != nullptr;
    if (nested) {
        QScriptContext *context = pushContext();
        context->setActivationObject(globalObject());
        context->setThisObject(globalObject());
    }
    ++m_running;
    const int actions = std::exchange(m_actions, 0);
    const QScriptValue result = QScriptEngine::evaluate(program, fileName, firstLine);
    m_actions = actions;
    --m_running;
    const QString place = fileName.isEmpty() ? tr("script") : fileName;
    const bool isStopped = isStopping();
    m_failed = isStopped || hasUncaughtException();
    if (m_failed) {
        const QString message =
            isStopped ? QStringLiteral("%1: %2").arg(place, m_stopReason)
                      : QStringLiteral("%1(%2): %3")
                            .arg(place, QString::number(uncaughtExceptionLineNumber()), uncaughtException().toString());
        if (!isStopped || m_running == 0) {
            noteFailure(message);
            RyMessageLog::global().warning(message);
        }
        clearExceptions();
    }
    if (nested)
        popContext();
    if (m_running == 0)
        m_stopReason.clear();
    else if (isStopped)
        abortEvaluation();
    return result;
}

void RyScriptEngine::endAction()
{
    if (--m_actions == 0 && isEvaluating())
        emit actionFinished();
}

void RyScriptEngine::stop(const QString &reason)
{
    if (m_running == 0 || isStopping())
        return;
    m_stopReason = reason;
    abortEvaluation();
}

void RyScriptEngine::noteFailure(const QString &message)
{
    ++m_failures;
    m_lastFailure = message;
}
