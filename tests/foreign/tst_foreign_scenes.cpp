#include "foreign/ForeignStage.h"
#include "support/RyTest.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

/// A foreign file as a scene: what it became is what its reader made of it, no file holds it yet, and nothing tells of
/// the file on the way.
class ForeignScenesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_stage = std::make_unique<ForeignStage>();
        m_file = m_stage->write(QStringLiteral("hero.fbx"), "take " + ForeignStage::sample().toUtf8());
        ryUndoStack()->clearAll();
        ryScene()->clear();
        ryUndoStack()->setClean();
        m_messages.clear();
    }
    void cleanup()
    {
        const QStringList leftovers = m_stage->leftovers();
        ryScene()->clear();
        m_stage.reset();
        QCOMPARE(leftovers, QStringList());
    }

    void isWhatItsReaderMade()
    {
        RyScene wanted;
        QVERIFY(RySceneFile::open(&wanted, ForeignStage::sample(), nullptr));
        QVERIFY2(open(m_file), qPrintable(m_error));
        QCOMPARE(rySceneDump(*ryScene()), rySceneDump(wanted));
        QCOMPARE(ryScene()->getOrigin()->path(), m_file);
        QVERIFY(m_messages.contains(QStringLiteral("Two lights did not come along.")));
    }

    void isNotSavedYet()
    {
        QVERIFY(open(ForeignStage::sample()));
        QVERIFY(ryUndoStack()->isClean());
        QVERIFY(open(m_file));
        QVERIFY(!ryUndoStack()->isClean());
        QCOMPARE(ryUndoStack()->count(), 0);
        const QString saved = m_stage->path(QStringLiteral("hero.glb"));
        QVERIFY2(RySceneFile::save(ryScene(), saved, &m_error), qPrintable(m_error));
        QVERIFY(ryUndoStack()->isClean());
    }

    void savesAsItsOwnFormat()
    {
        QVERIFY(open(m_file));
        RyNode *bone = ryScene()->findNode(QStringLiteral("lForearm"));
        bone->adjustOrigin(bone->getOrigin() + RyVec3(0, 1, 0));
        const QString edited = rySceneDump(*ryScene());
        const QByteArray before = bytesOf(m_file);
        QVERIFY(!RySceneFile::save(ryScene(), m_file, &m_error));
        QVERIFY2(m_error.startsWith(m_file), qPrintable(m_error));
        QVERIFY(!RySceneFile::save(ryScene(), m_stage->path(QStringLiteral("other.fbx")), &m_error));
        QCOMPARE(bytesOf(m_file), before);
        for (const char *name : {"saved.glb", "saved.gltf"}) {
            const QString saved = m_stage->path(QLatin1String(name));
            QVERIFY2(RySceneFile::save(ryScene(), saved, &m_error), qPrintable(m_error));
            const QByteArray bytes = bytesOf(saved);
            QVERIFY(bytes.size() > 1000);
            for (const char *word : {"ryhost-import", "read.glb", "hero.fbx", "/tmp"})
                QVERIFY2(!bytes.contains(word), word);
            RyScene again;
            QVERIFY2(RySceneFile::open(&again, saved, &m_error), qPrintable(m_error));
            QCOMPARE(rySceneDump(again), edited);
        }
    }

    void isMerged()
    {
        RySceneFile::Options beside;
        beside.merge = true;
        QVERIFY(open(ForeignStage::sample()));
        QVERIFY(open(ForeignStage::sample(), beside));
        const QString wanted = rySceneDump(*ryScene());
        QVERIFY(open(ForeignStage::sample()));
        QVERIFY2(open(m_file, beside), qPrintable(m_error));
        QCOMPARE(rySceneDump(*ryScene()), wanted);
        QCOMPARE(ryScene()->getOrigins().size(), size_t(2));
        // What is saved holds both.
        const QString saved = m_stage->path(QStringLiteral("both.glb"));
        QVERIFY2(RySceneFile::save(ryScene(), saved, &m_error), qPrintable(m_error));
        QVERIFY(!bytesOf(saved).contains("ryhost-import"));
        QVERIFY(open(saved));
        QCOMPARE(ryScene()->getSkeletons().size(), size_t(2));
    }

    void takesTheUnitThatIsSaid()
    {
        // Only the reader knows what a unit of the file is.
        const QString file = m_stage->write(QStringLiteral("unit.fbx"), "unit " + ForeignStage::sample().toUtf8());
        RySceneFile::Options options;
        options.unit = 2.54;
        QVERIFY(open(file, options));
        QVERIFY(m_messages.contains(QStringLiteral("unit 2.54")));
        RyScene wanted;
        QVERIFY(RySceneFile::open(&wanted, ForeignStage::sample(), nullptr));
        QCOMPARE(rySceneDump(*ryScene()), rySceneDump(wanted));
        m_messages.clear();
        QVERIFY(open(file));
        QVERIFY(m_messages.contains(QStringLiteral("unit 0")));
    }

    void refusalsLeaveTheScene_data()
    {
        QTest::addColumn<QByteArray>("content");
        for (const char *content : {"crash", "refuse it is too old", "rubbish", "", "glTF", "slow"})
            QTest::newRow(content) << QByteArray(content);
        QTest::newRow("no scene") << "take " + m_stageless;
    }
    void refusalsLeaveTheScene()
    {
        QFETCH(QByteArray, content);
        QVERIFY(open(ForeignStage::sample()));
        RyNode *bone = ryScene()->findNode(QStringLiteral("lForearm"));
        {
            RyUndoStackHold hold;
            bone->adjustOrigin(bone->getOrigin() + RyVec3(0, 1, 0));
            hold.accept(QStringLiteral("Move"));
        }
        const QString before = rySceneDump(*ryScene());
        const QString file = m_stage->write(QStringLiteral("bad.fbx"), content);
        RySceneFile::Options options;
        options.progress = [](double done) { return done < 0.005; };
        for (const bool merge : {false, true}) {
            options.merge = merge;
            QVERIFY(!open(file, options));
            QVERIFY2(m_error.startsWith(file) && m_error.size() > file.size() + 20, qPrintable(m_error));
            QVERIFY2(!m_error.contains(QStringLiteral("ryhost-import")), qPrintable(m_error));
            QCOMPARE(rySceneDump(*ryScene()), before);
            QCOMPARE(ryUndoStack()->count(), 1);
        }
    }

    void endings()
    {
        for (const char *ending : {"fbx", "dae", "bvh"}) {
            QVERIFY(RySceneFile::readableEndings().contains(QLatin1String(ending)));
            QVERIFY(!RySceneFile::writableEndings().contains(QLatin1String(ending)));
            QVERIFY(RySceneFile::isForeign(QStringLiteral("/a/b.") + QString::fromLatin1(ending).toUpper()));
        }
        QVERIFY(!RySceneFile::isForeign(QStringLiteral("/a.fbx/b.glb")));
    }

    void inBatch()
    {
        const QString out = m_stage->path(QStringLiteral("out.glb"));
        const ForeignStage::Run run = ForeignStage::run({"--batch", m_file, "--save", out, "--dump"});
        QCOMPARE(run.code, 0);
        QVERIFY2(run.err.contains("Two lights did not come along."), run.err.constData());
        RyScene wanted;
        QVERIFY(RySceneFile::open(&wanted, ForeignStage::sample(), nullptr));
        QCOMPARE(QString::fromUtf8(run.out), rySceneDump(wanted));
        QVERIFY(open(out));
        QCOMPARE(rySceneDump(*ryScene()), rySceneDump(wanted));
        const ForeignStage::Run merged =
            ForeignStage::run({"--batch", ForeignStage::sample(), "--merge", m_file, "--save", out});
        QCOMPARE(merged.code, 0);
        QVERIFY(open(out));
        QCOMPARE(ryScene()->getSkeletons().size(), size_t(2));
    }

    void refusedInBatch()
    {
        const QString bad = m_stage->write(QStringLiteral("bad.fbx"), "crash");
        const ForeignStage::Run refused = ForeignStage::run({"--batch", bad});
        QCOMPARE(refused.code, 1);
        QVERIFY2(refused.err.contains("bad.fbx cannot be opened: "), refused.err.constData());
        const ForeignStage::Run over = ForeignStage::run({"--batch", m_file, "--save", m_file});
        QCOMPARE(over.code, 4);
        QVERIFY(bytesOf(m_file).startsWith("take "));
    }

    void theReadingProcess()
    {
        const auto run = [](const QStringList &arguments) {
            return ForeignStage::runProgram(ForeignStage::readerPath(), arguments);
        };
        const QString out = m_stage->path(QStringLiteral("out.glb"));
        const ForeignStage::Run done = run({m_file, out, "0"});
        QCOMPARE(done.code, 0);
        QCOMPARE(done.out, QByteArray("note Two lights did not come along.\n"));
        QCOMPARE(bytesOf(out), bytesOf(ForeignStage::sample()));
        const QString bad = m_stage->write(QStringLiteral("bad.fbx"), "refuse it is\ttoo old");
        const ForeignStage::Run refused = run({bad, out, "0"});
        QCOMPARE(refused.code, 1);
        QCOMPARE(refused.out, QByteArray("error it is\ttoo old\n"));
        QCOMPARE(bytesOf(out), bytesOf(ForeignStage::sample())); // as it was
        QCOMPARE(run({m_file, out}).code, 2);
        QCOMPARE(run({m_file, "/nowhere/out.glb", "0"}).code, 1);
    }

private:
    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    bool open(const QString &path, const RySceneFile::Options &options = RySceneFile::Options())
    {
        m_error.clear();
        return RySceneFile::open(ryScene(), path, options, &m_error, &m_messages);
    }

    /// A file that is no scene.
    const QByteArray m_stageless = RY_SOURCE_DIR "/README.md";
    std::unique_ptr<ForeignStage> m_stage;
    QString m_file;
    QString m_error;
    QStringList m_messages;
};

RY_TEST(ForeignScenesTest)
#include "tst_foreign_scenes.moc"
