#include "foreign/ForeignStage.h"
#include "support/RyTest.h"

#include "rycore/io/foreign/RyForeignImport.h"
#include "rycore/io/foreign/RyForeignProcess.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include <sys/resource.h>
#include <sys/stat.h>

#include <unistd.h>

#include <algorithm>
#include <csignal>

/// The process that reads a foreign file: whatever becomes of it, whoever started it goes on and can say what it was.
class ForeignImportTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_stage = std::make_unique<ForeignStage>();
        m_limits = {};
    }
    void cleanup()
    {
        const QStringList leftovers = m_stage->leftovers();
        m_stage.reset();
        QCOMPARE(leftovers, QStringList());
        QCOMPARE(ForeignStage::childrenOf(getpid()), QList<int>());
    }

    void reads()
    {
        QByteArray wanted = bytesOf(ForeignStage::sample());
        for (const char *name : {"a.fbx", "a.DAE", "a.bvh", "with blank \xc3\xa4.fbx"}) {
            const QString file = m_stage->write(QString::fromUtf8(name), "take " + ForeignStage::sample().toUtf8());
            QCOMPARE(read(file), wanted);
            QCOMPARE(m_error, QString());
            QCOMPARE(m_notes, QStringList{QStringLiteral("Two lights did not come along.")});
        }
    }

    void failures_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *name, const QByteArray &content, const char *reason) {
            QTest::newRow(name) << content << QString::fromUtf8(reason);
        };
        row("crash", "crash", "broke down over it");
        row("abort", "abort", "broke down over it");
        row("hang", "hang", "got no further for 0.4 seconds");
        row("repeats itself", "stall", "got no further for 0.4 seconds");
        row("eats", "eat", "takes more than 256 MB of memory");
        row("exit", "exit 7", "ended without a result (exit code 7)");
        row("exit as if done", "exit 0", "ended without a result");
        row("exit as if refused", "exit 1", "ended without a result (exit code 1)");
        row("throws", "throw", "an index is out of range");
        row("refuses", "refuse it holds \xc3\xa4 only", "it holds \xc3\xa4 only");
        row("gives nothing", "nothing", "ended without a result");
        row("empty", "", "the file is empty");
        row("a glTF binary", "glTF\x02", "renamed to end in .glb");
        row("a glTF text", " {\"asset\": {\"version\": \"2.0\"}}", "renamed to end in .gltf");
        row("a Collada file", "<?xml version=\"1.0\"?>\n<COLLADA xmlns=\"x\">", "renamed to end in .dae");
        row("a BVH file", "HIERARCHY\nROOT hip", "renamed to end in .bvh");
        row("packed", "PK\x03\x04", "unpack it");
    }

    void failures()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        const bool isSilent = reason.contains(QStringLiteral("no further"));
        m_limits = {isSilent ? 400 : 60000, qint64(256) << 20};
        const QString file = m_stage->write(QStringLiteral("figure.fbx"), content);
        QCOMPARE(read(file), QByteArray());
        QVERIFY2(m_error.startsWith(file + QStringLiteral(" cannot be opened: ")), qPrintable(m_error));
        QVERIFY2(m_error.contains(reason), qPrintable(m_error));
        QVERIFY2(m_error.contains(QStringLiteral("glTF")), qPrintable(m_error)); // the way out
        QVERIFY2(!m_error.contains(QStringLiteral("/proc/")), qPrintable(m_error));
        QCOMPARE(m_notes, QStringList());
    }

    void theWayOutIsToldOnce()
    {
        const QString file = m_stage->write(QStringLiteral("old.fbx"), "refuse this is FBX 6; export it as glTF 2.0");
        read(file);
        QCOMPARE(m_error, file + QStringLiteral(" cannot be opened: this is FBX 6; export it as glTF 2.0"));
    }

    void filesThatAreNone()
    {
        const QString folder = m_stage->path(QStringLiteral("folder.fbx"));
        QVERIFY(QDir().mkdir(folder));
        const QString pipe = m_stage->path(QStringLiteral("pipe.fbx"));
        QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
        for (const QString &file : {folder, pipe, m_stage->path(QStringLiteral("nothing.fbx"))}) {
            QCOMPARE(read(file), QByteArray());
            QVERIFY2(m_error.startsWith(file + QStringLiteral(" cannot be opened: ")), qPrintable(m_error));
        }
    }

    void withoutItsProgram()
    {
        const QString file = m_stage->write(QStringLiteral("figure.fbx"), "take " + ForeignStage::sample().toUtf8());
        const auto readWith = [&](const QString &program) {
            qputenv("RYHOST_FOREIGN_READER", program.toLocal8Bit());
            read(file);
            return m_error;
        };
        const auto told = [&file](const QString &rest) {
            return QStringLiteral("%1 cannot be opened: %2. Exported as glTF 2.0 (.glb) from the program that made it, "
                                  "it can be opened.")
                .arg(file, rest);
        };
        const QString nowhere = m_stage->path(QStringLiteral("nowhere"));
        QCOMPARE(readWith(nowhere), told(QStringLiteral("the program that reads such files, %1, is missing; installing "
                                                        "the program anew brings it back")
                                             .arg(nowhere)));
        QCOMPARE(readWith(file), told(QStringLiteral("the program that reads such files, %1, cannot be started; "
                                                     "installing the program anew may help")
                                          .arg(file)));
        // A program that knows nothing of it.
        QVERIFY2(readWith(QStringLiteral("/bin/true")).contains(QStringLiteral("ended without a result")),
                 qPrintable(m_error));
    }

    /// What a user of the library has: it lies beside that, wherever the program that uses it lies.
    void isFoundBesideTheLibrary()
    {
        qunsetenv("RYHOST_FOREIGN_READER");
        const QString file = m_stage->write(QStringLiteral("motion.bvh"),
                                            "HIERARCHY\nROOT hip\n{\nOFFSET 0 90 0\nCHANNELS 3 Zrotation Xrotation "
                                            "Yrotation\nEnd Site\n{\nOFFSET 0 30 0\n}\n}\nMOTION\nFrames: 1\nFrame "
                                            "Time: 0.1\n0 0 0\n");
        QVERIFY2(read(file).startsWith("glTF"), qPrintable(m_error));
    }

    void whatTheLibraryPrintsCountsForNothing()
    {
        const QString file = m_stage->write(QStringLiteral("loud.fbx"), "print " + ForeignStage::sample().toUtf8());
        double most = 0.0;
        QCOMPARE(read(file,
                      [&most](double done) {
                          most = std::max(most, done);
                          return true;
                      }),
                 bytesOf(ForeignStage::sample()));
        QCOMPARE(most, 0.0);
        QCOMPARE(m_error, QString());
    }

    void notesAreLinesAndNotEndless()
    {
        read(m_stage->write(QStringLiteral("talk.fbx"), "talk " + ForeignStage::sample().toUtf8()));
        QCOMPARE(m_notes.size(), 201);
        QCOMPARE(m_notes.last(), QStringLiteral("And 99800 more of such notes"));
        QCOMPARE(m_notes.at(3), QStringLiteral("note 3 in two lines"));
    }

    void progressGrows()
    {
        std::vector<double> steps;
        read(m_stage->write(QStringLiteral("steps.fbx"), "steps " + ForeignStage::sample().toUtf8()),
             [&steps](double done) {
                 if (steps.empty() || steps.back() != done)
                     steps.push_back(done);
                 return true;
             });
        QVERIFY(steps.size() >= 3);
        QVERIFY(std::is_sorted(steps.begin(), steps.end()));
        QVERIFY(steps.back() > 0.7 && steps.back() <= 1.0);
    }

    /// Steps that come keep it alive for longer than one may take.
    void progressIsNoSilence()
    {
        m_limits = {250, qint64(1) << 30};
        QCOMPARE(read(m_stage->write(QStringLiteral("steps.fbx"), "steps " + ForeignStage::sample().toUtf8())),
                 bytesOf(ForeignStage::sample()));
    }

    /// A large file may take long between two steps; computing for ever ends all the same.
    void workIsNoSilence()
    {
        m_limits = {1000, qint64(1) << 30, 60000};
        const QByteArray sample = ForeignStage::sample().toUtf8();
        QCOMPARE(read(m_stage->write(QStringLiteral("large.fbx"), "compute 3000 " + sample)),
                 bytesOf(ForeignStage::sample()));
        QCOMPARE(m_error, QString());
        m_limits = {1000, qint64(1) << 30, 2000};
        QCOMPARE(read(m_stage->write(QStringLiteral("endless.fbx"), "compute 0 " + sample)), QByteArray());
        QVERIFY2(m_error.contains(QStringLiteral("got no further for 2 seconds")), qPrintable(m_error));
    }

    /// Its times are gone before anybody hears that it has ended: that is no standing still.
    void endingIsNoSilence()
    {
        RyForeignProcess process(qint64(1) << 30);
        QVERIFY(process.start(QStringLiteral("/bin/true"), m_stage->path(QStringLiteral("x.fbx")), STDERR_FILENO, 0.0));
        for (int i = 0; i < 1000 && !ForeignStage::childrenOf(getpid()).isEmpty(); ++i)
            QThread::msleep(10);
        QVERIFY(process.isRunning());
        QCOMPARE(process.processorTime(), qint64(-1));
        process.wait(10);
        QVERIFY(!process.isRunning());
        // The same on the way: it is gone, longer ago than it may be silent, before anybody looks again.
        m_limits = {50, qint64(1) << 30};
        bool isGone = false;
        const auto watch = [&isGone](double) {
            for (int i = 0; i < 1000 && !isGone; ++i) {
                QThread::msleep(10);
                isGone = ForeignStage::childrenOf(getpid()).isEmpty();
            }
            QThread::msleep(100);
            return true;
        };
        QCOMPARE(read(m_stage->write(QStringLiteral("steps.fbx"), "steps " + ForeignStage::sample().toUtf8()), watch),
                 bytesOf(ForeignStage::sample()));
        QCOMPARE(m_error, QString());
        QVERIFY(isGone);
    }

    /// As long as file systems let it be.
    void longNames()
    {
        const QString file = m_stage->write(QString(251, QLatin1Char('n')) + QStringLiteral(".fbx"),
                                            "take " + ForeignStage::sample().toUtf8());
        QCOMPARE(read(file), bytesOf(ForeignStage::sample()));
        QCOMPARE(m_error, QString());
    }

    void isCancelled()
    {
        const QString file = m_stage->write(QStringLiteral("slow.fbx"), "slow");
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(read(file, [](double done) { return done < 0.01; }), QByteArray());
        QCOMPARE(m_error, file + QStringLiteral(" was not opened: it was cancelled"));
        QVERIFY(timer.elapsed() < 8000); // it would take ten seconds
    }

    /// One GiB, as users have it.
    void memoryIsBounded()
    {
        const QString file = m_stage->write(QStringLiteral("eater.fbx"), "eat");
        read(file);
        QVERIFY2(m_error.contains(QStringLiteral("more than 1024 MB")), qPrintable(m_error));
        rusage used;
        QCOMPARE(getrusage(RUSAGE_CHILDREN, &used), 0);
        qInfo("the largest of all processes held %ld MB", used.ru_maxrss / 1024);
        QVERIFY(used.ru_maxrss > 900 * 1024); // it was let to eat
#if !defined(__SANITIZE_ADDRESS__)
        QVERIFY(used.ru_maxrss <= 1024 * 1024);
#endif
    }

    /// Who started a reading and is killed takes it along, and nothing stays.
    void diesWithItsParent()
    {
        const QString file = m_stage->write(QStringLiteral("hang.fbx"), "hang");
        QProcess parent;
        parent.start(QStringLiteral(RY_BINARY_DIR "/bin/ryhost"), {QStringLiteral("--batch"), file});
        QVERIFY(parent.waitForStarted());
        QList<int> readers;
        QTRY_VERIFY_WITH_TIMEOUT(!(readers = ForeignStage::childrenOf(parent.processId())).isEmpty(), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(readers.first(), "testreader"), 20000);
        parent.kill();
        QVERIFY(parent.waitForFinished());
        const bool isGone = QTest::qWaitFor([&] { return !isRunning(readers.first(), "testreader"); }, 5000);
        if (!isGone)
            ::kill(readers.first(), SIGKILL);
        QVERIFY(isGone);
    }

    void needsNoRoomForTemporaryFiles()
    {
        const QString file = m_stage->write(QStringLiteral("x.fbx"), "take " + ForeignStage::sample().toUtf8());
        const QByteArray before = qgetenv("TMPDIR");
        qputenv("TMPDIR", file.toLocal8Bit()); // no folder
        const QByteArray bytes = read(file);
        qputenv("TMPDIR", before);
        QCOMPARE(bytes, bytesOf(ForeignStage::sample()));
    }

    /// As somebody runs the line by hand, to see what a library prints over a file.
    void writesAPlainFileToo()
    {
        const QString file = m_stage->write(QStringLiteral("x.fbx"), "take " + ForeignStage::sample().toUtf8());
        const QString out = m_stage->path(QStringLiteral("out.glb"));
        const auto run = [&file](const QString &to) {
            return ForeignStage::runProgram(ForeignStage::readerPath(), {file, to, QStringLiteral("0")});
        };
        QCOMPARE(run(out).code, 0);
        QCOMPARE(bytesOf(out), bytesOf(ForeignStage::sample()));
        const ForeignStage::Run refused = run(m_stage->path(QStringLiteral("no/out.glb")));
        QCOMPARE(refused.code, 1);
        QVERIFY2(refused.out.contains("error what was read of it could not be written: "), refused.out.constData());
    }

private:
    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static bool isRunning(int process, const char *word)
    {
        return bytesOf(QStringLiteral("/proc/%1/cmdline").arg(process)).contains(word);
    }
    QByteArray read(const QString &path, const RyForeignImport::Progress &progress = nullptr)
    {
        m_error.clear();
        m_notes.clear();
        QByteArray bytes;
        const auto use = [&bytes](const QByteArray &glb) {
            bytes = glb;
            return true;
        };
        const bool done = RyForeignImport::read(path, 0.0, progress, use, &m_error, &m_notes, m_limits);
        return done ? bytes : QByteArray();
    }

    std::unique_ptr<ForeignStage> m_stage;
    RyForeignLimits m_limits;
    QString m_error;
    QStringList m_notes;
};

RY_TEST(ForeignImportTest)
#include "tst_import.moc"
