#include "support/RyTest.h"

#include "rycore/base/RyClassFactory.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/base/RyPlugin.h"
#include "rycore/base/RyPluginManager.h"

#include <QFile>
#include <QScriptEngine>
#include <QTemporaryDir>
#include <algorithm>

class RyPluginManagerTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder;

    static QString built(const QString &name) { return QStringLiteral(RY_BINARY_DIR "/testplugins/%1.so").arg(name); }
    QString copy(const QString &name, const QString &as)
    {
        const QString target = folder->filePath(as);
        return QFile::copy(built(name), target) ? target : QString();
    }

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        qunsetenv("RY_FAKE_ASKED");
        qunsetenv("RY_FAKE_UNLOADED");
        RyMessageLog::global().clear();
        RyMessageLog::global().setEcho(false);
    }
    void cleanup() { RyMessageLog::global().setEcho(true); }

    void loadsAPlugin()
    {
        auto manager = std::make_unique<RyPluginManager>();
        QString error("-");
        QVERIFY(manager->loadLibrary(copy("good", "good.so"), &error));
        QVERIFY(error.isEmpty());
        QVERIFY(manager->errors().isEmpty());
        QCOMPARE(manager->plugins().size(), size_t(1));
        QCOMPARE(manager->plugins()[0]->getName(), QString("good"));
        QVERIFY(manager->plugins()[0]->getVersion() == RyVersion(1, 2, 3, 4));
        QCOMPARE(manager->factories().size(), size_t(2));
        QCOMPARE(manager->factories()[0]->className(), QString("FakeTool"));
        QCOMPARE(manager->findFactory("FakeHelper"), manager->factories()[1]);
        QVERIFY(!manager->findFactory("Missing"));
        QVERIFY(!manager->createInstance("Missing"));
        {
            const std::unique_ptr<QObject> tool(manager->createInstance("FakeTool"));
            QVERIFY(tool);
            QCOMPARE(tool->metaObject()->className(), "FakeTool");
            QScriptEngine engine;
            for (RyClassFactory *factory : manager->factories())
                factory->registerClass(&engine);
            QCOMPARE(engine.evaluate("new FakeTool().answer() + FakeTool.Busy").toInt32(), 47);
            engine.evaluate("var helper = new FakeHelper");
        }
        const auto isThere = [](const QObject *child) { return child->inherits("FakeTool"); };
        const QObjectList before = QCoreApplication::instance()->children();
        QCOMPARE(std::count_if(before.begin(), before.end(), isThere), 1);
        QObject other(QCoreApplication::instance());
        manager->deleteOwnedObjects();
        const QObjectList after = QCoreApplication::instance()->children();
        QCOMPARE(std::count_if(after.begin(), after.end(), isThere), 0);
        QVERIFY2(after.contains(&other), "what is of no registered class stays");
        QVERIFY(qgetenv("RY_FAKE_UNLOADED").isEmpty());
        manager.reset();
        QCOMPARE(qgetenv("RY_FAKE_UNLOADED"), QByteArray("good"));
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("reason");
        QTest::newRow("other_version") << "4.22.0.8";
        QTest::newRow("no_version") << "getSDKVersion";
        QTest::newRow("no_definition") << "getPluginDefinition";
        QTest::newRow("null_definition") << "no plug-in definition";
        QTest::newRow("unresolved") << "definedNowhere";
    }
    void refusals()
    {
        QFETCH(QString, reason);
        const QString path = copy(QTest::currentDataTag(), "refused.so");
        QVERIFY(!path.isEmpty());
        RyPluginManager manager;
        QString error;
        QVERIFY(!manager.loadLibrary(path, &error));
        QVERIFY2(error.contains("refused.so"), qPrintable(error));
        QVERIFY2(error.contains(reason), qPrintable(error));
        QCOMPARE(manager.errors(), QStringList{error});
        QCOMPARE(RyMessageLog::global().warnings(), QStringList{error});
        QVERIFY(manager.plugins().empty());
        QVERIFY(manager.factories().empty());
        if (QByteArray(QTest::currentDataTag()) != "null_definition")
            QVERIFY2(qgetenv("RY_FAKE_ASKED").isEmpty(), "the definition is not asked for before the version fits");
        if (QByteArray(QTest::currentDataTag()) != "unresolved")
            QCOMPARE(qgetenv("RY_FAKE_UNLOADED"), QByteArray(QTest::currentDataTag()));
    }

    void whatIsNoLibrary()
    {
        QFile text(folder->filePath("text.so"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("just a text that calls itself a library");
        text.close();
        RyPluginManager manager;
        QVERIFY(!manager.loadLibrary(text.fileName()));
        QVERIFY(!manager.loadLibrary(folder->filePath("missing.so")));
        QCOMPARE(manager.errors().size(), 2);
        QVERIFY(manager.errors()[0].contains("text.so"));
        QVERIFY(manager.errors()[1].contains("missing.so"));
    }

    void theSameFileTwice()
    {
        const QString path = copy("good", "good.so");
        QVERIFY(QFile::link(path, folder->filePath("link.so")));
        RyPluginManager manager;
        QVERIFY(manager.loadLibrary(path));
        QString error;
        QVERIFY(!manager.loadLibrary(path, &error));
        QVERIFY(error.contains("already"));
        QVERIFY(!manager.loadLibrary(folder->filePath("link.so")));
        QCOMPARE(manager.plugins().size(), size_t(1));
    }

    void foldersInNameOrder()
    {
        copy("good", "b.so");
        copy("other_version", "c.so");
        copy("good", "a.so");
        copy("good", "readme.txt");
        copy("no_version", "D.so");
        RyPluginManager manager;
        QCOMPARE(manager.loadFolder(folder->path()), 2);
        QCOMPARE(manager.plugins().size(), size_t(2));
        QVERIFY(manager.plugins()[0] != manager.plugins()[1]);
        QCOMPARE(manager.errors().size(), 2);
        QVERIFY(manager.errors()[0].contains("D.so"));
        QVERIFY(manager.errors()[1].contains("c.so"));
        // The classes of the first one win.
        QCOMPARE(manager.findFactory("FakeTool"), manager.plugins()[0]->getClassFactories()[0]);
        QCOMPARE(manager.factories().size(), size_t(4));
        QCOMPARE(manager.loadFolder(folder->filePath("missing")), 0);
        QCOMPARE(manager.errors().size(), 3);
        QVERIFY(manager.errors()[2].contains("missing"));
    }
};

RY_TEST(RyPluginManagerTest)
#include "tst_RyPluginManager.moc"
