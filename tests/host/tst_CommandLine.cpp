#include "support/RyTest.h"

#include "ryhost/CommandLine.h"

class CommandLineTest : public QObject
{
    Q_OBJECT
private slots:
    void filesOpenAWindow()
    {
        const CommandLine line = CommandLine::parse({"a.glb", "b.obj"});
        QCOMPARE(line.mode, CommandLine::Window);
        QCOMPARE(line.files, QStringList({"a.glb", "b.obj"}));
        QCOMPARE(CommandLine::parse({}).mode, CommandLine::Window);
        QCOMPARE(CommandLine::parse({"--", "-odd.glb"}).files, QStringList({"-odd.glb"}));
    }
    void optionsThatAreNoneAreRefused()
    {
        const CommandLine line = CommandLine::parse({"a.glb", "--frobnicate"});
        QCOMPARE(line.mode, CommandLine::Wrong);
        QVERIFY(line.error.contains("--frobnicate"));
        const CommandLine verb = CommandLine::parse({"--select", "hip", "x.glb"});
        QCOMPARE(verb.mode, CommandLine::Wrong);
        QVERIFY2(verb.error.contains("--batch FILE --select"), qPrintable(verb.error));
        QVERIFY(CommandLine::parse({"--set", "a=b"}).error.contains("--batch"));
    }
    void batchKeepsItsArguments()
    {
        const CommandLine line = CommandLine::parse({"--batch", "a.glb", "--undo"});
        QCOMPARE(line.mode, CommandLine::Batch);
        QCOMPARE(line.batchArguments, QStringList({"--batch", "a.glb", "--undo"}));
        QVERIFY(!line.isVerbose);
        const CommandLine verbose = CommandLine::parse({"--verbose", "--batch", "a.glb", "--undo"});
        QVERIFY(verbose.isVerbose);
        QCOMPARE(verbose.batchArguments, line.batchArguments);
        QVERIFY(CommandLine::parse({"--verbose", "a.glb"}).error.contains("--batch"));
    }
    void helpFitsOnAPage()
    {
        QCOMPARE(CommandLine::parse({"--help"}).mode, CommandLine::Help);
        const QStringList lines = CommandLine::helpText().split('\n');
        QVERIFY(lines.size() <= 40);
        int examples = 0;
        for (const QString &line : lines) {
            QVERIFY2(line.size() <= 120, qPrintable(line));
            examples += line.startsWith("  ryhost ");
        }
        QVERIFY2(examples >= 3 && examples <= 6, qPrintable(QString::number(examples)));
    }
};

RY_TEST(CommandLineTest)
#include "tst_CommandLine.moc"
