#include "support/RyTest.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyMessageLog.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <limits>

class RyAppSettingsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder;

    QString file() const { return RyAppSettings::settingsPath() + QStringLiteral("/settings.ini"); }
    QByteArray content() const
    {
        QFile f(file());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    void write(const QByteArray &text) const
    {
        QFile f(file());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(text);
    }
    QByteArray probe(const QStringList &words) const
    {
        QProcess process;
        process.start(QStringLiteral(RY_BINARY_DIR "/bin/settings_probe"), QStringList{folder->path()} + words);
        if (!process.waitForFinished() || process.exitCode() != 0)
            return "failed: " + process.readAllStandardError();
        return process.readAllStandardOutput().trimmed();
    }
    static QStringList warnings() { return RyMessageLog::global().warnings(); }

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        RyAppSettings::setSettingsPath(folder->path());
        RyMessageLog::global().clear();
        RyMessageLog::global().setEcho(false);
    }
    void cleanup()
    {
        RyAppSettings::setObserver(nullptr);
        RyAppSettings::setSettingsPath(QString());
        RyMessageLog::global().setEcho(true);
    }

    void typesComeBackInAnotherProcess()
    {
        RyAppSettings settings("Joint Editor Tool");
        settings.setIntValue("five", 5);
        settings.setIntValue("lowest", std::numeric_limits<int>::min());
        settings.setBoolValue("yes", true);
        settings.setBoolValue("no", false);
        settings.setFloatValue("third", 1.0f / 3.0f);
        const QString text = QString::fromUtf8("  a=b; [x] %41 \"q\"\n\t\\ \xC3\xA4\xF0\x9F\x98\x80 ");
        settings.setStringValue("text", text);
        settings.setStringValue("looks like int", "int:7");
        const QByteArray bytes("\0\1\xff\n]", 5);
        settings.setBytesValue("bytes", bytes);

        QVERIFY(content().contains("five=int:5"));
        QVERIFY(content().contains("yes=bool:true"));
        const QString group("Joint Editor Tool");
        QCOMPARE(probe({"get", group, "five", "int", "0"}), QByteArray("5"));
        QCOMPARE(probe({"get", group, "lowest", "int", "0"}), QByteArray("-2147483648"));
        QCOMPARE(probe({"get", group, "yes", "bool", "false"}), QByteArray("true"));
        QCOMPARE(probe({"get", group, "no", "bool", "true"}), QByteArray("false"));
        QCOMPARE(probe({"get", group, "third", "float", "0"}).toFloat(), 1.0f / 3.0f);
        QCOMPARE(probe({"get", group, "text", "string", "-"}), text.toUtf8().toHex());
        QCOMPARE(probe({"get", group, "looks like int", "string", "-"}), QByteArray("int:7").toHex());
        QCOMPARE(probe({"get", group, "bytes", "bytes", "-"}), bytes.toHex());
        // Another type than the written one gives the default.
        QCOMPARE(probe({"get", group, "five", "string", "-"}), QByteArray("-").toHex());
        QCOMPARE(probe({"get", group, "yes", "int", "9"}), QByteArray("9"));
        QCOMPARE(probe({"get", group, "missing", "int", "9"}), QByteArray("9"));
        QVERIFY(warnings().isEmpty());
    }

    void anotherProcessIsSeenAndKept()
    {
        RyAppSettings settings("Here");
        settings.setIntValue("mine", 1);
        QCOMPARE(probe({"set", "There", "theirs", "int", "2"}), QByteArray());
        QCOMPARE(RyAppSettings("There").getIntValue("theirs", 0), 2);
        QCOMPARE(probe({"set", "Here", "mine", "int", "77"}), QByteArray());
        QCOMPARE(settings.getIntValue("mine", 0), 77);
        settings.setIntValue("more", 3);
        QCOMPARE(probe({"get", "There", "theirs", "int", "0"}), QByteArray("2"));
        QCOMPARE(probe({"get", "Here", "mine", "int", "0"}), QByteArray("77"));
        QCOMPARE(probe({"get", "Here", "more", "int", "0"}), QByteArray("3"));
    }

    void groupsAreIsolated()
    {
        RyAppSettings a("A"), b("B"), odd("[x]=%\n");
        a.setIntValue("key", 1);
        b.setIntValue("key", 2);
        odd.setIntValue("[k]=;#% ", 3);
        QCOMPARE(a.getIntValue("key", 0), 1);
        QCOMPARE(b.getIntValue("key", 0), 2);
        QCOMPARE(odd.getIntValue("[k]=;#% ", 0), 3);
        QCOMPARE(probe({"get", "[x]=%\n", "[k]=;#% ", "int", "0"}), QByteArray("3"));
        QCOMPARE(a.keys(), QStringList{"key"});
        a.remove("key");
        QVERIFY(!a.contains("key"));
        QVERIFY(b.contains("key"));
        QCOMPARE(probe({"get", "A", "key", "int", "0"}), QByteArray("0"));
        QCOMPARE(probe({"get", "B", "key", "int", "0"}), QByteArray("2"));
    }

    void boolValues_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<int>("expected"); // -1: the default, with a message
        QTest::newRow("bool true") << QByteArray("bool:true") << 1;
        QTest::newRow("bool false") << QByteArray("bool:false") << 0;
        QTest::newRow("int 1") << QByteArray("int:1") << 1;
        QTest::newRow("int 0") << QByteArray("int:0") << 0;
        QTest::newRow("int 2") << QByteArray("int:2") << -1;
        QTest::newRow("text true") << QByteArray("string:true") << 1;
        QTest::newRow("text 1") << QByteArray("string:1") << 1;
        QTest::newRow("text false") << QByteArray("string:false") << 0;
        QTest::newRow("text 0") << QByteArray("string:0") << 0;
        QTest::newRow("untyped") << QByteArray("true") << 1;
        QTest::newRow("word") << QByteArray("string:maybe") << -1;
        QTest::newRow("float") << QByteArray("float:1") << -1;
        QTest::newRow("broken") << QByteArray("bool:tru") << -1;
        QTest::newRow("empty") << QByteArray("") << -1;
    }
    void boolValues()
    {
        QFETCH(QByteArray, stored);
        QFETCH(int, expected);
        write("[G]\nkey=" + stored + "\n");
        const RyAppSettings settings("G");
        QCOMPARE(settings.getBoolValue("key", true), expected != 0);
        QCOMPARE(settings.getBoolValue("key", false), expected == 1);
        QCOMPARE(warnings().size(), expected < 0 ? 1 : 0);
    }

    void intWrittenBoolRead()
    {
        RyAppSettings settings("Joint Editor Tool");
        settings.setIntValue("AxisHobble", 1);
        QCOMPARE(settings.getBoolValue("AxisHobble", false), true);
        settings.setIntValue("AxisHobble", 0);
        QCOMPARE(settings.getBoolValue("AxisHobble", true), false);
    }

    void listsComeBackWhateverTheyHold()
    {
        RyAppSettings settings("G");
        const QStringList list{"/a", "", "/line\nbreak", "[\"q\", %0a]", QString::fromUtf8(" \xC3\xA4\\ ")};
        settings.setStringListValue("many", list);
        settings.setStringListValue("none", {});
        QCOMPARE(settings.getStringListValue("many"), list);
        QCOMPARE(probe({"get", "G", "many", "list", "-"}), list.join('|').toUtf8().toHex());
        QCOMPARE(settings.getStringListValue("none"), QStringList());
        QCOMPARE(settings.getStringListValue("missing"), QStringList());
        QCOMPARE(warnings(), QStringList());
    }

    void storedLists_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("messages");
        QTest::newRow("list") << QByteArray("list:[\"a\",\"b\"]") << QStringList({"a", "b"}) << 0;
        QTest::newRow("lines of a text") << QByteArray("string:/a%0a/b c%0a") << QStringList({"/a", "/b c"}) << 0;
        QTest::newRow("empty text") << QByteArray("string:") << QStringList() << 0;
        QTest::newRow("untyped") << QByteArray("/a") << QStringList("/a") << 0;
        QTest::newRow("numbers") << QByteArray("list:[1,2]") << QStringList() << 1;
        QTest::newRow("of another type") << QByteArray("float:[\"a\"]") << QStringList() << 1;
        QTest::newRow("no list") << QByteArray("list:{\"a\":1}") << QStringList() << 1;
        QTest::newRow("cut off") << QByteArray("list:[\"a\",") << QStringList() << 1;
        QTest::newRow("int") << QByteArray("int:7") << QStringList() << 1;
    }
    void storedLists()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QStringList, expected);
        QFETCH(int, messages);
        write("[G]\nkey=" + stored + "\n");
        QCOMPARE(RyAppSettings("G").getStringListValue("key"), expected);
        QCOMPARE(warnings().size(), messages);
    }

    void nonsenseIsReportedOnceAndSurvives()
    {
        const QByteArray rubbish =
            "; a comment\n[Joint Editor Tool]\nsize=int:many\nno entry here\nraw\xff\xfe=\x01\n\n"
            "kept=int:4\n[Other]\nx=future:1\n";
        write(rubbish);
        RyAppSettings settings("Joint Editor Tool");
        for (int i = 0; i < 3; ++i)
            QCOMPARE(settings.getIntValue("size", 12), 12);
        QCOMPARE(settings.getIntValue("kept", 0), 4);
        const QStringList about = warnings().filter("\"size\"");
        QCOMPARE(about.size(), 1);
        QVERIFY(about[0].contains(file()));
        QVERIFY(about[0].contains("\"Joint Editor Tool\""));
        QVERIFY(about[0].contains("many"));
        QCOMPARE(warnings().filter("no entry here").size(), 1);

        settings.setIntValue("kept", 5);
        QByteArray expected = rubbish;
        expected.replace("kept=int:4", "kept=int:5");
        QCOMPARE(content(), expected);
        settings.setIntValue("new", 1);
        expected.replace("kept=int:5\n", "kept=int:5\nnew=int:1\n");
        QCOMPARE(content(), expected);
        QCOMPARE(RyAppSettings("Other").getStringValue("x", QString()), QString("future:1"));
    }

    void randomBytesNeverLoseAWrite()
    {
        std::srand(ryTestSeed());
        for (int i = 0; i < 60; ++i) {
            QByteArray noise(std::rand() % 300, 0);
            static const char likely[] = "[]=\n\n\r:%;int bool true 12\xff\x80";
            for (char &c : noise)
                c = std::rand() % 4 ? likely[size_t(std::rand()) % (sizeof likely - 1)] : char(std::rand());
            init();
            write(noise);
            RyAppSettings settings("Group");
            settings.setIntValue("key", i);
            QVERIFY(content().startsWith(noise.isEmpty() || noise.endsWith('\n') ? noise : noise + '\n'));
            settings.setStringValue("text", QString::number(i));
            QCOMPARE(settings.getIntValue("key", -1), i);
            RyAppSettings::setSettingsPath(folder->path() + "/elsewhere");
            QCOMPARE(settings.getIntValue("key", -1), -1);
            RyAppSettings::setSettingsPath(folder->path()); // reads the file anew
            QCOMPARE(settings.getIntValue("key", -1), i);
            QCOMPARE(settings.getStringValue("text", QString()), QString::number(i));
        }
    }

    void unwritableFolderKeepsValuesInMemory()
    {
        QFile blocker(folder->path() + "/file");
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        RyAppSettings::setSettingsPath(folder->path() + "/file/below");
        RyAppSettings settings("G");
        settings.setIntValue("a", 1);
        settings.setBoolValue("b", true);
        QCOMPARE(settings.getIntValue("a", 0), 1);
        QCOMPARE(settings.getBoolValue("b", false), true);
        QCOMPARE(warnings().size(), 1);
        QVERIFY(warnings()[0].contains(folder->path() + "/file/below/settings.ini"));
        // When the folder comes to exist, nothing is lost.
        blocker.remove();
        settings.setIntValue("c", 3);
        const QByteArray written = content();
        QVERIFY(written.contains("a=int:1\n") && written.contains("b=bool:true\n") && written.contains("c=int:3\n"));
    }

    void unreadableFileIsNotOverwritten()
    {
        QVERIFY(QDir().mkpath(file()));
        RyAppSettings settings("G");
        settings.setIntValue("a", 1);
        QCOMPARE(settings.getIntValue("a", 0), 1);
        QVERIFY(QFileInfo(file()).isDir());
        QVERIFY(!warnings().isEmpty());
    }

    void pathFromEnvironment()
    {
        RyAppSettings::setSettingsPath(QString());
        const QByteArray before = qgetenv("RYHOST_SETTINGS_DIR");
        qputenv("RYHOST_SETTINGS_DIR", (folder->path() + "/deep/er").toLocal8Bit());
        QCOMPARE(RyAppSettings::settingsPath(), folder->path() + "/deep/er");
        RyAppSettings("G").setIntValue("a", 1);
        QVERIFY(QFile::exists(folder->path() + "/deep/er/settings.ini"));
        qputenv("RYHOST_SETTINGS_DIR", before);
        QVERIFY(!RyAppSettings::settingsPath().startsWith(folder->path()));
    }

    void whatIsThereIsNotWrittenAgain()
    {
        RyAppSettings settings(QStringLiteral("Test"));
        settings.setIntValue(QStringLiteral("number"), 1);
        // A time stamp of the past shows every write.
        QFile stored(file());
        QVERIFY(stored.open(QIODevice::ReadWrite));
        const QDateTime past = QDateTime::fromSecsSinceEpoch(1000000000);
        QVERIFY(stored.setFileTime(past, QFileDevice::FileModificationTime));
        stored.close();
        settings.setIntValue(QStringLiteral("number"), 1);
        QCOMPARE(QFileInfo(file()).lastModified(), past);
        settings.setStringValue(QStringLiteral("number"), QStringLiteral("1"));
        QVERIFY(QFileInfo(file()).lastModified() > past);
        QCOMPARE(settings.getStringValue(QStringLiteral("number"), QString()), QStringLiteral("1"));
    }

    void observerSeesEveryAccess()
    {
        static QStringList seen;
        seen.clear();
        RyAppSettings::setObserver([](const QString &group, const QString &key, const char *access, const char *type) {
            seen.append(QStringList{group, key, access, type}.join('/'));
        });
        RyAppSettings settings("G");
        settings.setIntValue("i", 1);
        settings.getBoolValue("i", true);
        settings.setFloatValue("f", 1);
        settings.getStringValue("s", QString());
        settings.getBytesValue("b");
        settings.getStringListValue("l");
        RyAppSettings::setObserver(nullptr);
        settings.getIntValue("i", 1);
        QCOMPARE(seen, QStringList({"G/i/set/int", "G/i/get/bool", "G/f/set/float", "G/s/get/string", "G/b/get/bytes",
                                    "G/l/get/list"}));
    }
};

RY_TEST(RyAppSettingsTest)
#include "tst_RyAppSettings.moc"
