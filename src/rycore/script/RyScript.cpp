#include "rycore/script/RyScript.h"

#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/script/RyScriptEngine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

RyScript::RyScript(const QString &name, QObject *parent) : RyBase(parent)
{
    setObjectName(name);
}

bool RyScript::loadFromFile(const QString &path, bool quiet)
{
    QFile file(path);
    const QFileInfo info(path);
    m_error.clear();
    if (!info.exists())
        m_error = tr("there is no such file");
    else if (info.isDir())
        m_error = tr("this is a folder");
    else if (!file.open(QIODevice::ReadOnly))
        m_error = file.errorString();
    if (!m_error.isEmpty()) {
        const QString message = tr("The script %1 cannot be read: %2.").arg(QDir::toNativeSeparators(path), m_error);
        if (RyScriptEngine *engine = RyScriptEngine::current())
            engine->noteFailure(message);
        if (!quiet)
            RyMessageLog::global().warning(message);
        return false;
    }
    const QByteArray content = file.readAll();
    m_source = QString::fromUtf8(content.startsWith("\xEF\xBB\xBF") ? content.mid(3) : content);
    m_filePath = path;
    if (getName().isEmpty())
        setObjectName(QFileInfo(path).completeBaseName());
    return true;
}

void RyScript::setSource(const QString &source)
{
    m_source = source;
    m_filePath.clear();
}

bool RyScript::execute()
{
    RyScriptEngine *engine = RyScriptEngine::current();
    if (!engine) {
        RyMessageLog::global().warning(tr("The script %1 cannot run: there is no script engine.").arg(getName()));
        return false;
    }
    ryScene()->getClipPlayer()->stop(); // it works on poses, unless it shows one itself
    engine->evaluate(m_source, m_filePath.isEmpty() ? getName() : m_filePath);
    return !engine->hasFailed();
}
