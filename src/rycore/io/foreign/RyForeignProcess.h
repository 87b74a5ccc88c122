#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>

/// The reading process as seen by the one that started it: its limits, what it said, how it ended. It goes when this
/// object goes, and when the thread that started it does.
class RyForeignProcess : private QProcess
{
public:
    /// `memory`: the most that it may hold, in bytes.
    explicit RyForeignProcess(qint64 memory) : m_memory(memory) {}
    ~RyForeignProcess() override;

    /// `out`: handle of a file that it writes, of this process.
    bool start(const QString &program, const QString &in, int out, double unit);
    /// Lets it run for some milliseconds, less when it has something to say.
    void wait(int time);
    bool isRunning() const { return state() != NotRunning; }
    /// For good.
    void end();

    /// From 0 to 1; grows only.
    double progress() const { return m_progress; }
    /// Not endlessly many; the last one counts those that are not there.
    QStringList notes() const;
    /// What it has taken so far, in milliseconds; -1 when it has ended, which may be known here before `isRunning`
    /// tells.
    qint64 processorTime() const;
    bool isOverMemory() const { return m_isOverMemory; }
    bool isDone() const;
    /// Why there is no result, as the end of a sentence; empty while it runs or when it is done.
    QString reason() const;

protected:
    void setupChildProcess() override;

private:
    void takeLines();
    void takeLine(const QByteArray &line);
    void takeNote(const QString &note);
    qint64 residentBytes() const;

    qint64 m_memory;
    int m_parent = 0;
    int m_out = -1;
    QElapsedTimer m_sinceWatched;
    QByteArray m_begun; // of a line
    bool m_isTooLong = false;
    double m_progress = 0.0;
    QStringList m_notes;
    int m_furtherNotes = 0;
    QString m_refusal;
    bool m_isOverMemory = false;
};
