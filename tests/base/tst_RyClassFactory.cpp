#include "support/RyTest.h"

#include "rycore/base/RyError.h"
#include "rycore/base/RyTClassFactory.h"

#include <QPointer>
#include <QScriptEngine>

class ScriptedThing : public QObject
{
    Q_OBJECT
public:
    enum Mode { Calm, Wild = 7 };
    Q_ENUM(Mode)
    enum Axis { AxisX, AxisY };
    Q_ENUM(Axis)
    static inline QPointer<ScriptedThing> latest;
    ScriptedThing() { latest = this; }
    Q_INVOKABLE RyError check(bool ok) const { return ok ? RyError() : RyError(RyError::UnusableObject); }
    Q_INVOKABLE int code(const RyError &error) const { return error.code(); }
    Q_INVOKABLE bool isThing(ScriptedThing *thing) const { return thing; }
};

class OtherThing : public QObject
{
    Q_OBJECT
};
Q_DECLARE_METATYPE(ScriptedThing *)
Q_DECLARE_METATYPE(OtherThing *)

class RyClassFactoryTest : public QObject
{
    Q_OBJECT

    RyTClassFactory<ScriptedThing> things{&ScriptedThing::staticMetaObject,
                                          RyGuid::fromString("F84E42A0-A219-4CA5-9863-850B40E01DA8")};
    RyTClassFactory<OtherThing> others{&OtherThing::staticMetaObject, RyGuid()};

private slots:
    void describesItsClass()
    {
        QCOMPARE(things.className(), QString("ScriptedThing"));
        QCOMPARE(things.metaObject(), &ScriptedThing::staticMetaObject);
        QCOMPARE(things.getGuid().toString(), QString("F84E42A0-A219-4CA5-9863-850B40E01DA8"));
        QCOMPARE(things.getScriptOwnership(), int(QScriptEngine::QtOwnership));
    }

    void everyEntryMakesAnObject()
    {
        RyClassFactory &factory = things;
        const std::unique_ptr<QObject> plain(factory.createInstance());
        const std::unique_ptr<QObject> byContext(factory.createInstance(static_cast<QScriptContext *>(nullptr)));
        const std::unique_ptr<QObject> byList(factory.createInstance(QVariantList{1, 2}));
        for (QObject *object : {plain.get(), byContext.get(), byList.get()})
            QVERIFY(qobject_cast<ScriptedThing *>(object));
        QVERIFY(plain.get() != byContext.get() && plain.get() != byList.get());
    }

    void scriptsConstructByName()
    {
        things.setScriptOwnership(QScriptEngine::QtOwnership);
        QPointer<QObject> object;
        {
            QScriptEngine engine;
            things.registerClass(&engine);
            const QScriptValue value = engine.evaluate("new ScriptedThing");
            object = value.toQObject();
            QVERIFY(qobject_cast<ScriptedThing *>(object));
            QCOMPARE(object->parent(), QCoreApplication::instance());
            QCOMPARE(value.property("Wild").toInt32(), 7);
            QCOMPARE(value.property("AxisY").toInt32(), 1);
            QCOMPARE(engine.evaluate("ScriptedThing.Wild").toInt32(), 7);
            QCOMPARE(engine.evaluate("var t = new ScriptedThing; t.Wild = 1; t.Wild").toInt32(), 7);
        }
        QVERIFY2(object, "what Qt owns outlives the engine");
        qDeleteAll(QCoreApplication::instance()->findChildren<ScriptedThing *>());
    }

    void automaticOwnershipGoesWithTheEngine()
    {
        things.setScriptOwnership(QScriptEngine::AutoOwnership);
        {
            QScriptEngine engine;
            things.registerClass(&engine);
            engine.evaluate("var t = new ScriptedThing");
            QVERIFY(ScriptedThing::latest);
        }
        QVERIFY(!ScriptedThing::latest);
        things.setScriptOwnership(QScriptEngine::QtOwnership);
    }

    void errorsAreNumbersInScripts()
    {
        QScriptEngine engine;
        things.registerClass(&engine);
        ScriptedThing thing;
        engine.globalObject().setProperty("thing", engine.newQObject(&thing));
        QCOMPARE(engine.evaluate("thing.check(true) === 0").toBool(), true);
        QCOMPARE(engine.evaluate("thing.check(false) === 96").toBool(), true);
        QCOMPARE(engine.evaluate("thing.code(98)").toInt32(), 98);
    }

    void anotherClassConvertsToNull()
    {
        QScriptEngine engine;
        things.registerClass(&engine);
        others.registerClass(&engine);
        ScriptedThing thing;
        OtherThing other;
        const QScriptValue thingValue = engine.toScriptValue(&thing);
        QCOMPARE(qscriptvalue_cast<ScriptedThing *>(thingValue), &thing);
        QCOMPARE(thingValue.property("Wild").toInt32(), 7);
        QVERIFY(!qscriptvalue_cast<OtherThing *>(thingValue));
        QVERIFY(!qscriptvalue_cast<ScriptedThing *>(engine.newQObject(&other)));
        QVERIFY(!qscriptvalue_cast<ScriptedThing *>(QScriptValue(5)));
    }
};

RY_TEST(RyClassFactoryTest)
#include "tst_RyClassFactory.moc"
