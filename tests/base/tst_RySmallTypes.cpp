#include "support/RyTest.h"

#include "rycore/base/RyError.h"
#include "rycore/base/RyGuid.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/base/RyPlugin.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/base/RyVersion.h"

class RySmallTypesTest : public QObject
{
    Q_OBJECT

private slots:
    void guid()
    {
        const QString text("F84E42A0-A219-4CA5-9863-850B40E01DA8");
        const RyGuid guid = RyGuid::fromString(text);
        QVERIFY(!guid.isNull());
        QCOMPARE(guid.toString(), text);
        QVERIFY(RyGuid::fromString(text.toLower()) == guid);
        QVERIFY(RyGuid::fromString("{f84e42a0-A219-4ca5-9863-850B40E01DA8}") == guid);
        QVERIFY(!(RyGuid::fromString("F84E42A0-A219-4CA5-9863-850B40E01DA9") == guid));
        QVERIFY(!(RyGuid::fromString("E84E42A0-A219-4CA5-9863-850B40E01DA8") == guid));
        for (const char *bad : {"", "x", "{F84E42A0-A219-4CA5-9863-850B40E01DA8",
                                "F84E42A0-A219-4CA5-9863-850B40E01DA8}", "F84E42A0A219-4CA5-9863-850B40E01DA8-",
                                "F84E42A0-A219-4CA5-9863-850B40E01DAG", "F84E42A0-A219-4CA5-9863-850B40E01DA88",
                                "F84E42A0-A219-4CA5-9863-850B40E01DA", "F84E42A0-A219-4CA5-9863_850B40E01DA8", "{}"})
            QVERIFY2(RyGuid::fromString(bad).isNull(), bad);
        QVERIFY(RyGuid().isNull());
        QCOMPARE(RyGuid().toString(), QString("00000000-0000-0000-0000-000000000000"));
    }

    void version()
    {
        const RyVersion version(4, 22, 0, 7);
        QCOMPARE(version.getMajor(), quint16(4));
        QCOMPARE(version.getMinor(), quint16(22));
        QCOMPARE(version.getRevision(), quint16(0));
        QCOMPARE(version.getBuild(), quint16(7));
        QCOMPARE(version.toString(), QString("4.22.0.7"));
        QVERIFY(version == RyVersion(4, 22, 0, 7));
        QVERIFY(version != RyVersion(4, 22, 0, 8));
        QVERIFY(RyVersion(4, 22, 0, 6) < version);
        QVERIFY(RyVersion(4, 21, 65535, 65535) < version);
        QVERIFY(RyVersion(5, 0, 0, 0) > version);
    }

    void error()
    {
        QVERIFY(RyError().isSuccess());
        QCOMPARE(int(RyError(RyError::UnusableObject)), 96);
        QCOMPARE(RyError(RyError::NotBound).code(), 98);
        const QVariant variant = QVariant::fromValue(RyError(96));
        QCOMPARE(variant.value<RyError>().code(), 96);
    }

    void plugin()
    {
        RyPlugin plugin("Name", "", "", 0, 0, 0, 0);
        plugin.setAuthor("Author");
        plugin.setDescription("Text");
        plugin.setVersion(1, 15, 0, 15);
        plugin.addClassFactory(nullptr);
        QCOMPARE(plugin.getName(), QString("Name"));
        QCOMPARE(plugin.getAuthor(), QString("Author"));
        QCOMPARE(plugin.getDescription(), QString("Text"));
        QVERIFY(plugin.getVersion() == RyVersion(1, 15, 0, 15));
        QVERIFY(plugin.getClassFactories().isEmpty());
    }

    void log()
    {
        RyMessageLog log;
        log.setEcho(false);
        QSignalSpy spy(&log, &RyMessageLog::messageAdded);
        log.info("one");
        log.warning("two");
        QCOMPARE(log.messages(), QStringList({"one", "two"}));
        QCOMPARE(log.warnings(), QStringList({"two"}));
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy[0][1].toBool(), false);
        QCOMPARE(spy[1][0].toString(), QString("two"));
        QCOMPARE(spy[1][1].toBool(), true);
        log.clear();
        QVERIFY(log.messages().isEmpty() && log.warnings().isEmpty());
    }

    void developerMessage_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("expected");
        QTest::newRow("cut") << "/home/me/src/pluginsource/RyJointTools/a.cpp"
                             << "\\src\\pluginsource\\RyJointTools\\a.cpp";
        QTest::newRow("last") << "/usr/src/x/src/b.cpp"
                              << "\\src\\b.cpp";
        QTest::newRow("none") << "/home/me/b.cpp"
                              << "\\home\\me\\b.cpp";
        QTest::newRow("backslashes") << "C:\\work\\src\\b.cpp"
                                     << "\\src\\b.cpp";
        QTest::newRow("relative") << "src/b.cpp"
                                  << "src\\b.cpp";
        QTest::newRow("at the start") << "/src/b.cpp"
                                      << "\\src\\b.cpp";
    }
    void developerMessage()
    {
        QFETCH(QString, file);
        QFETCH(QString, expected);
        QCOMPARE(ryDeveloperMessage(file.toUtf8().constData(), 123, "100%1 wrong %2"),
                 expected + "(123): 100%1 wrong %2");
    }

    void countedObjects()
    {
        class Counted : public QObject, public RyRefCountedItem
        {};
        QPointer<Counted> item = new Counted;
        QCOMPARE(item->refCount(), 0);
        {
            const RyRef<Counted> first(item);
            RyRef<Counted> second(first);
            QCOMPARE(item->refCount(), 2);
            RyRef<Counted> third(std::move(second));
            QCOMPARE(item->refCount(), 2);
            third = nullptr;
            QCOMPARE(item->refCount(), 1);
        }
        QVERIFY(!item);
    }
};

RY_TEST(RySmallTypesTest)
#include "tst_RySmallTypes.moc"
