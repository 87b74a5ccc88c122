#include "support/RyTest.h"
#include "support/strangeFile.h"

#include "RyBatchRun.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/node/RyNodeLookup.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// The command line: every verb, every exit code, and that nothing is lost when something is refused.
class CommandLineTest : public QObject
{
    Q_OBJECT

private:
    using Result = RyBatchRun::Result;
    RyBatchRun m_run;

    QString sample() const { return RyBatchRun::sample(); }
    QString file(const QString &name) const { return m_run.file(name); }
    Result run(const QStringList &arguments) const { return m_run.run(arguments); }
    Result batch(const QStringList &verbs) const { return m_run.batch(verbs); }

    static QByteArray bytesOf(const QString &path)
    {
        QFile source(path);
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    }

private slots:
    void helpFitsOnOnePage()
    {
        const Result help = run({QStringLiteral("--help")});
        QCOMPARE(help.code, 0);
        QVERIFY(help.out.count('\n') <= 50);
        for (const char *verb : {"--batch",      "--select",  "--property", "--pose", "--undo",        "--save",
                                 "--screenshot", "--dump",    "--run",      "--set",  "--answer",      "--script",
                                 "--report",     "--merge",   "--unit",     "--redo", "--joints-only", "--clip",
                                 "--time",       "--save-to", "--format",   "--json", "--verbose",     "--version"})
            QVERIFY2(help.out.contains(verb), verb);
    }

    void dumpIsTheSameEveryTime()
    {
        const Result first = batch({QStringLiteral("--dump")});
        const Result second = batch({QStringLiteral("--dump"), file(QStringLiteral("dump.txt"))});
        QCOMPARE(first.code, 0);
        QCOMPARE(second.code, 0);
        QVERIFY(first.out.contains("lForearm"));
        QCOMPARE(bytesOf(file(QStringLiteral("dump.txt"))), first.out);
        QVERIFY(second.out.isEmpty());
    }

    void aPropertyIsOneStepThatUndoTakesBack()
    {
        const QByteArray before = batch({QStringLiteral("--dump")}).out;
        const QString edit = QStringLiteral("lForearm:endX=70.5");
        const QByteArray after = batch({QStringLiteral("--property"), edit, QStringLiteral("--dump")}).out;
        QVERIFY(before != after);
        QVERIFY(after.contains("70.5"));
        QCOMPARE(batch({QStringLiteral("--property"), edit, QStringLiteral("--undo"), QStringLiteral("--dump")}).out,
                 before);
        QCOMPARE(batch({QStringLiteral("--property"), edit, QStringLiteral("--undo"), QStringLiteral("--redo"),
                        QStringLiteral("--dump")})
                     .out,
                 after);
    }

    void limitsAreKept()
    {
        const QString limited = file(QStringLiteral("limited.glb"));
        {
            QString error;
            RyScene scene;
            QVERIFY2(RySceneFile::open(&scene, sample(), &error), qPrintable(error));
            RyFloatProperty *scale = RyNodeLookup::findValue(*scene.findNode(QStringLiteral("lForearm")),
                                                             QStringLiteral("scale"), true, &error);
            QVERIFY(scale);
            scale->setMin(0.5f);
            scale->setMax(2.0f);
            scale->setIsClamped(true);
            QVERIFY2(RySceneFile::save(&scene, limited, &error), qPrintable(error));
        }
        const QString script = m_run.write(
            QStringLiteral("limits.rsx"), "var bone = Scene.find('lForearm'), scale = bone.getValue('scale');\n"
                                          "try { bone.setValue('scale', 3); } catch (error) { print(error.message); }\n"
                                          "print(bone.getValue('scale') === scale);");
        const Result byScript = run({QStringLiteral("--batch"), limited, QStringLiteral("--script"), script});
        QVERIFY2(byScript.code == 0, byScript.err.constData());
        const Result byVerb = run({QStringLiteral("--batch"), limited, QStringLiteral("--pose"),
                                   QStringLiteral("lForearm:scale=3"), QStringLiteral("--report")});
        const QByteArray why = "\"scale\" cannot become 3; its limits are 0.5 to 2";
        QCOMPARE(byVerb.code, 2);
        QVERIFY2(byVerb.err.contains(why), byVerb.err.constData());
        QVERIFY2(byScript.err.contains(why) && byScript.says("true"), byScript.err.constData());
        QVERIFY(byVerb.json().value(QStringLiteral("undoSteps")).toArray().isEmpty());
    }

