#include "RyPaneScene.h"

#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

#include <QCheckBox>
#include <QSignalSpy>

/// The pages' switches of the tool show what it does, whoever set it.
class RyToolSwitchesTest : public QObject
{
    Q_OBJECT

    static QCheckBox *push(const RyPaneScene &scene)
    {
        return scene.find<QCheckBox>("JointParamGeneralPushNeighborCbx");
    }
    static QCheckBox *restrict(const RyPaneScene &scene)
    {
        return scene.find<QCheckBox>("JointParamMatricesRestrictRotationsCbx");
    }

private slots:
    void followScripts()
    {
        RyPaneScene scene;
        QVERIFY(scene.choose(scene.doll.lHand, "jointy"));
        QVERIFY(push(scene)->isChecked());
        QVERIFY(!restrict(scene)->isChecked());
        QSignalSpy pushToggles(push(scene), &QCheckBox::toggled);
        QSignalSpy restrictToggles(restrict(scene), &QCheckBox::toggled);
        for (const bool on : {false, true, true, false}) {
            scene.tool->setPushNeighborAngles(on);
            scene.tool->setRestrictRotationAxes(on);
            QCOMPARE(push(scene)->isChecked(), on);
            QCOMPARE(restrict(scene)->isChecked(), on);
        }
        QCOMPARE(pushToggles.count() + restrictToggles.count(), 0);
    }

    /// A field that waits for the other axis to be 0 is let go, by a script as by the mouse.
    void lettingGoFrees()
    {
        RyPaneScene scene;
        RyLegacyJointParam *param = scene.choose(scene.doll.lHand, "jointy");
        scene.tool->setRestrictRotationAxes(true);
        param->getDynamicSphere()->getXRotControl()->setValue(12.5f);
        const RyFloatPropertyWgt *other = scene.field("JointParamMatricesMatrixRotationYWgt");
        QVERIFY(!other->isEnabledTo(other->parentWidget()));
        scene.tool->setRestrictRotationAxes(false);
        QVERIFY(other->isEnabledTo(other->parentWidget()));
    }

    /// The ring that is held says why it does not turn, or that it does.
    void textOfAHeldRing()
    {
        RyPaneScene scene;
        QVERIFY(scene.choose(scene.doll.lHand, "jointy"));
        scene.press(HandleId::StaticRingY, {400, 300});
        const QString turning = scene.tool->getStatusText();
        QSignalSpy texts(scene.tool, &RyViewTool::statusTextChanged);
        scene.tool->setRestrictRotationAxes(true);
        QCOMPARE(texts.count(), 1);
        QVERIFY(scene.tool->getStatusText() != turning);
        scene.tool->setRestrictRotationAxes(true);
        QCOMPARE(texts.count(), 1);
        scene.tool->setRestrictRotationAxes(false);
        QCOMPARE(texts.count(), 2);
        QCOMPARE(scene.tool->getStatusText(), turning);
    }

    void savedAtTheStart()
    {
        for (const bool saved : {true, false}) {
            RyParametricToolScene before;
            before.tool->setRestrictRotationAxes(saved);
            const auto second = std::make_unique<RyJointEditorTool>();
            const auto *box = second->frame()->findChild<QCheckBox *>("JointParamMatricesRestrictRotationsCbx");
            QCOMPARE(box->isChecked(), saved);
        }
    }
};

RY_TEST(RyToolSwitchesTest)

#include "tst_toolSwitches.moc"
