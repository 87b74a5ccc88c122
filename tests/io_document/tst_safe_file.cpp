#include "GltfFixture.h"
#include "support/RyTest.h"

#include "rycore/base/RyFileSystem.h"
#include "rycore/io/RySafeFile.h"

#include <QFileInfo>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace GltfFixture;

/// Stands for a file system that knows no files without a name.
static std::atomic<bool> noUnnamedFiles{false};

extern "C" int open(const char *path, int flags, ...)
{
    using Open = int (*)(const char *, int, ...);
    static const auto real = reinterpret_cast<Open>(::dlsym(RTLD_NEXT, "open"));
    va_list list;
    va_start(list, flags);
    const mode_t mode = (flags & (O_CREAT | __O_TMPFILE)) ? va_arg(list, mode_t) : 0;
    va_end(list);
    if (noUnnamedFiles && (flags & __O_TMPFILE)) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return real(path, flags, mode);
}

/// Replacing a file wholly or not at all.
class RySafeFileTest : public QObject
{
    Q_OBJECT

private:
    QStringList entries(const QTemporaryDir &folder) const
    {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
    }

private slots:
    void writes();
    void keepsPermissions();
    void followsLinks();
    void refuses();
    void protectedFile();
    void protectedFolder();
    void noRoom();
    void fullDisk();
    void killed_data();
    void killed();
    void leftovers();
};

void RySafeFileTest::writes()
{
    QTemporaryDir folder;
    QString error;
    const QString path = folder.filePath(QString::fromUtf8("a b\xc3\xa4.glb"));
    QVERIFY2(RySafeFile::write(path, "first", &error), qPrintable(error));
    QCOMPARE(contents(path), QByteArray("first"));
    const QByteArray large(3000000, 'x');
    QVERIFY(RySafeFile::write(path, large, nullptr));
    QCOMPARE(contents(path), large);
    QVERIFY(RySafeFile::write(path, {}, &error));
    QCOMPARE(QFileInfo(path).size(), 0);
    QCOMPARE(entries(folder).size(), 1);
}

void RySafeFileTest::keepsPermissions()
{
    QTemporaryDir folder;
    const QString path = put(folder, "p", "old");
    for (const mode_t mode : {0600u, 0640u, 0664u, 0755u}) {
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode), 0);
        QString error;
        QVERIFY2(RySafeFile::write(path, "new", &error), qPrintable(error));
        struct stat status;
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(int(status.st_mode & 07777), int(mode));
    }
}

void RySafeFileTest::followsLinks()
{
    QTemporaryDir folder;
    const QString path = put(folder, "target", "old");
    const QString link = folder.filePath("link");
    QVERIFY(QFile::link(path, link));
    QString error;
    QVERIFY2(RySafeFile::write(link, "new", &error), qPrintable(error));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(contents(path), QByteArray("new"));
}

void RySafeFileTest::refuses()
{
    QTemporaryDir folder;
    put(folder, "file", "old");
    QString error;
    QVERIFY(!RySafeFile::write(folder.filePath("none/file"), "x", &error));
    QVERIFY2(error.contains("none/file") && error.contains("does not exist"), qPrintable(error));
    QVERIFY(!RySafeFile::write(folder.filePath("file/below"), "x", &error));
    QVERIFY2(error.contains("is not a folder"), qPrintable(error));
    QVERIFY(!RySafeFile::write(folder.path(), "x", &error));
    QVERIFY2(error.contains("it is a folder"), qPrintable(error));
    QVERIFY(!RySafeFile::write(QStringLiteral("/dev/full"), "x", &error));
    QVERIFY2(error.contains("not an ordinary file"), qPrintable(error));
    QVERIFY(!RySafeFile::write(QString(), "x", &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(entries(folder), QStringList{"file"});
}

void RySafeFileTest::protectedFile()
{
    QTemporaryDir folder;
    const QString path = put(folder, "file", "old");
    QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0444), 0);
    QString error;
    QVERIFY(!RySafeFile::write(path, "new", &error));
    QVERIFY2(error.contains("write-protected") && error.contains(path), qPrintable(error));
    QCOMPARE(contents(path), QByteArray("old"));
    QCOMPARE(entries(folder).size(), 1);
}

void RySafeFileTest::protectedFolder()
{
    QTemporaryDir folder;
    const QString path = put(folder, "file", "old");
    QCOMPARE(::chmod(QFile::encodeName(folder.path()).constData(), 0555), 0);
    QString error;
    const bool existing = RySafeFile::write(path, "new", &error);
    const QString reason = error;
    const bool fresh = RySafeFile::write(folder.filePath("other"), "new", &error);
    ::chmod(QFile::encodeName(folder.path()).constData(), 0755);
    QVERIFY(!existing);
    QVERIFY(!fresh);
    QVERIFY2(reason.contains("write-protected") && reason.contains(folder.path()), qPrintable(reason));
    QCOMPARE(contents(path), QByteArray("old"));
    QCOMPARE(entries(folder), QStringList{"file"});
}

