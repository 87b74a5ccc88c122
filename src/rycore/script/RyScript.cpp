#include "rycore/script/RyScript.h"

#include "rycore/base/RyMessageLog.h"
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
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly)) {
        if (!quiet)
            RyMessageLog::global().warning(
                tr("The script %1 cannot be read: %2.").arg(QDir::toNativeSeparators(path), file.errorString()));
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
    engine->evaluate(m_source, m_filePath.isEmpty() ? getName() : m_filePath);
    return !engine->hasFailed();
}
