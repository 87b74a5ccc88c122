#include "recovery/AutosaveStage.h"
#include "recovery/SessionRun.h"
#include "support/RyTest.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/recoverUnsavedWork.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>

#include <algorithm>
#include <random>

/// A program is killed in the middle of its work, and what it did is brought back.
class CrashTest : public QObject, private AutosaveStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        m_random.seed(ryTestSeed());
    }
    void cleanup() { close(); }

    void randomMoments()
    {
        const bool isLong = qEnvironmentVariableIsSet("RY_KILLS");
        const int kills = isLong ? qEnvironmentVariableIntValue("RY_KILLS") : 10;
        for (int i = 0; i < kills; ++i) {
            QVERIFY(open(i % 3 == 1 ? sample("hand.obj") : sample("mannequin.glb")));
            SessionRun run(settings(), temporary());
            QVERIFY(run.start(m_files->path(), unsigned(m_random())));
            run.letRun(int(m_random() % 4000));
            run.kill();
            checkFiles();
            checkRecovery(run);
            if (QTest::currentTestFailed())
                return;
        }
    }

    /// Work that was brought back, gone on with, and lost again; the recovery itself may be cut off too.
    void againAndAgain()
    {
        SessionRun first(settings(), temporary());
        QVERIFY(first.start(m_files->path(), unsigned(m_random())));
        QVERIFY(letRunUntil(first, [this] { return kept().size() == 1; }));
        first.letRun(int(m_random() % 1500));
        first.kill();
        QByteArray recovered;
        for (int i = 0; i < 3; ++i) {
            // Before it could write anything of its own: the latest state stays.
            SessionRun brief(settings(), temporary());
            QVERIFY(brief.start(m_files->path(), unsigned(m_random()), {QStringLiteral("recover")}));
            QVERIFY(!brief.edits().empty());
            recovered = brief.edits().front().hash;
            brief.letRun(int(m_random() % 200));
            brief.kill();
            QCOMPARE(kept().size(), 1);
            if (i == 0)
                QCOMPARE(first.checkRecovered(recovered), QString());
            SessionRun longer(settings(), temporary());
            QVERIFY(longer.start(m_files->path(), unsigned(m_random()), {QStringLiteral("recover")}));
            QCOMPARE(brief.checkRecovered(longer.edits().front().hash), QString());
            longer.letRun(1500);
            longer.kill();
            checkFiles();
        }
    }

    /// In the middle of being read back, at any moment from the start of the program on.
    void killedRecovery()
    {
        SessionRun first(settings(), temporary());
        QVERIFY(first.start(m_files->path(), unsigned(m_random())));
        QVERIFY(letRunUntil(first, [this] { return kept().size() == 1; }));
        first.kill();
        QCOMPARE(kept().size(), 1);
        for (int i = 0; i < 5; ++i) {
            QProcess process;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("TMPDIR"), temporary());
            process.setProcessEnvironment(environment);
            process.start(QStringLiteral(RY_RECOVERY_SESSION), {settings(), m_files->path(), QStringLiteral("1"),
                                                                QStringLiteral("edits=0"), QStringLiteral("recover")});
            QVERIFY(process.waitForStarted());
            QTest::qWait(int(m_random() % 400));
            process.kill();
            QVERIFY(process.waitForFinished());
            QCOMPARE(kept().size(), 1);
        }
        checkRecovery(first);
    }

    /// Each has work of its own, and neither takes that of the other while it runs.
    void twoProgramsOnOneFile()
    {
        SessionRun a(settings(), temporary()), b(settings(), temporary());
        QVERIFY(a.start(m_files->path(), unsigned(m_random())));
        QVERIFY(b.start(m_files->path(), unsigned(m_random())));
        QVERIFY(letRunUntil(a, [this] { return kept().size() == 2; }));
        QVERIFY(RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()).isEmpty());
        a.kill();
        QCOMPARE(RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()).size(), 1);
        b.kill();
        checkFiles();
        QList<QByteArray> hashes;
        for (const QString &folder : RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()))
            hashes.append(recover(folder));
        QCOMPARE(hashes.size(), 2);
        for (const SessionRun *run : {&a, &b}) {
            QStringList reasons;
            for (const QByteArray &hash : qAsConst(hashes))
                reasons.append(run->checkRecovered(hash));
            QVERIFY2(reasons.contains(QString()), qPrintable(reasons.join(QLatin1Char('\n'))));
        }
    }

    /// No room: the state that was kept before is whole, somebody is told, and the program goes on.
    void fullDisk()
    {
        SessionRun run(settings(), temporary());
        QVERIFY(run.start(m_files->path(), unsigned(m_random()), {QStringLiteral("limit=20000")}));
        QVERIFY(run.waitFor("message"));
        const size_t before = run.edits().size();
        QVERIFY(letRunUntil(run, [&] { return run.edits().size() > before; }));
        run.kill();
        QVERIFY2(run.messages().front().startsWith(QStringLiteral("Unsaved work is not being kept: ")) &&
                     run.messages().front().contains(QStringLiteral("File too large")),
                 qPrintable(run.messages().front()));
        checkFiles();
        QVERIFY(!isKept());
        QVERIFY(RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()).isEmpty());
    }

    /// The disk fills up in the middle of the work: what was kept before that is whole and comes back.
    void diskFillsUp()
    {
        SessionRun run(settings(), temporary());
        QVERIFY(run.start(m_files->path(), unsigned(m_random()), {QStringLiteral("full=20000")}));
        QVERIFY(run.waitFor("full"));
        QVERIFY(run.waitFor("message"));
        QVERIFY(letRunUntil(run, [&run] { return !run.edits().back().isBeforeFull; }));
        run.kill();
        QVERIFY2(run.messages().front().contains(QStringLiteral("File too large")), qPrintable(run.messages().front()));
        checkFiles();
        const QStringList folders = RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders());
        QCOMPARE(folders.size(), 1);
        const QByteArray hash = recover(folders.front());
        QVERIFY2(std::any_of(run.edits().begin(), run.edits().end(),
                             [&hash](const auto &edit) { return edit.isBeforeFull && edit.hash == hash; }),
                 hash.constData());
    }

    /// Killed while it saves, saves elsewhere, opens and merges: whatever file there is opens, and between file and
    /// snapshot nothing is missing.
    void amongFiles()
    {
        const bool isLong = qEnvironmentVariableIsSet("RY_KILLS");
        const int kills = isLong ? qEnvironmentVariableIntValue("RY_KILLS") : 6;
        for (int i = 0; i < kills; ++i) {
            QVERIFY(open());
            SessionRun run(settings(), temporary());
            QVERIFY(run.start(m_files->path(), unsigned(m_random()), {QStringLiteral("files")}));
            run.letRun(2000 + int(m_random() % 4000));
            run.kill();
            checkFiles();
            checkRecoveryAmongFiles(run);
            if (QTest::currentTestFailed())
                return;
        }
    }

    /// Where the settings cannot be written, work is kept elsewhere and found there.
    void readOnlySettings()
    {
        QDir().mkpath(settings());
        QVERIFY(QFile::setPermissions(settings(), QFile::ReadOwner | QFile::ExeOwner));
        SessionRun run(settings(), temporary());
        QVERIFY(run.start(m_files->path(), unsigned(m_random())));
        QVERIFY(letRunUntil(run, [&run] { return !run.messages().isEmpty(); }));
        run.letRun(int(m_random() % 1500));
        run.kill();
        checkFiles();
        checkRecovery(run);
        QVERIFY(run.messages().front().contains(QStringLiteral("write-protected")));
        QVERIFY(QFile::setPermissions(settings(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    /// A program that ends in order leaves nothing.
    void ordinaryEnd()
    {
        SessionRun run(settings(), temporary());
        QVERIFY(run.start(m_files->path(), unsigned(m_random()), {QStringLiteral("edits=6")}));
        QVERIFY(!run.waitFor("nothing"));
        QVERIFY(run.edits().size() == 7);
        QVERIFY(!isKept());
        QVERIFY(RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()).isEmpty());
    }

private:
    /// The first edit may be a drag of two and a half seconds, and a busy machine makes everything longer. False after
    /// twenty.
    template<typename Done>
    static bool letRunUntil(SessionRun &run, const Done &done)
    {
        for (int i = 0; i < 40 && !done(); ++i)
            run.letRun(500);
        return done();
    }
    QString temporary() const { return path(QStringLiteral("tmp")); }
    /// Every scene that lies anywhere opens, and the one that was opened is as it was.
    void checkFiles()
    {
        QDirIterator files(m_folder->path(), {QStringLiteral("*.glb"), QStringLiteral("*.obj")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            RyScene scene;
            QString error;
            QVERIFY2(RySceneFile::open(&scene, files.next(), &error), qPrintable(error));
        }
        const QString original = sample(qPrintable(QFileInfo(m_files->path()).fileName()));
        QFile a(m_files->path()), b(original);
        QVERIFY(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
        QVERIFY(a.readAll() == b.readAll());
    }
    /// The hash of the dump of what is there, or the reason why it is not.
    QByteArray recover(const QString &folder, QString *path = nullptr)
    {
        const QString file = m_files->path();
        HostFiles files(ryScene(), nullptr);
        Autosave autosave(*ryScene(), files);
        QString error;
        std::unique_ptr<RecoverySession> session = RecoverySession::adopt(folder);
        if (!session)
            return "somebody else has it";
        if (!recoverUnsavedWork(std::move(session), *ryScene(), files, autosave, &error))
            return error.toUtf8();
        if (path)
            *path = files.path();
        if (ryUndoStack()->isClean() || ryUndoStack()->count() > 0 || (!path && files.path() != file))
            return "the scene does not count as unsaved work of its file";
        return QCryptographicHash::hash(dump().toUtf8(), QCryptographicHash::Sha1).toHex();
    }
    void checkRecovery(const SessionRun &run)
    {
        const QStringList folders = RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders());
        if (folders.isEmpty()) {
            // Nothing to bring back but what was opened, or the end came within the first second.
            QVERIFY2(run.checkRecovered(run.edits().front().hash).isEmpty(),
                     qPrintable(run.checkRecovered(run.edits().front().hash)));
            return;
        }
        QCOMPARE(folders.size(), 1);
        QCOMPARE(run.checkRecovered(recover(folders.front())), QString());
    }

    void checkRecoveryAmongFiles(const SessionRun &run)
    {
        const QStringList folders = RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders());
        QVERIFY(folders.size() <= 1);
        if (folders.isEmpty()) {
            // All but what was done within the last second is in a file.
            const auto saved = std::find_if(run.edits().rbegin(), run.edits().rend(),
                                            [](const SessionRun::Edit &edit) { return edit.isSaved; });
            QVERIFY(saved != run.edits().rend());
            QCOMPARE(run.checkRecovered(saved->hash), QString());
            return;
        }
        QString path;
        const QByteArray hash = recover(folders.front(), &path);
        QCOMPARE(run.checkRecovered(hash), QString());
        QVERIFY2(std::any_of(run.edits().begin(), run.edits().end(),
                             [&](const auto &edit) { return edit.hash == hash && edit.path == path; }),
                 qPrintable(path));
    }

    std::mt19937 m_random;
};

RY_TEST(CrashTest)
#include "tst_crashes.moc"
