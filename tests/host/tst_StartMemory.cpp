#include "support/RyTest.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

/// How the program itself comes by its memory, as the system sees it.
class StartMemoryTest : public QObject
{
    Q_OBJECT
private slots:
    /// A fifth of the time until the first picture went to page faults.
    void theHeapBeginsWithLargePages()
    {
        const QTemporaryDir folder;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("RYHOST_HOME"), folder.path());
        environment.insert(QStringLiteral("RYHOST_PLUGIN_PATH"), folder.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder.path());
        environment.insert(QStringLiteral("XDG_DATA_HOME"), folder.path());
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(RY_BINARY_DIR "/bin/ryhost"), QStringList());
        QVERIFY(program.waitForStarted());
        if (canHaveLargePages())
            QTRY_VERIFY(heapHasLargePages(program.processId()));
        else // of a sanitizer, which has a heap of its own, or without such pages it starts all the same
            QVERIFY(!program.waitForFinished(2000));
        program.kill();
        program.waitForFinished();
    }

private:
    static bool canHaveLargePages()
    {
#ifdef __SANITIZE_ADDRESS__
        return false; // it has a heap of its own
#else
        return QFile::exists(QStringLiteral("/sys/kernel/mm/transparent_hugepage/enabled"));
#endif
    }

    static bool heapHasLargePages(qint64 process)
    {
        QFile file(QStringLiteral("/proc/%1/smaps").arg(process));
        if (!file.open(QIODevice::ReadOnly))
            return false;
        bool isHeap = false;
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (line.contains("-p ")) // the first line of a range
                isHeap = line.endsWith("[heap]");
            if (isHeap && line.startsWith("VmFlags:") && line.contains(" hg"))
                return true;
        }
        return false;
    }
};

RY_TEST(StartMemoryTest)
#include "tst_StartMemory.moc"
