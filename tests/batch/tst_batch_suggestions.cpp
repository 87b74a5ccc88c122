#include "support/RyTest.h"

#include "RyBatchRun.h"

#include <QFile>
#include <QRegularExpression>

/// What is offered instead of a word that nothing is called, and what the program says of itself.
class BatchSuggestionsTest : public QObject
{
    Q_OBJECT

private:
    using Result = RyBatchRun::Result;
    RyBatchRun m_run;

private slots:
    void initTestCase()
    {
        // Bones as other programs name them.
        const QString script = m_run.write("name.rsx", "Scene.find('lForearm').setName('lowerarm.l');"
                                                       "Scene.find('rForearm').setName('lowerarm.r');");
        QCOMPARE(m_run.batch({"--script", script, "--save", m_run.file("named.glb")}).code, 0);
    }

    void nodes_data()
    {
        QTest::addColumn<QStringList>("verbs");
        QTest::addColumn<QByteArray>("says");
        const auto row = [](const char *name, QStringList verbs, const char *says) {
            QTest::newRow(name) << verbs << QByteArray(says);
        };
        row("part", {"--select", "lowerarm"},
            "--select: no node is called \"lowerarm\" (did you mean \"lowerarm.l\" or \"lowerarm.r\"?)");
        row("one of several", {"--select", "hip,lowerarm"}, "\"lowerarm.l\"");
        row("mistyped", {"--select", "lowrearm.l"}, "(did you mean \"lowerarm.l\"");
        row("capitals", {"--select", "LOWERARM.R"}, "(did you mean \"lowerarm.r\"");
        row("more than it is called", {"--select", "rig:chest"}, "(did you mean \"chest\"?)");
        row("value", {"--property", "lowerarm:endX=3"}, "\"lowerarm.l\"");
        row("pose", {"--pose", "lowerarm:xrot=3"}, "\"lowerarm.l\"");
        row("path", {"--select", "lShldr/lowerarm"}, "lShldr/lowerarm.l\" or \"");
    }

    void nodes()
    {
        QFETCH(QStringList, verbs);
        QFETCH(QByteArray, says);
        const Result result = m_run.run(QStringList{"--batch", m_run.file("named.glb")} + verbs);
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
        // A path that is offered is one that is taken.
        const QString offered = QRegularExpression("did you mean \"([^\"]+)\"").match(result.err).captured(1);
        QCOMPARE(m_run.run({"--batch", m_run.file("named.glb"), "--select", offered}).code, 0);
    }

    void nothingIsOfferedForWhatIsLikeNothing()
    {
        const Result result = m_run.batch({"--select", "quux"});
        QCOMPARE(result.err.trimmed(), QByteArray("--select: no node is called \"quux\""));
    }

    void verbs_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("says");
        const auto row = [](const char *name, QStringList arguments, const char *says) {
            QTest::newRow(name) << arguments << QByteArray(says);
        };
        row("verb", {"--batch", "a.glb", "--svae", "x"}, "--svae is no verb of a batch run (did you mean --save");
        row("option", {"--batch", "a.glb", "--run", "X", "--anwser", "A=B"}, "did you mean --answer?");
        row("of the run", {"--batch", "a.glb", "--jsn"}, "did you mean --json?");
        row("hyphen", {"--batch", "a.glb", "--saveto", "x"}, "did you mean --save-to");
        row("batch itself", {"--bacth", "a.glb"}, "there is no option --bacth (did you mean --batch?)");
        row("version", {"--verison"}, "did you mean --version?");
        row("without a batch", {"--save-to", "out", "a.glb"}, "ryhost --batch FILE --save-to ...");
        row("like nothing", {"--batch", "a.glb", "--frobnicate"}, "--frobnicate is no verb of a batch run; --help");
    }

    void verbs()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, says);
        const Result result = m_run.run(arguments);
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(says), result.err.constData());
    }

    void versionIsThatOfTheProject()
    {
        QFile project(RY_SOURCE_DIR "/CMakeLists.txt");
        QVERIFY(project.open(QIODevice::ReadOnly));
        const QString version =
            QRegularExpression("project\\(\\w+ VERSION ([0-9.]+)").match(project.readAll()).captured(1);
        QVERIFY(!version.isEmpty());
        const Result result = m_run.run({"--version"});
        QCOMPARE(result.code, 0);
        QCOMPARE(QString(result.out), QString("ryhost %1\n").arg(version));
        QCOMPARE(result.err, QByteArray());
    }
};

RY_TEST(BatchSuggestionsTest)
#include "tst_batch_suggestions.moc"
