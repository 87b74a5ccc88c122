#include "recovery/SessionRun.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <QtTest>

namespace {

constexpr int StartTime = 60000;

}

SessionRun::~SessionRun()
{
    if (m_process.state() != QProcess::NotRunning)
        kill();
}

bool SessionRun::start(const QString &file, unsigned seed, const QStringList &more)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), m_temporary);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(RY_RECOVERY_SESSION), QStringList{m_settings, file, QString::number(seed)} + more);
    return m_process.waitForStarted(StartTime) && waitFor(more.contains(QStringLiteral("edits=0")) ? "open" : "edit");
}

void SessionRun::read()
{
    const QByteArray said = m_process.readAllStandardOutput();
    m_said += said;
    m_line += said;
    for (int end = m_line.indexOf('\n'); end >= 0; end = m_line.indexOf('\n')) {
        const QByteArray line = m_line.left(end);
        m_line.remove(0, end + 1);
        if (line.startsWith("edit "))
            m_edits.push_back({line.split(' ').at(1).toLongLong(), line.split(' ').at(2),
                               QString::fromLocal8Bit(line.mid(line.indexOf('/'))), false, !m_isFull});
        if (line.startsWith("saved ") && !m_edits.empty())
            m_edits.back().isSaved = true;
        m_isFull = m_isFull || line.startsWith("full ");
        if (line.startsWith("late "))
            m_waits.push_back({line.split(' ').at(1).toLongLong(), line.split(' ').at(2).toInt()});
        if (line.startsWith("message "))
            m_messages.append(QString::fromLocal8Bit(line.mid(8)));
    }
}

bool SessionRun::waitFor(const QByteArray &text)
{
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < StartTime && m_process.state() != QProcess::NotRunning) {
        m_process.waitForReadyRead(50);
        read();
        if (m_said.startsWith(text) || m_said.contains('\n' + text))
            return true;
    }
    return false;
}

void SessionRun::letRun(int milliseconds)
{
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < milliseconds) {
        m_process.waitForReadyRead(int(milliseconds - time.elapsed()));
        read();
    }
}

void SessionRun::kill()
{
    m_killed = QDateTime::currentMSecsSinceEpoch();
    m_process.kill();
    m_process.waitForFinished(StartTime);
    read();
}

QString SessionRun::checkRecovered(const QByteArray &hash, int limit) const
{
    // The same state may have been there before: what counts is the last time.
    int last = -1;
    for (size_t i = 0; i < m_edits.size(); ++i) {
        if (m_edits[i].hash == hash)
            last = int(i);
    }
    if (last < 0)
        return QStringLiteral("a state that never was, of %1 edits").arg(m_edits.size());
    for (size_t i = size_t(last) + 1; i < m_edits.size(); ++i) {
        const qint64 age = m_killed - m_edits[i].time;
        // The last word about waits is old where the program waited to give another.
        qint64 late = m_waits.empty() ? 0 : m_killed - m_waits.back().first;
        for (const auto &[time, milliseconds] : m_waits)
            late += time >= m_edits[i].time ? milliseconds : 0;
        if (age > limit + late)
            return QStringLiteral("edit %1 of %2 is missing, which was finished %3 ms before the end (waited %4 ms)")
                .arg(i)
                .arg(m_edits.size())
                .arg(age)
                .arg(late);
    }
    return {};
}
