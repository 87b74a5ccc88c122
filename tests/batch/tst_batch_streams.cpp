#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>

/// "-": files that come by standard input, and what goes to standard output and is alone there.
class BatchStreamsTest : public QObject
{
    Q_OBJECT

private:
    using Result = RyBatchRun::Result;
    RyBatchRun m_run;

    static QByteArray bytesOf(const QString &path)
    {
        QFile source(path);
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    }
    static QByteArray sample() { return bytesOf(RyBatchRun::sample()); }
    /// The sample in a format, as a file.
    QString sampleAs(const QString &ending) const
    {
        const QString path = m_run.file("sample." + ending);
        return m_run.batch({"--save", path}).code == 0 ? path : QString();
    }
    static QByteArray withOutsideBuffer()
    {
        return R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":4,"uri":"data:,abcd"},)"
               R"({"byteLength":4,"uri":"hero.bin"}]})";
    }
    static QByteArray asBinary(QByteArray json)
    {
        json = json.leftJustified((json.size() + 3) / 4 * 4, ' ');
        const auto number = [](quint32 value) { return QByteArray(reinterpret_cast<const char *>(&value), 4); };
        return "glTF" + number(2) + number(quint32(json.size()) + 20) + number(quint32(json.size())) + "JSON" + json;
    }

private slots:
    void aFileMayComeByStandardInput_data()
    {
        QTest::addColumn<QString>("ending");
        for (const char *ending : {"glb", "gltf", "obj"})
            QTest::newRow(ending) << QString(ending);
    }

    void aFileMayComeByStandardInput()
    {
        QFETCH(QString, ending);
        const QString path = sampleAs(ending);
        QVERIFY(!path.isEmpty());
        const Result named = m_run.run({"--batch", path, "--dump"});
        QCOMPARE(named.code, 0);
        const QByteArray bytes = bytesOf(path);
        const Result sniffed = m_run.run({"--batch", "-", "--dump"}, bytes);
        QVERIFY2(sniffed.code == 0, sniffed.err.constData());
        const Result told = m_run.run({"--batch", "-", "--format", ending, "--dump"}, bytes);
        QVERIFY2(told.code == 0, told.err.constData());
        QCOMPARE(told.out, sniffed.out);
        // A mesh is called after its file where the format has no names.
        if (ending != "obj")
            QCOMPARE(sniffed.out, named.out);
        const Result wrongly = m_run.run({"--batch", "-", "--format", ending == "obj" ? "glb" : "obj"}, bytes);
        QCOMPARE(wrongly.code, 1);
    }

