#include "support/RyTest.h"

#include "rycore/base/RyError.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/base/RyTClassFactory.h"
#include "rycore/script/RyScript.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/script/RyScriptPointer.h"

#include <QFile>
#include <QTemporaryDir>

class FakeNode : public QObject
{
    Q_OBJECT
};

class FakeScene : public QObject
{
    Q_OBJECT
public:
    FakeNode node;
    int removed = 0;
    Q_INVOKABLE QObject *getPrimarySelection() { return &node; }
    Q_INVOKABLE RyError removeNode(FakeNode *which)
    {
        if (which != &node)
            return RyError(RyError::UnusableObject);
        ++removed;
        return RyError();
    }

signals:
    void nodeListChanged();
};

class FakeBuilder : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE RyError build(bool works) { return works ? RyError() : RyError(RyError::NotBound); }
};
Q_DECLARE_METATYPE(FakeNode *)
Q_DECLARE_METATYPE(FakeBuilder *)

class RyScriptEngineTest : public QObject
{
    Q_OBJECT

    QStringList warnings() const { return RyMessageLog::global().warnings(); }
    QString write(const QTemporaryDir &folder, const QString &name, const QByteArray &text) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() ? file.fileName() : QString();
    }

private slots:
    void init()
    {
        RyMessageLog::global().clear();
        RyMessageLog::global().setEcho(false);
    }
    void cleanup() { RyMessageLog::global().setEcho(true); }

    void sceneIsGlobal()
    {
        RyScriptEngine engine;
        ryRegisterScriptPointer<FakeNode>(&engine);
        FakeScene scene;
        engine.setGlobalScene(&scene);
        QCOMPARE(engine.evaluate("Scene.getPrimarySelection()").toQObject(), &scene.node);
        QCOMPARE(engine.evaluate("getPrimarySelection()").toQObject(), &scene.node);
        QVERIFY(engine.evaluate("Scene.removeNode(getPrimarySelection()) === 0").toBool());
        QVERIFY(engine.evaluate("removeNode(getPrimarySelection()) === 0").toBool());
        QCOMPARE(scene.removed, 2);
        QVERIFY(engine.evaluate("removeNode(Scene) === 96").toBool());
        QVERIFY(engine.evaluate("removeNode(null) === 96").toBool());
        engine.evaluate("var heard = 0; Scene.nodeListChanged.connect(function() { ++heard; })");
        emit scene.nodeListChanged();
        QCOMPARE(engine.evaluate("heard").toInt32(), 1);
        QVERIFY(engine.evaluate("Math.sqrt(9) == 3 && parseInt('12') == 12").toBool());
        QVERIFY(warnings().isEmpty());

        engine.setGlobalScene(nullptr);
        QVERIFY(engine.evaluate("typeof Scene == 'undefined' && typeof getPrimarySelection == 'undefined'").toBool());
    }

    void aSceneThatIsGoneIsAnErrorOnly()
    {
        RyScriptEngine engine;
        {
            FakeScene scene;
            engine.setGlobalScene(&scene);
        }
        engine.evaluate("Scene.getPrimarySelection()");
        QVERIFY(engine.hasFailed());
        QCOMPARE(warnings().size(), 1);
    }

    void classesByName()
    {
        RyTClassFactory<FakeBuilder> builders(&FakeBuilder::staticMetaObject, RyGuid());
        builders.setScriptOwnership(QScriptEngine::AutoOwnership);
        RyScriptEngine engine;
        engine.registerFactories({&builders});
        QVERIFY(engine.evaluate("var b = new FakeBuilder; b.build(true) === 0 && b.build(false) === 98").toBool());
        engine.evaluate("new Missing");
        QVERIFY(engine.hasFailed());
    }

    void errorsGoToTheLogAndDoNotStay()
    {
        RyScriptEngine engine;
        const QScriptValue result = engine.evaluate("var a = 1;\nmissing();\n", "some/file.rsx");
        QVERIFY(result.isError());
        QVERIFY(engine.hasFailed());
        QVERIFY(!engine.hasUncaughtException());
        QCOMPARE(warnings().size(), 1);
        QVERIFY2(warnings()[0].startsWith("some/file.rsx(2): "), qPrintable(warnings()[0]));
        QVERIFY(warnings()[0].contains("missing"));
        engine.evaluate("a = ;");
        QVERIFY(engine.hasFailed());
        QCOMPARE(warnings().size(), 2);
        QCOMPARE(engine.evaluate("a + 1").toInt32(), 2);
        QVERIFY(!engine.hasFailed());
        engine.evaluate("print('one', 2, [3])");
        QCOMPARE(RyMessageLog::global().messages().last(), QString("one 2 3"));
        QCOMPARE(warnings().size(), 2);
    }

    void theLatestEngineIsCurrent()
    {
        QVERIFY(!RyScriptEngine::current());
        {
            RyScriptEngine first;
            QCOMPARE(RyScriptEngine::current(), &first);
            {
                RyScriptEngine second;
                QCOMPARE(RyScriptEngine::current(), &second);
            }
            QCOMPARE(RyScriptEngine::current(), &first);
        }
        QVERIFY(!RyScriptEngine::current());
    }

    void scriptFiles()
    {
        RyScriptEngine engine;
        const QTemporaryDir folder;
        RyScript script("");
        QVERIFY(!script.loadFromFile(folder.filePath("missing.rsx"), true));
        QVERIFY(warnings().isEmpty());
        QVERIFY(!script.loadFromFile(folder.filePath("missing.rsx"), false));
        QVERIFY(!script.loadFromFile(folder.path(), false));
        QCOMPARE(warnings().size(), 2);
        QVERIFY(warnings()[0].contains("missing.rsx"));

        QVERIFY(script.loadFromFile(write(folder, "ok.rsx", "\xEF\xBB\xBFvar text = '\xC3\xA4';"), true));
        QCOMPARE(script.getName(), QString("ok"));
        QVERIFY(script.execute());
        QCOMPARE(engine.evaluate("text").toString(), QString::fromUtf8("\xC3\xA4"));

        RyScript failing("");
        const QString path = write(folder, "bad.rsx", "text = 'changed';\n\nthrow new Error('no');");
        QVERIFY(failing.loadFromFile(path, true));
        QVERIFY(!failing.execute());
        QCOMPARE(warnings().size(), 3);
        QCOMPARE(warnings()[2], path + "(3): Error: no");
        QCOMPARE(engine.evaluate("text").toString(), QString("changed"));
    }

    // A script that starts another one, as an action called from a script does.
    void scriptsInScripts()
    {
        RyScriptEngine engine;
        engine.globalObject().setProperty("runOther", engine.newFunction([](QScriptContext *context, QScriptEngine *) {
            RyScript script("inner");
            script.setSource(context->argument(0).toString());
            return QScriptValue(script.execute());
        }));
        QVERIFY(engine.evaluate("runOther('var inner = 5') && inner == 5").toBool());
        QVERIFY(engine.evaluate("var before = 1; var ok = runOther('missing()'); before = 2; !ok").toBool());
        QVERIFY(!engine.hasFailed());
        QCOMPARE(engine.evaluate("before").toInt32(), 2);
        QCOMPARE(warnings().size(), 1);
    }

    void withoutAnEngine()
    {
        RyScript script("lonely");
        script.setSource("1");
        QVERIFY(!script.execute());
        QCOMPARE(warnings().size(), 1);
        QVERIFY(warnings()[0].contains("lonely"));
    }
};

RY_TEST(RyScriptEngineTest)
#include "tst_RyScriptEngine.moc"
