#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

/// Several files with one set of verbs, and what became of them as JSON.
class BatchSeveralTest : public QObject
{
    Q_OBJECT

private:
    using Result = RyBatchRun::Result;
    RyBatchRun m_run;

    QString copy(const QString &name) const
    {
        const QString path = m_run.file(name);
        QDir().mkpath(QFileInfo(path).path());
        return QFile::exists(path) || QFile::copy(RyBatchRun::sample(), path) ? path : QString();
    }
    QString broken() const { return m_run.write("broken.glb", bytesOf(RyBatchRun::sample()).left(5000)); }
    static QByteArray bytesOf(const QString &path)
    {
        QFile source(path);
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    }
    static QJsonObject entry(const Result &result, int number)
    {
        return result.json().value("files").toArray().at(number).toObject();
    }
    static QList<int> codes(const Result &result)
    {
        QList<int> codes;
        for (const QJsonValue &each : result.json().value("files").toArray())
            codes.append(each.toObject().value("code").toInt(-1));
        return codes;
    }

private slots:
    void eachGetsTheVerbsAndAFreshScene()
    {
        const QString out = m_run.file("new/folder");
        const QStringList verbs{"--property", "lForearm:endX=61.5"};
        const Result both = m_run.run(QStringList{"--batch", copy("a.glb"), copy("b.glb")} + verbs +
                                      QStringList{"--save-to", out, "--json", "--report"});
        QVERIFY2(both.code == 0, both.err.constData());
        const QString alone = m_run.file("alone.glb");
        QCOMPARE(m_run.batch(verbs + QStringList{"--save", alone}).code, 0);
        QVERIFY(!bytesOf(alone).isEmpty());
        QCOMPARE(bytesOf(out + "/a.glb"), bytesOf(alone));
        QCOMPARE(bytesOf(out + "/b.glb"), bytesOf(alone));
        for (int number : {0, 1}) {
            const QJsonObject report = entry(both, number).value("report").toObject();
            QCOMPARE(report.value("figures").toArray().size(), 1);
            QCOMPARE(report.value("undoSteps").toArray().size(), 1);
            QCOMPARE(report.value("file").toString(), QString(number == 0 ? "a.glb" : "b.glb"));
        }
        QVERIFY(both.says("2 of 2 files done"));
    }

    void oneThatIsRefusedStopsNoOther()
    {
        const QString out = m_run.file("rest");
        const Result result =
            m_run.run({"--batch", broken(), copy("a.glb"), m_run.file("nowhere.glb"), copy("b.glb"), "--save-to", out});
        QCOMPARE(result.code, 1);
        QCOMPARE(QDir(out).entryList(QDir::Files), QStringList({"a.glb", "b.glb"}));
        QVERIFY2(result.says("2 of 4 files done; ") && result.says("broken.glb: a file was refused") &&
                     result.says("nowhere.glb: there is no such file"),
                 result.err.constData());
        QCOMPARE(result.out, QByteArray());
    }

    /// What a verb says of one of many names it.
    void messagesNameTheFile()
    {
        const QString a = copy("a.glb"), b = copy("b.glb");
        const Result result = m_run.run({"--batch", a, b, "--select", "nobody"});
        QCOMPARE(result.code, 2);
        for (const QString &path : {a, b})
            QVERIFY2(result.err.contains((path + ": --select: no node is called").toLocal8Bit()),
                     result.err.constData());
        QVERIFY(!m_run.run({"--batch", a, "--select", "nobody"}).err.contains("a.glb"));
    }

    void theRunsCodeIsTheHighest()
    {
        const QString bones = m_run.file("bones.rsx");
        QVERIFY(!m_run.write("bones.rsx", "if (Scene.getSkeletons().length == 0) throw 'no bones';").isEmpty());
        const QString mesh = m_run.write("mesh.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        const Result result = m_run.run({"--batch", copy("a.glb"), mesh, broken(), "--script", bones, "--json"});
        QCOMPARE(codes(result), QList<int>({0, 5, 1}));
        QCOMPARE(result.code, 5);
        QCOMPARE(result.json().value("code").toInt(), 5);
    }

    void oneThatBringsTheProgramDownStopsNoOther()
    {
        RyBatchRun run;
        run.setPlugins(RY_BINARY_DIR "/testplugins_batch");
        const QString script = run.write("say.rsx", "print('before the end');");
        const Result result = run.run({"--batch", copy("a.glb"), broken(), copy("b.glb"), "--script", script, "--run",
                                       "RyTestAbortAction", "--save-to", run.file("never"), "--json"});
        QCOMPARE(result.code, 137);
        QCOMPARE(codes(result), QList<int>({137, 1, 137}));
        const QJsonObject killed = entry(result, 2);
        QCOMPARE(killed.value("verb").toString(), QString("--run RyTestAbortAction"));
        QCOMPARE(killed.value("outcome").toString(), QString("killed by signal 9 (Killed)"));
        QVERIFY(killed.value("error").toString().contains("during --run RyTestAbortAction"));
        // What it said before is not lost.
        QVERIFY2(QString::fromUtf8(QJsonDocument(killed).toJson()).contains("before the end"), result.out.constData());
        QVERIFY(!QFile::exists(run.file("never")));
        // Without JSON, one file is worked on by the program itself, which is killed as any other.
        QCOMPARE(run.run({"--batch", copy("a.glb"), "--run", "RyTestAbortAction"}).code, -2);
    }

    void everyOutcomeIsOneDocument_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("files");
        QTest::addColumn<QString>("says");
        const QString a = copy("a.glb");
        QTest::newRow("done") << QStringList{"--batch", a, "--json"} << 0 << 1 << "";
        QTest::newRow("anywhere") << QStringList{"--json", "--batch", a} << 0 << 1 << "";
        QTest::newRow("refused") << QStringList{"--batch", broken(), "--json"} << 1 << 1 << "the file is cut off";
        QTest::newRow("wrong verb") << QStringList{"--batch", a, "--json", "--svae", "x"} << 2 << 0 << "--save";
        QTest::newRow("no file") << QStringList{"--batch", "--json"} << 2 << 0 << "needs the name of a file";
        QTest::newRow("no batch") << QStringList{"--json", a} << 2 << 0 << "ryhost --batch FILE --json";
        QTest::newRow("wrong name") << QStringList{"--batch", a, "--select", "lhan", "--json"} << 2 << 1 << "lHand";
        QTest::newRow("wrong action") << QStringList{"--batch", a, "--run", "RyJEAlignNodAction", "--json"} << 2 << 1
                                      << "RyJEAlignNodeAction";
        QTest::newRow("action refused") << QStringList{"--batch", a, "--select", "none", "--run", "RyJEAlignNodeAction",
                                                       "--json"}
                                        << 3 << 1 << "RyJEAlignNodeAction";
        QTest::newRow("not written") << QStringList{"--batch", a, "--save", m_run.file("no/folder/a.glb"), "--json"}
                                     << 4 << 1 << "does not exist";
        QTest::newRow("folder is a file")
            << QStringList{"--batch", a, "--save-to", a, "--json"} << 4 << 1 << "cannot be made";
        QTest::newRow("script") << QStringList{"--batch", a, "--script", "none.rsx", "--json"} << 5 << 1
                                << "there is no such file";
    }

