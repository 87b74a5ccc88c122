#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/createSiblingBone.h"
#include "pluginsource/RyJointTools/operations/splitBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJENodeActions.h"
#include "rycore/app/RyBindToNearestBonesAction.h"

#include <QStatusBar>

using ActionMaker = RyAction *(*)();
Q_DECLARE_METATYPE(ActionMaker)

/// What needs a weight-mapped figure leaves parametric ones alone, and says so.
class RyParametricRefusalsTest : public QObject
{
    Q_OBJECT

private slots:
    void refuse_data()
    {
        QTest::addColumn<ActionMaker>("make");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("message");
        const QString noSkin = QStringLiteral("Nothing done: select a bone of a figure that has a skin.");
        QTest::newRow("reparent") << +[]() -> RyAction * {
            return new RyJEReparentBoneAction;
        } << "Selection Error|A bone from a weight mapped figure must be selected to continue."
          << "";
        QTest::newRow("split") << +[]() -> RyAction * { return new RyJESplitBoneAction; } << "" << noSkin;
        QTest::newRow("sibling") << +[]() -> RyAction * { return new RyJECreateSiblingBoneAction; } << "" << noSkin;
        QTest::newRow("duplicate") << +[]() -> RyAction * { return new RyJEDuplicateBonesAction; }
                                                   << "Selection Error|A bone must be selected to continue."
                                                   << "";
        QTest::newRow("unused") << +[]() -> RyAction * {
            return new RyJEDeleteUnusedBonesAction;
        } << "Selection Error|Please select a Korvex<sup>TM</sup> technology figure."
          << "";
        QTest::newRow("bind") << +[]() -> RyAction * {
            return new RyBindToNearestBonesAction;
        } << "Selection Error|A weight mapped figure with a mesh and bones must be selected to continue."
          << "";
    }
    void refuse()
    {
        QFETCH(ActionMaker, make);
        QFETCH(QString, box);
        QFETCH(QString, message);
        RyParametricToolScene scene;
        ryScene()->setSelection({scene.doll.rTip, scene.doll.lHand});
        const QString before = RyParametricToolScene::wholeDump();
        const std::unique_ptr<RyAction> action(make());
        RyMessageBoxes boxes;
        QVERIFY(QMetaObject::invokeMethod(action.get(), "executeAction"));
        QCOMPARE(boxes.said.size(), box.isEmpty() ? 0 : 1);
        if (!box.isEmpty())
            QVERIFY2(boxes.said[0].startsWith(box), qPrintable(boxes.said[0]));
        QCOMPARE(scene.window->statusBar()->currentMessage(), message);
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void enabling()
    {
        RyParametricToolScene scene;
        ryScene()->setSelection({scene.doll.lHand});
        QVERIFY(!RyJECreateSiblingBoneAction().isEnabled());
        QVERIFY(!RyJEDeleteUnusedBonesAction().isEnabled());
        QVERIFY(RyJEDeleteBoneAction().isEnabled());
    }

    void operations()
    {
        RyParametricToolScene scene;
        const QString before = RyParametricToolScene::wholeDump();
        QVERIFY(!splitBone(scene.doll.lHand));
        QVERIFY(!createSiblingBone(scene.doll.lHand));
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
    }

    void movedByAScriptNothingBreaks()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        const QString before = ryBindingText(*doll.binding);
        doll.rArm->addNodeChild(doll.lHand);
        QCOMPARE(ryBindingText(*doll.binding), before);
        // The copy on the old parent's joint is nobody's partner any more.
        QVERIFY(!doll.param(doll.lHand, "jointy")->findPartner());
        doll.figure->addNodeChild(doll.lTip);
        QVERIFY(!doll.param(doll.lTip, "jointy")->findPartner());
    }
};

RY_TEST(RyParametricRefusalsTest)
#include "tst_parametricRefusals.moc"
