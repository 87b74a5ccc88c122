// An artist at work, to be killed. It opens a file, or what an earlier one left, and edits it with pauses until the
// end.
//
// recovery_session SETTINGS FILE SEED [edits=N] [limit=BYTES] [full=BYTES] [files] [recover]
//   edits=N      ends in order after so many edits; 0: stays open and does nothing
//   limit=BYTES  no file may grow beyond that, as if the disk were full
//   full=BYTES   likewise, from the first snapshot on, which is told as "full"
//   files        saves now and then, under this name or another beside FILE, opens what it saved, and merges FILE;
//                begins with a save under another name, so that FILE itself stays
//   recover      begins with what was left; FILE is opened where there is nothing
//
// Each finished edit is told as "edit TIME HASH PATH": milliseconds since 1970, the hash of the scene's dump, and the
// file it belongs to; "saved" says that the latest one is in that file. "late TIME
// MS" says all the time that the machine had no processor for the program, or no answer of the disk, for so long just
// before; "message TEXT" what a person would read.
#include "recovery/RandomEdits.h"
#include "recovery/session/DiskWaits.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/recovery/Autosave.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/recoverUnsavedWork.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyNode.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

#include <sys/resource.h>

namespace {

constexpr int Beat = 50; // milliseconds
constexpr size_t MostNodes = 200;

std::atomic<bool> isEnding{false};

void tell(const char *what, const QString &text)
{
    std::printf("%s %s\n", what, qPrintable(text));
    std::fflush(stdout);
}

/// Milliseconds that threads of this process were ready to run and had no processor, as the system counts them.
qint64 processorWaits()
{
    qint64 nanoseconds = 0;
    for (const QString &task : QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(QStringLiteral("/proc/self/task/%1/schedstat").arg(task));
        if (file.open(QIODevice::ReadOnly))
            nanoseconds += file.readAll().split(' ').value(1).toLongLong();
    }
    return nanoseconds / 1000000;
}

void beat()
{
    const auto waits = [] { return processorWaits() + diskWaits(); };
    for (qint64 told = waits(); !isEnding;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(Beat));
        const qint64 now = std::max(told, waits());
        tell("late", QStringLiteral("%1 %2").arg(QDateTime::currentMSecsSinceEpoch()).arg(now - told));
        told = now;
    }
}

class Artist
{
public:
    Artist(RyScene &scene, HostFiles &files, unsigned seed, int count)
        : m_scene(scene), m_files(files), m_edits(scene, seed), m_left(count)
    {}

    /// With a file: saves, opens and merges too.
    void begin(const QString &file)
    {
        m_file = file;
        if (!m_file.isEmpty())
            save(0);
        tellState();
        next();
    }

private:
    void next()
    {
        if (m_left == 0)
            return QCoreApplication::quit();
        QTimer::singleShot(int(m_edits.random()() % 400), qApp, [this] { work(); });
    }
    void work()
    {
        --m_left;
        if (m_edits.random()() % 6 == 0)
            return drag();
        if (!m_file.isEmpty() && m_edits.random()() % 5 == 0)
            useFiles();
        else
            m_edits.editOnce();
        tellState();
        next();
    }
    void save(unsigned number)
    {
        const QString path = QFileInfo(m_file).dir().filePath(QStringLiteral("saved%1.glb").arg(number));
        if (!m_files.savePath(path))
            return tell("message", QStringLiteral("not saved"));
        tellState();
        tell("saved", path);
    }
    void useFiles()
    {
        switch (m_edits.random()() % 4) {
        case 0:
            return save(m_edits.random()() % 3);
        case 1: {
            const QString path = m_files.path();
            save(m_edits.random()() % 3);
            // Opened, it is what its file holds.
            if (ryUndoStack()->isClean() && m_files.openPath(path)) {
                tellState();
                tell("saved", path);
            }
            return;
        }
        case 2:
            if (m_scene.getNodes().size() < MostNodes)
                m_files.mergePath(m_file);
            return;
        default:
            if (m_files.savePath(m_files.path())) {
                tellState();
                tell("saved", m_files.path());
            }
        }
    }
    /// A hold that stays open for longer than work may stay unkept.
    void drag()
    {
        m_hold = std::make_unique<RyUndoStackHold>();
        QTimer::singleShot(int(m_edits.random()() % 2500), qApp, [this] {
            RyNode *node = m_scene.getNodes().front();
            node->getYRotControl()->setValue(float(m_edits.random()() % 90));
            if (m_edits.random()() % 3 == 0)
                m_hold->cancel();
            else
                m_hold->accept(QStringLiteral("Drag"));
            m_hold.reset();
            tellState();
            next();
        });
        m_scene.getNodes().front()->getYRotControl()->setValue(float(m_edits.random()() % 90));
    }
    void tellState()
    {
        const qint64 time = QDateTime::currentMSecsSinceEpoch(); // what is worked out below is no part of the edit
        const QByteArray hash = QCryptographicHash::hash(rySceneDump(m_scene).toUtf8(), QCryptographicHash::Sha1);
        tell("edit", QStringLiteral("%1 %2 %3").arg(time).arg(QString::fromLatin1(hash.toHex()), m_files.path()));
    }

