#include "RyPaneScene.h"
#include "slotsOf.h"

#include "pluginsource/RyJointTools/pane/RyJointParamGeneralPage.h"
#include "pluginsource/RyJointTools/pane/RyJointParamMatricesPage.h"
#include "pluginsource/RyJointTools/pane/RyJointParamPanel.h"
#include "rycore/ui/RyExtendedTabWidget.h"
#include "rycore/ui/RyScrubLabel.h"

#include <QCheckBox>
#include <QLayout>
#include <QScrollArea>
#include <QStatusBar>

namespace {

struct Field
{
    const char *name;
    const char *label;
    const char *group;
    const char *param;
    size_t own, partners; // controllers
    const char *suffix;
    const char *caption;
};

constexpr char angles[] = "JointParamGeneralEnableAnglesGrpBox";
constexpr char bulges[] = "JointParamGeneralEnableBulgesGrpBox";
constexpr char twist[] = "JointParamGeneralEnableTwistGrpBox";
constexpr char scale[] = "JointParamGeneralEnableScaleGrpBox";

const Field fields[] = {
    {"JointParamGeneralStaticA", "Static A", angles, "jointy", 0, 0, "\u00b0", "Change Static A"},
    {"JointParamGeneralDynamicB", "Dynamic B", angles, "jointy", 1, 1, "\u00b0", "Change Dynamic B"},
    {"JointParamGeneralDynamicC", "Dynamic C", angles, "jointy", 2, 2, "\u00b0", "Change Dynamic C"},
    {"JointParamGeneralStaticD", "Static D", angles, "jointy", 3, 3, "\u00b0", "Change Static D"},
    {"JointParamGeneralPosLeftBulge", "Positive A/B", bulges, "jointz", 4, 4, "", "Change Bulge Positive A/B"},
    {"JointParamGeneralPosRightBulge", "Positive D/C", bulges, "jointz", 5, 5, "", "Change Bulge Positive D/C"},
    {"JointParamGeneralNegLeftBulge", "Negative A/B", bulges, "jointz", 6, 6, "", "Change Bulge Negative A/B"},
    {"JointParamGeneralNegRightBulge", "Negative D/C", bulges, "jointz", 7, 7, "", "Change Bulge Negative D/C"},
    {"JointParamGeneralTwistStart", "Start", twist, "twistx", 0, 0, " cm", "Change Twist Start"},
    {"JointParamGeneralTwistEnd", "End", twist, "twistx", 1, 1, " cm", "Change Twist End"},
    {"JointParamGeneralSmoothLoEnd", "Low End", scale, "lArm_smoox", 3, 0, " cm", "Change Zone Low End"},
    {"JointParamGeneralSmoothLoStart", "Low Start", scale, "lArm_smoox", 2, 1, " cm", "Change Zone Low Start"},
    {"JointParamGeneralSmoothHiStart", "High Start", scale, "lArm_smoox", 0, 3, " cm", "Change Zone High Start"},
    {"JointParamGeneralSmoothHiEnd", "High End", scale, "lArm_smoox", 1, 2, " cm", "Change Zone High End"},
};

struct Group
{
    const char *name;
    const char *title;
    const char *param;
    RyLegacyJointParam::Flag flag;
    const char *caption;
    const char *slot;
};

const Group groups[] = {
    {angles, "Enable Angles :", "jointz", RyLegacyJointParam::ApplyAngles, "Apply Angles", "applyAngles"},
    {bulges, "Enable Bulges :", "jointz", RyLegacyJointParam::ApplyBulges, "Apply Bulges", "applyBulges"},
    {twist, "Enable Twist :", "twistx", RyLegacyJointParam::ApplyBlend, "Apply Twist", "applyTwist"},
    {scale, "Enable Smooth Zone :", "lArm_smoox", RyLegacyJointParam::ApplyZones, "Apply Scale Zones", "applyScale"},
};

} // namespace

/// Numbers and switches of a joint parameter, without its spheres.
class RyJointParamGeneralPageTest : public QObject
{
    Q_OBJECT

