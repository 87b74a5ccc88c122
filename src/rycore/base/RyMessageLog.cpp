#include "rycore/base/RyMessageLog.h"

#include <cstdio>

// A copy of its own: a literal lies in the data of a library that may be unloaded before the log goes.
static QString ownCopy(const QString &text)
{
    return QString(text.constData(), text.size());
}

static void echo(const char *kind, const QString &message)
{
    std::fprintf(stderr, "%s%s\n", kind, message.toLocal8Bit().constData());
}

RyMessageLog &RyMessageLog::global()
{
    static RyMessageLog log;
    return log;
}

void RyMessageLog::info(const QString &message)
{
    m_messages.append(ownCopy(message));
    if (m_echo)
        echo("", message);
    emit messageAdded(message, false);
}

void RyMessageLog::warning(const QString &message)
{
    m_messages.append(ownCopy(message));
    m_warnings.append(m_messages.last());
    if (m_echo)
        echo("Warning: ", message);
    emit messageAdded(message, true);
}

void RyMessageLog::clear()
{
    m_messages.clear();
    m_warnings.clear();
}

QString ryDeveloperMessage(const char *sourceFile, int line, const QString &message)
{
    QString path = QString::fromUtf8(sourceFile);
    path.replace(QLatin1Char('/'), QLatin1Char('\\'));
    const int source = path.lastIndexOf(QLatin1String("\\src\\"));
    if (source > 0)
        path = path.mid(source);
    return QStringLiteral("%1(%2): %3").arg(path, QString::number(line), message);
}
