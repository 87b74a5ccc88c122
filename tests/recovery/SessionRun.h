#pragma once

#include <QProcess>
#include <QStringList>

#include <utility>
#include <vector>

/// A program that edits until it is killed, and what it told.
class SessionRun
{
public:
    struct Edit
    {
        qint64 time; // milliseconds since 1970 at which it was finished
        QByteArray hash;
        QString path; // of the file that it belongs to
        bool isSaved = false;
        bool isBeforeFull = true; // finished before the disk was full
    };

    SessionRun(const QString &settings, const QString &temporary) : m_settings(settings), m_temporary(temporary) {}
    ~SessionRun();

    /// False when nothing was heard of it.
    [[nodiscard]] bool start(const QString &file, unsigned seed, const QStringList &more = {});
    void letRun(int milliseconds);
    /// Without a word of warning.
    void kill();
    /// Waits until it says something that begins so.
    [[nodiscard]] bool waitFor(const QByteArray &text);

    const std::vector<Edit> &edits() const { return m_edits; }
    const QStringList &messages() const { return m_messages; }
    /// Whether that state may be what is brought back: nothing that had been finished `limit` milliseconds before the
    /// end is missing. Time during which the machine had no processor for the program, or the disk kept it waiting,
    /// does not count.
    QString checkRecovered(const QByteArray &hash, int limit = 1000) const;

private:
    void read();

    QString m_settings;
    QString m_temporary;
    QProcess m_process;
    QByteArray m_said;
    QByteArray m_line;
    std::vector<Edit> m_edits;
    QStringList m_messages;
    bool m_isFull = false;
    qint64 m_killed = 0;
    std::vector<std::pair<qint64, int>> m_waits; // when, and for how many milliseconds
};