    static QByteArray fieldName(const Field &row) { return QByteArray(row.name) + "Wgt"; }

    /// All groups on, both sides, and both zones there: what is typed goes everywhere.
    static void switchOn(RyPaneScene &scene)
    {
        for (const RyBone *bone : {scene.doll.lArm, scene.doll.lHand}) {
            for (RyLegacyJointParam *param : scene.doll.joint(bone)->params()) {
                if (auto *smooth = qobject_cast<RyLegacySmoothScale *>(param)) {
                    smooth->setFlags(smooth->flags() | RyLegacyJointParam::ApplyZones | RyLegacyJointParam::HighSide |
                                     RyLegacyJointParam::LowSide);
                } else if (auto *bend = qobject_cast<RyLegacyBendParam *>(param)) {
                    bend->setApplyBulges(true);
                    bend->setApplyAngles(true);
                } else {
                    param->setFlags(param->flags() | RyLegacyJointParam::ApplyBlend);
                }
            }
        }
    }

    static QStringList visibleGroups(const RyPaneScene &scene)
    {
        QStringList list;
        for (const Group &group : groups) {
            if (scene.find<QGroupBox>(group.name)->isVisible())
                list.append(QString::fromLatin1(group.title));
        }
        return list;
    }

private slots:
    void slotsInOrder()
    {
        QCOMPARE(slotsOf<RyJointParamGeneralPage>(),
                 QStringList({"updateParam(RyLegacyJointParam*)", "refresh()", "applyAngles(bool)", "applyBulges(bool)",
                              "applyTwist(bool)", "applyScale(bool)"}));
    }

    void names()
    {
        RyPaneScene scene;
        QVERIFY(scene.find<RyJointParamPanel>("JointEditorParamPanel"));
        auto *tabs = scene.find<RyExtendedTabWidget>("JointEditorParamTabWgt");
        QVERIFY(tabs);
        QCOMPARE(tabs->count(), 2);
        QCOMPARE(tabs->tabText(0), QStringLiteral("General"));
        QCOMPARE(tabs->tabText(1), QStringLiteral("Matrices"));
        QCOMPARE(tabs->widget(0),
                 static_cast<QWidget *>(scene.find<RyJointParamGeneralPage>("JointEditorParamGeneralPage")));
        QCOMPARE(tabs->widget(1),
                 static_cast<QWidget *>(scene.find<RyJointParamMatricesPage>("JointEditorParamMatricesPage")));
        QVERIFY(scene.find<QScrollArea>("JointParamGeneralScrollArea")->widgetResizable());
        const auto *contents = scene.find<QWidget>("JointParamGeneralScrollContentsWgt");
        QCOMPARE(scene.find<QScrollArea>("JointParamGeneralScrollArea")->widget(), contents);
        QCOMPARE(contents->layout()->count(), 5);
        QVERIFY(contents->layout()->itemAt(4)->spacerItem());
        for (int i = 0; i < 4; ++i) {
            const auto *box = scene.find<QGroupBox>(groups[i].name);
            QCOMPARE(contents->layout()->itemAt(i)->widget(), box);
            QCOMPARE(box->title(), QString::fromLatin1(groups[i].title));
            QVERIFY(box->isCheckable());
        }
        for (const Field &row : fields) {
            const auto *label = scene.find<QLabel>(QByteArray(row.name) + "Lbl");
            QVERIFY2(label, row.name);
            QCOMPARE(label->text(), QString::fromLatin1(row.label));
            const RyFloatPropertyWgt *field = scene.field(fieldName(row));
            QVERIFY2(field, row.name);
            QVERIFY(scene.find<QGroupBox>(row.group)->isAncestorOf(field));
            QCOMPARE(field->label(), label);
            QVERIFY(field->numberField()->accessibleName().endsWith(QString::fromLatin1(row.label)));
        }
        const auto *push = scene.find<QCheckBox>("JointParamGeneralPushNeighborCbx");
        QCOMPARE(push->text(), QStringLiteral("Push Neighboring Angles"));
        QVERIFY(scene.find<QGroupBox>(angles)->isAncestorOf(push));
    }