    void reportSaysWhatHappened()
    {
        const Result result =
            batch({QStringLiteral("--select"), QStringLiteral("lForearm,lHand"), QStringLiteral("--pose"),
                   QStringLiteral("lForearm:yrot=30"), QStringLiteral("--report")});
        QCOMPARE(result.code, 0);
        const QJsonObject report = QJsonDocument::fromJson(result.out).object();
        QCOMPARE(report.value(QStringLiteral("undoSteps")).toArray().size(), 1);
        const QJsonArray selection = report.value(QStringLiteral("selection")).toArray();
        QCOMPARE(selection.size(), 2);
        QVERIFY(selection.at(1).toString().endsWith(QStringLiteral("/lHand")));
        QVERIFY(report.value(QStringLiteral("figures"))
                    .toArray()
                    .at(0)
                    .toObject()
                    .value(QStringLiteral("bones"))
                    .toArray()
                    .size() >= 40);
        QCOMPARE(report.value(QStringLiteral("unit")).toDouble(), 100.0);
    }

    /// Members in order, indents, numbers and letters as ever: people compare reports by the line.
    void reportIsWrittenAsTheToolkitWrites()
    {
        const QStringList untidy{QStringLiteral("--select"), QStringLiteral("lForearm"),
                                 QStringLiteral("--pose"),   QStringLiteral("lForearm:yrot=30"),
                                 QStringLiteral("--run"),    QStringLiteral("RyJERenameNodeAction"),
                                 QStringLiteral("--set"),    QStringLiteral("label=The \"arm\""),
                                 QStringLiteral("--run"),    QStringLiteral("RyJEAlignNodeAction"),
                                 QStringLiteral("--undo")};
        const QByteArray text = batch(untidy + QStringList{QStringLiteral("--report")}).out;
        const QJsonObject report = QJsonDocument::fromJson(text).object();
        for (const char *key : {"boxes", "figures", "runs", "selection", "undoSteps"})
            QVERIFY2(!report.value(QLatin1String(key)).toArray().isEmpty(), key);
        QCOMPARE(text, QJsonDocument(report).toJson());
        // Where it goes into the document about all files, without what that says itself.
        QJsonObject rest = report;
        for (const char *key : {"boxes", "messages", "runs"})
            rest.remove(QLatin1String(key));
        const QJsonObject document =
            batch(untidy + QStringList{QStringLiteral("--json"), QStringLiteral("--report")}).json();
        QCOMPARE(document.value(QStringLiteral("files")).toArray().at(0).toObject().value(QStringLiteral("report")),
                 QJsonValue(rest));
    }

    void pathsTellNodesApart()
    {
        QCOMPARE(batch({QStringLiteral("--select"), QStringLiteral("lForearm/lHand"), QStringLiteral("--report")}).code,
                 0);
        QCOMPARE(batch({QStringLiteral("--select"), QStringLiteral("none"), QStringLiteral("--report")}).code, 0);
        const Result missing = batch({QStringLiteral("--select"), QStringLiteral("lforearm")});
        QCOMPARE(missing.code, 2);
        QVERIFY(missing.err.contains("\"lforearm\""));
        QVERIFY2(missing.err.contains("\"lForearm\""), missing.err.constData());
    }

    void savedEditsComeBack()
    {
        const QString out = file(QStringLiteral("moved.glb"));
        QCOMPARE(batch({QStringLiteral("--property"), QStringLiteral("lForearm:originY=120.25"),
                        QStringLiteral("--save"), out})
                     .code,
                 0);
        const Result again = run({QStringLiteral("--batch"), out, QStringLiteral("--dump")});
        QCOMPARE(again.code, 0);
        QVERIFY(again.out.contains("\"originY\" 120.25"));
        // The input itself may be the target.
        QCOMPARE(run({QStringLiteral("--batch"), out, QStringLiteral("--pose"), QStringLiteral("lForearm:xrot=5"),
                      QStringLiteral("--save"), out})
                     .code,
                 0);
        QVERIFY(run({QStringLiteral("--batch"), out, QStringLiteral("--dump")}).out.contains("\"xrot\" 5 "));
    }