    void filesOfOtherProgramsMayComeByStandardInput_data()
    {
        QTest::addColumn<QString>("ending");
        QTest::addColumn<QByteArray>("start");
        const QByteArray collada =
            R"(<?xml version="1.0"?><COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" )";
        QTest::newRow("FBX") << "fbx" << QByteArray("Kaydara FBX Binary  \0\x1a\0", 23);
        QTest::newRow("FBX in text") << "fbx" << QByteArray("; FBX 7.4.0 project file\nv 0 0 0\n");
        QTest::newRow("Collada") << "dae" << collada + "version=\"1.4.1\"></COLLADA>";
        QTest::newRow("BVH") << "bvh" << QByteArray("HIERARCHY\nROOT hip\n");
    }

    /// Which reader is asked is seen by what the others make of it.
    void filesOfOtherProgramsMayComeByStandardInput()
    {
        QFETCH(QString, ending);
        QFETCH(QByteArray, start);
        const Result sniffed = m_run.run({"--batch", "-", "--dump"}, start);
        const Result told = m_run.run({"--batch", "-", "--format", ending, "--dump"}, start);
        QCOMPARE(sniffed.code, 1);
        QCOMPARE(sniffed.err, told.err);
        const Result wrongly = m_run.run({"--batch", "-", "--format", ending == "bvh" ? "dae" : "bvh"}, start);
        QCOMPARE(wrongly.code, 1);
        QVERIFY2(wrongly.says(qPrintable("renamed to end in ." + ending)), wrongly.err.constData());
        QCOMPARE(m_run.run({"--batch", RyBatchRun::sample(), "--save", "-", "--format", ending}).code, 2);
    }

    void mergedFilesAndScriptsMayComeByStandardInput()
    {
        const Result merged = m_run.run({"--batch", RyBatchRun::sample(), "--merge", "-", "--report"}, sample());
        QVERIFY2(merged.code == 0, merged.err.constData());
        QCOMPARE(merged.json().value("figures").toArray().size(), 2);
        const Result script =
            m_run.run({"--batch", RyBatchRun::sample(), "--script", "-"}, "print(Scene.find('lHand').getName());");
        QVERIFY2(script.code == 0 && script.says("lHand"), script.err.constData());
        const Result bad = m_run.run({"--batch", RyBatchRun::sample(), "--script", "-"}, "throw 'on purpose';");
        QCOMPARE(bad.code, 5);
        QVERIFY2(bad.says("standard input: the script ended with an error"), bad.err.constData());
    }

    /// A process each, and one stream.
    void severalFilesGetAllOfStandardInput()
    {
        const QStringList files{"--batch", RyBatchRun::sample(), sampleAs("gltf")};
        const Result scripts = m_run.run(files + QStringList{"--script", "-"}, "print('Hello ' + 'all');");
        QVERIFY2(scripts.code == 0, scripts.err.constData());
        QCOMPARE(scripts.err.count("Hello all"), 2);
        QVERIFY(scripts.says("2 of 2 files done"));
        const Result merged = m_run.run(files + QStringList{"--merge", "-", "--json", "--report"}, sample());
        QVERIFY2(merged.code == 0, merged.err.constData());
        for (const QJsonValue &entry : merged.json().value("files").toArray())
            QCOMPARE(entry["report"]["figures"].toArray().size(), 2);
        // The file that comes by it is the only one that takes it.
        const Result one = m_run.run({"--batch", RyBatchRun::sample(), "-", "--select", "lHand"}, sample());
        QVERIFY2(one.code == 0 && one.says("2 of 2 files done"), one.err.constData());
        const Result none = m_run.run(files + QStringList{"--script", "-"});
        QCOMPARE(none.code, 5);
        QCOMPARE(none.err.count("standard input is empty; what was to send a script sent nothing"), 2);
    }

    void whatStandardInputCannotBeIsExplained_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("says");
        QTest::newRow("nothing") << QStringList() << QByteArray() << QByteArray("standard input is empty");
        QTest::newRow("any text") << QStringList() << QByteArray("hello\nworld\n") << QByteArray("--format glb");
        QTest::newRow("outside buffer") << QStringList() << withOutsideBuffer() << QByteArray("\"hero.bin\" beside it");
        QTest::newRow("outside buffer, binary")
            << QStringList() << asBinary(withOutsideBuffer()) << QByteArray("\"hero.bin\" beside it");
        QTest::newRow("outside buffer, format told")
            << QStringList{"--format", "gltf"} << "\xEF\xBB\xBF" + withOutsideBuffer()
            << QByteArray("\"hero.bin\" beside it");
        QTest::newRow("outside picture") << QStringList()
                                         << QByteArray(R"({"asset":{"version":"2.0"},"images":[{"uri":"skin.png"}]})")
                                         << QByteArray("\"skin.png\" beside it");
        QTest::newRow("cut off") << QStringList() << sample().left(1000)
                                 << QByteArray("standard input cannot be opened");
    }

    void whatStandardInputCannotBeIsExplained()
    {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, says);
        const Result result = m_run.run(QStringList{"--batch", "-"} + options + QStringList("--dump"), input);
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains(says), result.err.constData());
        QCOMPARE(result.out, QByteArray());
    }

    void scenesGoToStandardOutput()
    {
        const Result same = m_run.run({"--batch", "-", "--save", "-"}, sample());
        QVERIFY2(same.code == 0, same.err.constData());
        QCOMPARE(same.out, sample());
        const QStringList edit{"--property", "lForearm:endX=61.5"};
        const QString path = m_run.file("edited.gltf");
        QCOMPARE(m_run.batch(edit + QStringList{"--save", path}).code, 0);
        const Result text = m_run.batch(edit + QStringList{"--save", "-", "--format", "gltf"});
        QVERIFY2(text.code == 0, text.err.constData());
        QCOMPARE(text.out, bytesOf(path));
        QVERIFY(text.err.isEmpty());
        // Materials stand in a file beside, which a stream has no place for.
        const Result two = m_run.batch({"--save", "-", "--format", "obj"});
        QCOMPARE(two.code, 4);
        QCOMPARE(two.out, QByteArray());
        QVERIFY2(two.says("this scene needs 2 files in this format") && two.says("as .glb"), two.err.constData());
        QVERIFY2(two.says("standard output: this format has no place for bones"), two.err.constData());
        const QByteArray mesh = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
        const Result one = m_run.run({"--batch", "-", "--save", "-", "--format", "obj"}, mesh);
        QVERIFY2(one.code == 0, one.err.constData());
        QCOMPARE(one.out, mesh);
    }

    void othersGoToStandardOutput()
    {
        const Result picture = m_run.batch({"--screenshot", "-", "--size", "320x200"});
        QVERIFY2(picture.code == 0, picture.err.constData());
        QCOMPARE(QImage::fromData(picture.out, "png").size(), QSize(320, 200));
        QCOMPARE(m_run.batch({"--dump", "-"}).out, m_run.batch({"--dump"}).out);
        QVERIFY(m_run.batch({"--report", "-"}).json().contains("figures"));
        QVERIFY(!QFile::exists("-"));
    }

    /// A library that prints must not get into a file that is piped on.
    void nothingElseGoesToStandardOutput()
    {
        RyBatchRun run;
        run.setPlugins(RY_BINARY_DIR "/testplugins_batch");
        const QByteArray alone = run.batch({"--dump"}).out;
        const QStringList verbs{"--run", "RyTestPrintAction"};
        const Result mixed = run.batch(verbs);
        QVERIFY2(mixed.out.contains("printed by a library"), mixed.err.constData());
        const Result dump = run.batch(verbs + QStringList("--dump"));
        QCOMPARE(dump.out, alone);
        QVERIFY2(dump.says("printed by a library"), dump.err.constData());
    }

    void aReaderThatIsGoneGivesFour()
    {
        QProcess process;
        process.setStandardOutputFile("/dev/full");
        process.start(RY_BINARY_DIR "/bin/ryhost", {"--batch", RyBatchRun::sample(), "--dump"});
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 4);
        QVERIFY(process.readAllStandardError().contains("standard output could not be written: "));
        // One that closes its end: not killed by the signal for it.
        process.setStandardOutputFile(QString());
        process.start("bash", {"-c", "\"$0\" --batch \"$1\" --merge \"$1\" --dump | true; exit ${PIPESTATUS[0]}",
                               RY_BINARY_DIR "/bin/ryhost", RyBatchRun::sample()});
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 4);
    }

    void nothingIsLeftBehind()
    {
        RyBatchRun run;
        run.setPlugins(RY_BINARY_DIR "/testplugins_batch");
        const QTemporaryDir folder;
        qputenv("TMPDIR", folder.path().toLocal8Bit());
        const Result result = run.run({"--batch", "-", "--save", "-"}, sample());
        const Result killed = run.run({"--batch", "-", "--run", "RyTestAbortAction", "--json"}, sample());
        qunsetenv("TMPDIR");
        QCOMPARE(result.code, 0);
        QCOMPARE(killed.code, 137);
        QStringList left = QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        left.removeAll("runtime-root"); // the toolkit's, for all programs
        QCOMPARE(left, QStringList());
    }

    /// Nobody removes the folder of a run that is killed, but the next one.
    void whatAKilledRunLeftGoesWithTheNext()
    {
        const QTemporaryDir folder;
        qputenv("TMPDIR", folder.path().toLocal8Bit());
        const auto left = [&folder] {
            return QDir(folder.path()).entryList({"ryhost-stream-*"}, QDir::AllEntries | QDir::NoDotAndDotDot);
        };
        QProcess waiting;
        waiting.start(RY_BINARY_DIR "/bin/ryhost", {"--batch", "-", "--dump"});
        const bool hasBegun = QTest::qWaitFor([&left] { return left().size() == 1; }, 60000);
        const Result beside = m_run.run({"--batch", "-", "--dump"}, sample());
        const QStringList used = left();
        waiting.kill();
        const bool isKilled = waiting.waitForFinished(60000);
        const QStringList abandoned = left();
        const Result next = m_run.run({"--batch", "-", "--dump"}, sample());
        qunsetenv("TMPDIR");
        QVERIFY(hasBegun && isKilled);
        QCOMPARE(beside.code, 0);
        QCOMPARE(used.size(), 1); // that of the run that waited
        QCOMPARE(abandoned, used);
        QCOMPARE(next.code, 0);
        QCOMPARE(left(), QStringList());
    }

    void wrongUseIsExplained_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("says");
        const auto row = [](const char *name, QStringList arguments, const char *says) {
            QTest::newRow(name) << QStringList("--batch") + arguments << QByteArray(says);
        };
        row("two readers", {"-", "--merge", "-"}, "standard input can be read once only");
        row("reader and script", {"-", "--script", "-"}, "standard input can be read once only");
        row("read twice", {"-", "-"}, "standard input can be read once only");
        row("two writers", {"a.glb", "--save", "-", "--dump"}, "only one of --save and --dump can go");
        row("three writers", {"a.glb", "--save", "-", "--dump", "-", "--screenshot", "-"},
            "only one of --save, --dump and --screenshot can go");
        row("writer beside the document", {"a.glb", "--json", "--save", "-"}, "--json takes standard output");
        row("format of a name", {"a.glb", "--format", "glb"}, "--format belongs after --batch -");
        row("format of a named save", {"-", "--save", "a.glb", "--format", "glb"}, "--format belongs after");
        row("unknown format", {"-", "--format", "xyz"}, "\"xyz\" is none of glb");
        row("no format", {"-", "--format"}, "--format needs a value");
        row("no name to keep", {"-", "--save-to", "out"}, "standard input has none");
    }

    void wrongUseIsExplained()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, says);
        const Result result = m_run.run(arguments);
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
    }
};

RY_TEST(BatchStreamsTest)
#include "tst_batch_streams.moc"