    void everyFieldIsOneStepOnBothSides_data()
    {
        QTest::addColumn<int>("row");
        for (int i = 0; i < 14; ++i)
            QTest::newRow(fields[i].name) << i;
    }
    void everyFieldIsOneStepOnBothSides()
    {
        QFETCH(int, row);
        const Field &field = fields[row];
        RyPaneScene scene;
        switchOn(scene);
        scene.tool->setPushNeighborAngles(false);
        RyLegacyJointParam *param = scene.choose(scene.doll.lHand, field.param);
        QVERIFY(param);
        RyFloatProperty *own = param->controllers()[field.own];
        RyFloatProperty *other = param->findPartner()->controllers()[field.partners];
        QCOMPARE(scene.field(fieldName(field))->getFirstProperty(), own);
        own->setDefaultValue(own->getDefaultValue() + 1.0f);
        const QString before = RyPaneScene::wholeDump();
        scene.type(fieldName(field), QStringLiteral("1.5*2"));
        QCOMPARE(own->getValue(), 3.0f);
        QCOMPARE(other->getValue(), 3.0f);
        const QString text = QStringLiteral("3") + QString::fromUtf8(field.suffix);
        QCOMPARE(scene.shown(fieldName(field)), text);
        RyPaneScene::checkStep(before, QString::fromLatin1(field.caption));
        QCOMPARE(scene.shown(fieldName(field)), text);
        ryUndoStack()->undo();
        QVERIFY(scene.shown(fieldName(field)) != text);
        // By other hands.
        own->setValue(7.25f);
        other->setValue(7.25f);
        QCOMPARE(scene.shown(fieldName(field)), QStringLiteral("7.25") + QString::fromUtf8(field.suffix));
    }

    void groupsOfTheKind()
    {
        RyPaneScene scene;
        QCOMPARE(visibleGroups(scene), QStringList());
        QVERIFY(scene.choose(scene.doll.lHand, "jointy"));
        QCOMPARE(visibleGroups(scene), QStringList({"Enable Angles :", "Enable Bulges :"}));
        QVERIFY(scene.choose(scene.doll.lHand, "twistx"));
        QCOMPARE(visibleGroups(scene), QStringList({"Enable Twist :"}));
        QVERIFY(scene.choose(scene.doll.lHand, "lArm_smoox"));
        QCOMPARE(visibleGroups(scene), QStringList({"Enable Smooth Zone :"}));
        QVERIFY(!scene.field("JointParamGeneralTwistStartWgt")->getFirstProperty());
        scene.tool->setParam(nullptr);
        for (const Group &group : groups)
            QVERIFY(scene.find<QGroupBox>(group.name)->isHidden());
        for (const Field &row : fields)
            QVERIFY(!scene.field(fieldName(row))->getFirstProperty());
    }

    void switches_data()
    {
        QTest::addColumn<int>("row");
        for (int i = 0; i < 4; ++i)
            QTest::newRow(groups[i].title) << i;
    }
    void switches()
    {
        QFETCH(int, row);
        const Group &group = groups[row];
        RyPaneScene scene;
        switchOn(scene);
        const RyLegacyJointParam *param = scene.choose(scene.doll.lHand, group.param);
        const RyLegacyJointParam *partner = param->findPartner();
        auto *box = scene.find<QGroupBox>(group.name);
        const auto enabled = [&] {
            int count = 0;
            for (const Field &field : fields) {
                if (scene.find<QGroupBox>(group.name)->isAncestorOf(scene.field(fieldName(field))))
                    count += scene.field(fieldName(field))->isEnabled();
            }
            return count;
        };
        const int all = row == 2 ? 2 : 4;
        QVERIFY(box->isChecked());
        QCOMPARE(enabled(), all);
        auto *page = scene.find<RyJointParamGeneralPage>("JointEditorParamGeneralPage");
        QVERIFY(QMetaObject::invokeMethod(page, group.slot, Q_ARG(bool, true)));
        QCOMPARE(ryUndoStack()->count(), 0); // it was so
        const QString before = RyPaneScene::wholeDump();
        RyPaneScene::click(*box);
        QVERIFY(!(param->flags() & group.flag) && !(partner->flags() & group.flag));
        QCOMPARE(enabled(), 0);
        RyPaneScene::checkStep(before, QString::fromLatin1(group.caption));
        QVERIFY(!box->isChecked());
        // A value that changes does not switch its field on.
        param->controllers()[0]->setValue(1.0f);
        QCOMPARE(enabled(), 0);
        ryUndoStack()->undo();
        QVERIFY(box->isChecked());
        QCOMPARE(enabled(), all);
        ryUndoStack()->redo();
        RyPaneScene::click(*box);
        QCOMPARE(enabled(), all);
        QVERIFY((param->flags() & group.flag) && (partner->flags() & group.flag));
    }