    void theToolkitSpeaksWhenItIsAsked()
    {
        const QStringList verbs{"--screenshot", m_run.file("toolkit.png")};
        const RyBatchRun::Result quiet = m_run.batch(verbs);
        QCOMPARE(quiet.code, 0);
        QCOMPARE(quiet.err, QByteArray());
        const RyBatchRun::Result verbose = m_run.batch(verbs + QStringList("--verbose"));
        QCOMPARE(verbose.code, 0);
        QVERIFY2(verbose.says("XDG_RUNTIME_DIR"), verbose.err.constData());
    }

    void screenshotIsDrawnWithoutADisplay()
    {
        const QString out = file(QStringLiteral("picture.png"));
        const Result result =
            batch({QStringLiteral("--select"), QStringLiteral("lForearm"), QStringLiteral("--screenshot"), out,
                   QStringLiteral("--size"), QStringLiteral("640x480")});
        QVERIFY2(result.code == 0, result.err.constData());
        const QImage picture(out);
        QCOMPARE(picture.size(), QSize(640, 480));
        QSet<QRgb> colours;
        for (int y = 0; y < picture.height(); y += 4) {
            for (int x = 0; x < picture.width(); x += 4)
                colours.insert(picture.pixel(x, y));
        }
        QVERIFY2(colours.size() > 100, "the picture shows next to nothing");
    }

    void unitAndMerge()
    {
        const QByteArray doubled =
            batch({QStringLiteral("--unit"), QStringLiteral("200"), QStringLiteral("--report")}).out;
        QCOMPARE(QJsonDocument::fromJson(doubled).object().value(QStringLiteral("unit")).toDouble(), 200.0);
        const Result merged = batch({QStringLiteral("--merge"), sample(), QStringLiteral("--report")});
        QCOMPARE(merged.code, 0);
        const QJsonArray figures =
            QJsonDocument::fromJson(merged.out).object().value(QStringLiteral("figures")).toArray();
        QCOMPARE(figures.size(), 2);
        QVERIFY(figures.at(0).toObject().value(QStringLiteral("name")) !=
                figures.at(1).toObject().value(QStringLiteral("name")));
        const QString out = file(QStringLiteral("two.glb"));
        QCOMPARE(batch({QStringLiteral("--merge"), sample(), QStringLiteral("--save"), out}).code, 0);
        const Result again = run({QStringLiteral("--batch"), out, QStringLiteral("--report")});
        QCOMPARE(QJsonDocument::fromJson(again.out).object().value(QStringLiteral("figures")).toArray().size(), 2);
    }

    void wrongUseIsExplained_data()
    {
        QTest::addColumn<QStringList>("verbs");
        QTest::addColumn<QByteArray>("says");
        const auto row = [](const char *name, QStringList verbs, const char *says) {
            QTest::newRow(name) << verbs << QByteArray(says);
        };
        row("unknown verb", {QStringLiteral("--frobnicate")}, "--frobnicate");
        row("value missing", {QStringLiteral("--save")}, "--save needs a value");
        row("two outputs", {QStringLiteral("--dump"), QStringLiteral("--report")}, "only one of --dump and --report");
        row("bad size",
            {QStringLiteral("--screenshot"), QStringLiteral("x.png"), QStringLiteral("--size"), QStringLiteral("12")},
            "no size");
        row("bad view",
            {QStringLiteral("--screenshot"), QStringLiteral("x.png"), QStringLiteral("--view"),
             QStringLiteral("below")},
            "\"below\"");
        row("nothing saved", {QStringLiteral("--undo"), QStringLiteral("--joints-only")},
            "--joints-only belongs after --save");
        row("bad unit", {QStringLiteral("--unit"), QStringLiteral("zero")}, "\"zero\"");
        row("no number", {QStringLiteral("--property"), QStringLiteral("lForearm:endX=much")}, "\"much\" is no number");
        row("not a number", {QStringLiteral("--property"), QStringLiteral("lForearm:endX=nan")}, "is no number");
        row("no such value", {QStringLiteral("--property"), QStringLiteral("lForearm:width=3")}, "\"width\"");
        row("rigging is no pose", {QStringLiteral("--pose"), QStringLiteral("lForearm:endX=3")}, "\"endX\"");
        row("no form", {QStringLiteral("--property"), QStringLiteral("endX")}, "NODE:NAME=VALUE");
        row("nothing to undo", {QStringLiteral("--undo")}, "nothing to undo");
        row("nothing of a merge to undo", {QStringLiteral("--merge"), sample(), QStringLiteral("--undo")},
            "--merge makes no step");
        row("stray word", {QStringLiteral("--undo"), QStringLiteral("lForearm")}, "\"lForearm\" stands alone");
        row("no names", {QStringLiteral("--select"), QStringLiteral(",")}, "\",\" names no node");
        row("unit for nothing", {QStringLiteral("--undo"), QStringLiteral("--unit"), QStringLiteral("2")},
            "no file is read after it");
    }

