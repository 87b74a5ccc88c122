#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

/// The application's message log.
class RyMessageLog : public QObject
{
    Q_OBJECT
public:
    static RyMessageLog &global();

    void info(const QString &message);
    void warning(const QString &message);
    /// All warnings, oldest first.
    QStringList warnings() const { return m_warnings; }
    QStringList messages() const { return m_messages; }
    void clear();
    /// Whether messages also go to standard error (on by default).
    void setEcho(bool on) { m_echo = on; }

signals:
    void messageAdded(const QString &message, bool isWarning);

private:
    QStringList m_messages;
    QStringList m_warnings;
    bool m_echo = true;
};

/// Text of a developer's warning: "%1(%2): %3" with the source path's separators turned into backslashes and cut to
/// what follows from the last "\src\" on (the whole path where there is none).
QString ryDeveloperMessage(const char *sourceFile, int line, const QString &message);