void RySafeFileTest::noRoom()
{
    // The limit for the size of files stands in for a full disk: a write stops half way with an error.
    QTemporaryDir folder;
    const QString path = put(folder, "file", "old");
    struct rlimit before;
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit low = before;
    low.rlim_cur = 64 * 1024;
    ::setrlimit(RLIMIT_FSIZE, &low);
    QString error;
    const bool done = RySafeFile::write(path, QByteArray(1000000, 'x'), &error);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    QVERIFY(!done);
    QVERIFY2(error.contains(path) && error.size() > path.size() + 25, qPrintable(error));
    QCOMPARE(contents(path), QByteArray("old"));
    QCOMPARE(entries(folder), QStringList{"file"});
}

void RySafeFileTest::fullDisk()
{
    QTemporaryDir folder;
    const QByteArray mountPoint = QFile::encodeName(folder.path());
    if (::mount("none", mountPoint.constData(), "tmpfs", 0, "size=256k") != 0)
        QSKIP("a small file system cannot be mounted here");
    const QString path = put(folder, "file", "old");
    QString error, namedError;
    const bool done = RySafeFile::write(path, QByteArray(1000000, 'x'), &error);
    noUnnamedFiles = true;
    const bool named = RySafeFile::write(path, QByteArray(1000000, 'x'), &namedError);
    noUnnamedFiles = false;
    const QByteArray kept = contents(path);
    const QStringList left = entries(folder);
    ::umount2(mountPoint.constData(), MNT_DETACH);
    QVERIFY(!done && !named);
    for (const QString &each : {error, namedError})
        QVERIFY2(each.contains("no space left") && each.contains(path), qPrintable(each));
    QCOMPARE(kept, QByteArray("old"));
    QCOMPARE(left, QStringList{"file"});
}

void RySafeFileTest::killed_data()
{
    QTest::addColumn<bool>("named");
    QTest::newRow("without a name") << false;
    QTest::newRow("named") << true;
}

void RySafeFileTest::killed()
{
    QFETCH(bool, named);
    QTemporaryDir folder;
    const QString path = put(folder, "file", "old");
    const pid_t child = ::fork();
    if (child == 0) {
        // The signal of the limit ends it in the middle of the file.
        struct rlimit low = {64 * 1024, 64 * 1024};
        struct rlimit none = {0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
        ::setrlimit(RLIMIT_FSIZE, &low);
        std::signal(SIGXFSZ, SIG_DFL);
        noUnnamedFiles = named;
        RySafeFile::write(path, QByteArray(1000000, 'x'), nullptr);
        ::_exit(0);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(contents(path), QByteArray("old"));
    QCOMPARE(entries(folder).size(), named ? 2 : 1);
    QVERIFY(RySafeFile::write(path, "new", nullptr));
    QCOMPARE(contents(path), QByteArray("new"));
    QCOMPARE(entries(folder), QStringList{"file"});
}

void RySafeFileTest::leftovers()
{
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(0);
    int status = 0;
    QCOMPARE(::waitpid(gone, &status, 0), gone);
    QTemporaryDir folder;
    const QString machine = RyFileSystem::machineMark();
    QCOMPARE(machine.size(), 16);
    put(folder, QStringLiteral("ryhost-%1-%2-1.rysave").arg(machine).arg(gone), "half");
    QStringList others{QStringLiteral("ryhost-%1-%2-999999.rysave").arg(machine).arg(::getpid()), // may be at work
                       QStringLiteral("ryhost-%1-1-1.rysave").arg(machine),
                       QStringLiteral("ryhost-%1-%2-1.glb").arg(machine).arg(gone),
                       QStringLiteral("my-ryhost-%1-%2-1.rysave").arg(machine).arg(gone),
                       QStringLiteral("ryhost-%1-0-1.rysave").arg(machine),
                       QStringLiteral("ryhost-%1-99999999999999999999-1.rysave").arg(machine),
                       QStringLiteral("ryhost-%1-%2-1.rysave.glb").arg(machine).arg(gone),
                       // Processes of another machine that shares the folder, and of nobody knows where.
                       QStringLiteral("ryhost-0123456789abcdef-%1-1.rysave").arg(gone),
                       QStringLiteral("ryhost--%1-1.rysave").arg(gone), QStringLiteral("ryhost-%1-1.rysave").arg(gone)};
    for (const QString &other : others)
        put(folder, other, "other");
    QVERIFY(RySafeFile::write(folder.filePath("file"), "new", nullptr));
    others.append("file");
    QStringList left = entries(folder);
    left.sort();
    others.sort();
    QCOMPARE(left, others);
}

RY_TEST(RySafeFileTest)
#include "tst_safe_file.moc"
