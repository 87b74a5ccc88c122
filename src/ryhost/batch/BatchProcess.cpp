#include "ryhost/batch/BatchProcess.h"

#include "ryhost/batch/ExitCode.h"

#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void tell(int pipe, const QJsonObject &event)
{
    const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
    for (int done = 0; done < line.size();) {
        const ssize_t count = ::write(pipe, line.constData() + done, size_t(line.size() - done));
        if (count < 0 && errno != EINTR)
            return;
        done += int(std::max<ssize_t>(count, 0));
    }
}

QList<QJsonObject> listen(int pipe)
{
    QByteArray text;
    char block[1 << 16];
    for (ssize_t count = 1; count != 0;) {
        count = ::read(pipe, block, sizeof block);
        if (count < 0 && errno != EINTR)
            break;
        text.append(block, int(std::max<ssize_t>(count, 0)));
    }
    QList<QJsonObject> events;
    // What stands behind the last end of a line was cut short.
    for (const QByteArray &line : text.left(text.lastIndexOf('\n') + 1).split('\n')) {
        if (!line.isEmpty())
            events.append(QJsonDocument::fromJson(line).object());
    }
    return events;
}

int waitFor(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR)
            return EndedSilently;
    }
    return WIFSIGNALED(status) ? EndedSilently + WTERMSIG(status) : WEXITSTATUS(status);
}

BatchProcess::Result failed(const char *what)
{
    const QString message = QStringLiteral("the program could not start a process for the file: %1: %2")
                                .arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    return {EndedSilently, {{{QStringLiteral("message"), message}}}};
}

} // namespace

BatchProcess::Result BatchProcess::run(const std::function<int(const Listener &)> &work)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return failed("pipe");
    std::fflush(nullptr);
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        // Without this a run that is killed would leave one behind that goes on writing files.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(EndedSilently);
        std::exit(work([&ends](const QJsonObject &event) { tell(ends[1], event); }));
    }
    ::close(ends[1]);
    if (child < 0) {
        ::close(ends[0]);
        return failed("fork");
    }
    Result result;
    result.events = listen(ends[0]);
    ::close(ends[0]);
    result.code = waitFor(child);
    return result;
}