    void everyOutcomeIsOneDocument()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(int, files);
        QFETCH(QString, says);
        const Result result = m_run.run(arguments);
        QCOMPARE(result.code, code);
        QJsonParseError trouble;
        const QJsonObject document = QJsonDocument::fromJson(result.out, &trouble).object();
        QVERIFY2(trouble.error == QJsonParseError::NoError, result.out.constData());
        QCOMPARE(document.value("code").toInt(-1), code);
        QCOMPARE(document.value("program").toString(), QString("ryhost"));
        QVERIFY(!document.value("version").toString().isEmpty());
        QCOMPARE(document.value("arguments").toArray().size(), arguments.size());
        QCOMPARE(document.value("files").toArray().size(), files);
        const QString error =
            files == 0 ? document.value("error").toString() : entry(result, 0).value("error").toString();
        QVERIFY2(says.isEmpty() ? error.isEmpty() : error.contains(says), qPrintable(error));
        QVERIFY2(result.err.contains(error.toLocal8Bit()), result.err.constData());
        if (files > 0)
            QCOMPARE(entry(result, 0).value("code").toInt(-1), code);
    }

    void whatWasWrittenIsNamed()
    {
        const QString out = m_run.file("named");
        const QString dump = m_run.file("named.txt");
        const Result result = m_run.run({"--batch", copy("a.glb"), "--save-to", out, "--dump", dump, "--json"});
        QCOMPARE(result.code, 0);
        QCOMPARE(entry(result, 0).value("written").toArray(), QJsonArray({out + "/a.glb", dump}));
    }

    void namesAreKept()
    {
        const QString out = m_run.file("kept");
        const QString mesh = m_run.write("mesh.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        const Result result = m_run.run({"--batch", copy("upper.case.GLB"), mesh, "--save-to", out + '/'});
        QVERIFY2(result.code == 0, result.err.constData());
        QCOMPARE(QDir(out).entryList(QDir::Files), QStringList({"mesh.obj", "upper.case.GLB"}));
    }

    /// What cannot be written under its own ending becomes .glb, where another may be already.
    void newEndingsCountAmongNames()
    {
        const Result result =
            m_run.run({"--batch", copy("a.glb"), m_run.file("a.dae"), "--save-to", m_run.file("both")});
        QCOMPARE(result.code, 2);
        QVERIFY2(result.says("a.dae would both be written as a.glb"), result.err.constData());
    }

    void wrongUseRunsNothing_data()
    {
        QTest::addColumn<QStringList>("verbs");
        QTest::addColumn<QByteArray>("says");
        const auto row = [](const char *name, QStringList verbs, const char *says) {
            QTest::newRow(name) << verbs << QByteArray(says);
        };
        row("two of one name", {"--save-to", "out"}, "would both be written as a.glb");
        row("one place", {"--save", "out.glb"}, "--save-to DIR writes each under its own name");
        row("one picture", {"--screenshot", "out.png"}, "--screenshot writes to one place, and there are 2 files");
        row("one dump", {"--dump"}, "--dump writes to one place");
        row("one report", {"--report"}, "with --json, --report without a file");
        row("one report file", {"--json", "--report", "out.json"}, "--report writes to one place");
        row("no folder", {"--save-to"}, "--save-to needs a value");
        row("a stream", {"--save-to", "-"}, "--save-to needs a folder");
        row("nothing saved", {"--undo", "--joints-only"}, "--joints-only belongs after --save or --save-to");
    }

    void wrongUseRunsNothing()
    {
        QFETCH(QStringList, verbs);
        QFETCH(QByteArray, says);
        const Result result = m_run.run(QStringList{"--batch", copy("a.glb"), copy("other/a.glb"), "--script",
                                                    m_run.write("probe.rsx", "print('it ran')")} +
                                        verbs);
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
        QVERIFY(!result.says("it ran"));
    }
};

RY_TEST(BatchSeveralTest)
#include "tst_batch_several.moc"
