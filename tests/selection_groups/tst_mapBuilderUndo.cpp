#include "RyGroupedFigure.h"
#include "RySelectionState.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/base/RyTClassFactory.h"
#include "rycore/script/RyScriptEngine.h"

#include <QCoreApplication>
#include <QPointer>

/// The builder opens no hold; within one of somebody else, such as a script, all that it does is one step.
class MapBuilderUndoTest : public QObject
{
    Q_OBJECT

    /// Bones of which one cannot be selected, groups of which one has a pair.
    static void fill(const RyGroupedFigure &scene, bool withMap)
    {
        scene.bindColumns(scene.leg, {0, 1, 2, 3}, 1000);
        scene.bindColumns(scene.arm, {4}, 5);
        scene.bindColumns(scene.hand, {4, 5, 6}, 30000);
        scene.hand->setSelectable(false);
        if (withMap)
            scene.addPair("lower", scene.root);
    }

    struct Scripting
    {
        Scripting() : factory(&RyBindingToSelectionMapBuilder::staticMetaObject, RyGuid())
        {
            RyMessageLog::global().setEcho(false);
            factory.setScriptOwnership(QScriptEngine::AutoOwnership);
            engine = std::make_unique<RyScriptEngine>();
            engine->registerFactories({&factory});
            engine->setGlobalScene(ryScene());
        }
        ~Scripting() { RyMessageLog::global().setEcho(true); }
        /// The text of what a program gives, or of its error.
        QString run(const char *program) const
        {
            return engine->evaluate(QString::fromUtf8(program), QStringLiteral("test")).toString();
        }

        RyTClassFactory<RyBindingToSelectionMapBuilder> factory;
        std::unique_ptr<RyScriptEngine> engine;
    };

private slots:
    void oneStepInAHold_data()
    {
        QTest::addColumn<bool>("regroup");
        QTest::addColumn<bool>("maintain");
        QTest::addColumn<bool>("withMap");
        for (int i = 0; i < 8; ++i)
            QTest::newRow(qPrintable(QString::number(i))) << bool(i & 1) << bool(i & 2) << bool(i & 4);
    }

    void oneStepInAHold()
    {
        QFETCH(bool, regroup);
        QFETCH(bool, maintain);
        QFETCH(bool, withMap);
        RyGroupedFigure scene;
        fill(scene, withMap);
        const RySelectionState before(scene.figure);
        checkUndoInHold([&] {
            RyBindingToSelectionMapBuilder builder;
            builder.setAllowRegrouping(regroup);
            builder.setMaintainExistingSelectionMappings(maintain);
            QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
        });
        QCOMPARE(ryUndoStack()->count(), 1);
        const RySelectionState after(scene.figure);
        ryUndoStack()->undo();
        QCOMPARE(RySelectionState(scene.figure).difference(before), QString());
        ryUndoStack()->redo();
        QCOMPARE(RySelectionState(scene.figure).difference(after), QString());
    }

    void noStepOfItsOwn()
    {
        RyGroupedFigure scene;
        fill(scene, true);
        RyBindingToSelectionMapBuilder builder;
        QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
        QCOMPARE(scene.pairs(), QStringList({"lower root", "leg leg", "arm arm"}));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void scriptsMakeItByName()
    {
        RyGroupedFigure scene;
        fill(scene, false);
        const Scripting script;
        QCOMPARE(script.run("var builder = new RyBindingToSelectionMapBuilder();"
                            "[builder.allowRegrouping, builder.maintainExistingSelectionMappings,"
                            " builder.respectBoneSelectable, builder.getLastError() === ''].join()"),
                 QStringLiteral("true,true,true,true"));
        QCOMPARE(script.run("builder.allowRegrouping = false; builder.respectBoneSelectable = false;"
                            "[builder.allowRegrouping, builder.respectBoneSelectable].join()"),
                 QStringLiteral("false,false"));
        QCOMPARE(script.run("var figure = Scene.find('figure'), code = builder.buildSelectionMap(figure);"
                            "[typeof code, code, builder.getLastError() === ''].join()"),
                 QStringLiteral("number,0,true"));
        QCOMPARE(scene.pairs(), QStringList({"upper leg", "lower hand"}));
        QCOMPARE(script.run("figure.getFaceGroup(Scene.find('hand'))"), QStringLiteral("lower"));
    }

    void scriptsHearOfRefusals()
    {
        RyGroupedFigure scene;
        const Scripting script;
        QCOMPARE(script.run("var builder = new RyBindingToSelectionMapBuilder();"
                            "[builder.buildSelectionMap(Scene.find('figure')), builder.getLastError()].join()"),
                 QStringLiteral("98,Figure is not bound to any bones."));
        for (const char *nobody : {"null", "Scene.find('arm')", "figure.getMesh()"}) {
            const QByteArray program = QByteArray("var figure = Scene.find('figure');"
                                                  "[builder.buildSelectionMap(") +
                                       nobody + "), builder.getLastError()].join()";
            QCOMPARE(script.run(program.constData()), QStringLiteral("96,Figure has no skinbinding."));
        }
    }

    void aStepOfAScript()
    {
        RyGroupedFigure scene;
        fill(scene, true);
        const Scripting script;
        const QString before = scene.dump();
        script.run("Undo.step('Build Map', function() {"
                   "    new RyBindingToSelectionMapBuilder().buildSelectionMap(Scene.find('figure'));"
                   "});");
        const QString after = scene.dump();
        QVERIFY(after != before);
        QCOMPARE(scene.pairs(), QStringList({"lower root", "leg leg", "arm arm"}));
        QCOMPARE(script.run("Undo.captions().join()"), QStringLiteral("Build Map"));
        script.run("Undo.undo()");
        QCOMPARE(scene.dump(), before);
        script.run("Undo.redo()");
        QCOMPARE(scene.dump(), after);
        script.run("Undo.undo();"
                   "Undo.step('Fails', function() {"
                   "    new RyBindingToSelectionMapBuilder().buildSelectionMap(Scene.find('figure'));"
                   "    throw new Error('not like this');"
                   "});");
        QCOMPARE(scene.dump(), before);
    }

    /// It belongs to nobody but the script.
    void theEngineDeletesIt()
    {
        RyGroupedFigure scene;
        fill(scene, true);
        Scripting script;
        QPointer<QObject> builder =
            script.engine->evaluate(QStringLiteral("builder = new RyBindingToSelectionMapBuilder()")).toQObject();
        QVERIFY(builder && !builder->parent());
        QCOMPARE(script.run("builder.buildSelectionMap(Scene.find('figure'))"), QStringLiteral("0"));
        script.engine.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!builder);
        QVERIFY(scene.figure->getSelectionMap());
    }
};

RY_TEST(MapBuilderUndoTest)

#include "tst_mapBuilderUndo.moc"