    RyScene &m_scene;
    HostFiles &m_files;
    QString m_file;
    RandomEdits m_edits;
    std::unique_ptr<RyUndoStackHold> m_hold;
    int m_left;
};

void fillTheDisk(rlim_t bytes)
{
    std::signal(SIGXFSZ, SIG_IGN); // as the program does
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

bool isAnyKept()
{
    const QStringList folders = AutosaveSettings::global().folders();
    return std::any_of(folders.begin(), folders.end(), [](const QString &parent) {
        const QFileInfoList found = QDir(parent).entryInfoList({QStringLiteral("session-*")}, QDir::Dirs);
        return std::any_of(found.begin(), found.end(),
                           [](const QFileInfo &each) { return RySnapshotStore::hasSnapshot(each.filePath()); });
    });
}

bool recoverLatest(HostFiles &files, Autosave &autosave)
{
    for (const QString &folder : RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders())) {
        std::unique_ptr<RecoverySession> session = RecoverySession::adopt(folder);
        QString error;
        if (session && recoverUnsavedWork(std::move(session), *ryScene(), files, autosave, &error))
            return true;
        tell("message", error);
    }
    return false;
}

int run(const QStringList &arguments)
{
    int count = -1;
    bool recovers = false, usesFiles = false;
    rlim_t full = 0;
    for (const QString &argument : arguments.mid(4)) {
        if (argument.startsWith(QLatin1String("edits=")))
            count = argument.mid(6).toInt();
        recovers = recovers || argument == QLatin1String("recover");
        usesFiles = usesFiles || argument == QLatin1String("files");
        if (argument.startsWith(QLatin1String("limit=")))
            fillTheDisk(rlim_t(argument.mid(6).toULongLong()));
        if (argument.startsWith(QLatin1String("full=")))
            full = rlim_t(argument.mid(5).toULongLong());
    }
    RyAppSettings::setSettingsPath(arguments.at(1));
    RyMessageLog::global().setEcho(false);
    HostFiles files(ryScene(), nullptr);
    Autosave autosave(*ryScene(), files);
    QObject::connect(&autosave, &Autosave::messagePosted, [](const QString &message) { tell("message", message); });
    if (!(recovers && recoverLatest(files, autosave)) && !files.openPath(arguments.at(2)))
        return 2;
    Artist artist(*ryScene(), files, arguments.at(3).toUInt(), count);
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&watch, full] {
        if (!isAnyKept())
            return;
        fillTheDisk(full);
        tell("full", QString::number(full));
        watch.stop();
    });
    if (full > 0)
        watch.start(10);
    if (count == 0)
        tell("open", files.path());
    else
        artist.begin(usesFiles ? arguments.at(2) : QString());
    const int code = QApplication::exec();
    return code;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc < 4) {
        std::puts("usage: recovery_session SETTINGS FILE SEED [edits=N] [limit=BYTES] [full=BYTES] [files] [recover]");
        return 2;
    }
    std::thread beating(beat);
    const int code = run(QApplication::arguments());
    isEnding = true;
    beating.join();
    RyUndoStack::destroyGlobal();
    ryDestroyScene();
    return code;
}