    void wrongUseIsExplained()
    {
        QFETCH(QStringList, verbs);
        QFETCH(QByteArray, says);
        const Result result = batch(verbs);
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
    }

    void refusedFilesGiveOne()
    {
        const Result missing = run({QStringLiteral("--batch"), file(QStringLiteral("nowhere.glb"))});
        QCOMPARE(missing.code, 1);
        QVERIFY(missing.err.contains("nowhere.glb"));
        QFile empty(file(QStringLiteral("empty.glb")));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        QCOMPARE(run({QStringLiteral("--batch"), empty.fileName()}).code, 1);
        QFile text(file(QStringLiteral("notes.txt")));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("hello");
        text.close();
        const Result other = run({QStringLiteral("--batch"), text.fileName()});
        QCOMPARE(other.code, 1);
        QVERIFY(other.err.contains("notes.txt"));
    }

    void whatCannotBeWrittenGivesFour()
    {
        const Result noFolder = batch({QStringLiteral("--save"), file(QStringLiteral("no/such/folder/out.glb"))});
        QCOMPARE(noFolder.code, 4);
        QVERIFY(noFolder.err.contains("out.glb"));
        const QString locked = file(QStringLiteral("locked.glb"));
        QVERIFY(QFile::copy(sample(), locked));
        const QByteArray old = bytesOf(locked);
        QVERIFY(QFile::setPermissions(locked, QFileDevice::ReadOwner));
        QCOMPARE(
            batch({QStringLiteral("--property"), QStringLiteral("lForearm:endX=1"), QStringLiteral("--save"), locked})
                .code,
            4);
        QCOMPARE(bytesOf(locked), old);
        QCOMPARE(batch({QStringLiteral("--save"), file(QStringLiteral("out.xyz"))}).code, 4);
    }

    /// The file is there, and what it lacks is named.
    void whatIsLeftOutGivesFour()
    {
        const QString strange = file(QStringLiteral("strange.gltf"));
        QFile written(strange);
        QVERIFY(written.open(QIODevice::WriteOnly));
        written.write(strangeFile());
        written.close();
        const QString out = file(QStringLiteral("both.glb"));
        const Result both = batch({QStringLiteral("--merge"), strange, QStringLiteral("--save"), out});
        QCOMPARE(both.code, 4);
        QVERIFY2(both.err.contains("both.glb") && both.err.contains("EXT_strange"), both.err.constData());
        QCOMPARE(run({QStringLiteral("--batch"), out, QStringLiteral("--select"), QStringLiteral("strange")}).code, 0);
        QCOMPARE(
            run({QStringLiteral("--batch"), strange, QStringLiteral("--save"), file(QStringLiteral("one.glb"))}).code,
            0);
    }

    void scripts()
    {
        const QString good = file(QStringLiteral("good.rsx"));
        const QString bad = file(QStringLiteral("bad.rsx"));
        QFile goodFile(good), badFile(bad);
        QVERIFY(goodFile.open(QIODevice::WriteOnly) && badFile.open(QIODevice::WriteOnly));
        goodFile.write("if (typeof Scene == 'undefined') throw 'no scene';");
        badFile.write("throw new Error('on purpose');");
        goodFile.close();
        badFile.close();
        QCOMPARE(batch({QStringLiteral("--script"), good}).code, 0);
        QCOMPARE(batch({QStringLiteral("--script"), bad}).code, 5);
        QCOMPARE(batch({QStringLiteral("--script"), file(QStringLiteral("none.rsx"))}).code, 5);
    }
};

RY_TEST(CommandLineTest)
#include "tst_command_line.moc"