    void slotsOfOtherKindsDoNothing()
    {
        RyPaneScene scene;
        auto *page = scene.find<RyJointParamGeneralPage>("JointEditorParamGeneralPage");
        for (const char *name : {"jointy", "twistx", "lArm_smoox", ""}) {
            scene.select(scene.doll.lHand);
            scene.tool->setParam(scene.doll.param(scene.doll.lHand, name));
            const QString before = RyPaneScene::wholeDump();
            for (const Group &group : groups) {
                const RyLegacyJointParam *param = scene.doll.param(scene.doll.lHand, group.param);
                if (scene.tool->currentParam() && param->type() == scene.tool->currentParam()->type())
                    continue;
                for (const bool on : {true, false})
                    QVERIFY(QMetaObject::invokeMethod(page, group.slot, Q_ARG(bool, on)));
            }
            QCOMPARE(RyPaneScene::wholeDump(), before);
        }
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void zonesThatAreThere()
    {
        RyPaneScene scene;
        switchOn(scene);
        auto *smooth = qobject_cast<RyLegacySmoothScale *>(scene.choose(scene.doll.lHand, "lArm_smoox"));
        const auto enabled = [&] {
            QString text;
            for (int i = 10; i < 14; ++i)
                text += QString::number(scene.field(fieldName(fields[i]))->isEnabled());
            return text;
        };
        QCOMPARE(enabled(), QStringLiteral("1111"));
        smooth->setHiValid(false);
        QCOMPARE(enabled(), QStringLiteral("1100"));
        smooth->setLoValid(false);
        smooth->setHiValid(true);
        QCOMPARE(enabled(), QStringLiteral("0011"));
        RyPaneScene::click(*scene.find<QGroupBox>(scale));
        QCOMPARE(enabled(), QStringLiteral("0000"));
        RyPaneScene::click(*scene.find<QGroupBox>(scale));
        QCOMPARE(enabled(), QStringLiteral("0011"));
        QVERIFY(scene.choose(scene.doll.lHand, "twistx"));
        QVERIFY(scene.choose(scene.doll.lHand, "lArm_smoox"));
        QCOMPARE(enabled(), QStringLiteral("0011"));
    }

    void aPartnerOfAnotherKindStays()
    {
        RyPaneScene scene;
        switchOn(scene);
        RyLegacyJoint *above = scene.doll.joint(scene.doll.lArm);
        above->removeJointParam(scene.doll.param(scene.doll.lArm, "lHand_jointy"));
        auto *decoy = new RyLegacyTwistParam("decoy", 1, scene.doll.lHand);
        above->addJointParam(decoy);
        const QString before = ryParamText(*decoy);
        QVERIFY(scene.choose(scene.doll.lHand, "jointy"));
        QCOMPARE(scene.tool->partnerParam(), static_cast<RyLegacyJointParam *>(decoy));
        scene.type("JointParamGeneralStaticAWgt", "77");
        RyPaneScene::click(*scene.find<QGroupBox>(angles));
        RyPaneScene::click(*scene.find<QGroupBox>(bulges));
        QCOMPARE(ryUndoStack()->count(), 3);
        QCOMPARE(ryParamText(*decoy), before);
    }

    void lookingLeavesNothing()
    {
        RyPaneScene scene;
        // The two sides differ, as scripts may leave them.
        for (const char *name : {"jointy", "jointz", "twistx", "lArm_smoox"})
            scene.doll.param(scene.doll.lHand, name)->setFlags(255 & ~RyLegacyJointParam::Flipped);
        const QString before = ryBindingText(*scene.doll.binding);
        QSignalSpy changes(ryUndoStack(), &RyUndoStack::aboutToChange);
        int looked = 0;
        for (RyBone *bone : scene.doll.figure->getAllBones()) {
            scene.select(bone);
            for (RyLegacyJointParam *param : scene.doll.joint(bone)->params()) {
                scene.tool->setParam(param);
                looked += scene.tool->currentParam() == param;
            }
        }
        QVERIFY(looked > 30);
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(ryBindingText(*scene.doll.binding), before);
    }

    void nonsenseIsRefused()
    {
        RyPaneScene scene;
        QVERIFY(scene.choose(scene.doll.lHand, "jointz"));
        const QString before = RyPaneScene::wholeDump();
        const QString shown = scene.shown("JointParamGeneralStaticAWgt");
        scene.type("JointParamGeneralStaticAWgt", "wide");
        QCOMPARE(RyPaneScene::wholeDump(), before);
        QCOMPARE(scene.shown("JointParamGeneralStaticAWgt"), shown);
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(scene.window->statusBar()->currentMessage().startsWith(QStringLiteral("Static A: not taken")));
    }

    void neighborsArePushed()
    {
        RyPaneScene scene;
        auto *bend = qobject_cast<RyLegacyBendParam *>(scene.choose(scene.doll.lHand, "jointy"));
        const auto *partner = qobject_cast<RyLegacyBendParam *>(bend->findPartner());
        const auto setAngles = [&](const RyBendAngles::Values &values) {
            for (const RyLegacyBendParam *each : {static_cast<const RyLegacyBendParam *>(bend), partner}) {
                for (size_t i = 0; i < 4; ++i)
                    each->controllers()[i]->setValue(values[i]);
            }
            scene.tool->setParam(nullptr);
            scene.tool->setParam(bend);
            ryUndoStack()->clearAll();
        };
        setAngles({100, 40, -30, -80});
        auto *push = scene.find<QCheckBox>("JointParamGeneralPushNeighborCbx");
        QVERIFY(push->isChecked());
        const QString before = RyPaneScene::wholeDump();
        scene.type("JointParamGeneralDynamicBWgt", "-50");
        QCOMPARE(bend->angleValues(), RyBendAngles::Values({100, -50, -50, -80}));
        QCOMPARE(partner->angleValues(), bend->angleValues());
        QCOMPARE(scene.shown("JointParamGeneralDynamicCWgt"), QString::fromUtf8("-50\u00b0"));
        RyPaneScene::checkStep(before, QStringLiteral("Change Dynamic B"));
        QCOMPARE(partner->angleValues(), bend->angleValues());

        // Around the turn: the same direction on both sides.
        setAngles({100, 40, -30, -80});
        scene.type("JointParamGeneralStaticAWgt", "200");
        QCOMPARE(bend->angleValues()[0], -160.0f);
        QCOMPARE(partner->angleValues(), bend->angleValues());

        setAngles({100, 40, -30, -80});
        QTest::mouseClick(push, Qt::LeftButton, Qt::NoModifier, QPoint(8, push->height() / 2));
        QVERIFY(!scene.tool->pushNeighborAngles());
        scene.type("JointParamGeneralDynamicBWgt", "-50");
        QCOMPARE(bend->angleValues(), RyBendAngles::Values({100, -50, -30, -80}));
        QCOMPARE(partner->angleValues(), bend->angleValues());
    }
};

RY_TEST(RyJointParamGeneralPageTest)

#include "tst_RyJointParamGeneralPage.moc"
