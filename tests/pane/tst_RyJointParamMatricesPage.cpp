#include "RyPaneScene.h"
#include "slotsOf.h"

#include "pluginsource/RyJointTools/pane/RyJointParamMatricesPage.h"
#include "support/RyNear.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTabWidget>

namespace {

struct Field
{
    const char *name;
    const char *label;
    const char *group;
    const char *suffix;
    const char *caption;
};

constexpr char position[] = "JointParamMatricesMatrixPositionGrpBox";
constexpr char rotation[] = "JointParamMatricesMatrixRotationGrpBox";
constexpr char scaling[] = "JointParamMatricesMatrixScaleGrpBox";

/// In the order of the controls of a sphere.
const Field fields[] = {
    {"JointParamMatricesMatrixPositionX", "X Axis", position, " cm", "Change Position X Axis"},
    {"JointParamMatricesMatrixPositionY", "Y Axis", position, " cm", "Change Position Y Axis"},
    {"JointParamMatricesMatrixPositionZ", "Z Axis", position, " cm", "Change Position Z Axis"},
    {"JointParamMatricesMatrixRotationX", "X Axis", rotation, "\u00b0", "Change Rotation X Axis"},
    {"JointParamMatricesMatrixRotationY", "Y Axis", rotation, "\u00b0", "Change Rotation Y Axis"},
    {"JointParamMatricesMatrixRotationZ", "Z Axis", rotation, "\u00b0", "Change Rotation Z Axis"},
    {"JointParamMatricesMatrixScaleGen", "General", scaling, "", "Change Scale General"},
    {"JointParamMatricesMatrixScaleX", "X Axis", scaling, "", "Change Scale X Axis"},
    {"JointParamMatricesMatrixScaleY", "Y Axis", scaling, "", "Change Scale Y Axis"},
    {"JointParamMatricesMatrixScaleZ", "Z Axis", scaling, "", "Change Scale Z Axis"},
};

constexpr char rotationX[] = "JointParamMatricesMatrixRotationXWgt";
constexpr char rotationY[] = "JointParamMatricesMatrixRotationYWgt";
constexpr char enable[] = "JointParamMatricesEnableSphereMatricesGrpBox";

/// The page on the screen, with spheres that differ in every control.
struct Scene : RyPaneScene
{
    Scene()
    {
        find<QTabWidget>("JointEditorParamTabWgt")->setCurrentIndex(1);
        float value = 1.0f;
        for (const RyBone *bone : {doll.lArm, doll.lHand}) {
            for (RyLegacyJointParam *param : doll.joint(bone)->params()) {
                param->setApplyMatrices(true);
                for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
                    for (RyFloatProperty *control : sphere->controls())
                        control->setValue(value += 0.125f);
                }
            }
        }
        ryUndoStack()->clearAll();
    }
    RyJointParamMatricesPage *page() const { return find<RyJointParamMatricesPage>("JointEditorParamMatricesPage"); }
    QPushButton *reset() const { return find<QPushButton>("JointParamMatricesResetBtn"); }
    QComboBox *sphere() const { return find<QComboBox>("JointParamMatricesActiveSphereCmb"); }
};

} // namespace

/// Numbers of the two spheres of a joint parameter.
class RyJointParamMatricesPageTest : public QObject
{
    Q_OBJECT

    static QByteArray fieldName(const Field &row) { return QByteArray(row.name) + "Wgt"; }

private slots:
    void slotsInOrder()
    {
        QCOMPARE(slotsOf<RyJointParamMatricesPage>(),
                 QStringList({"updateParam(RyLegacyJointParam*)", "refresh()", "setActiveSphere(int)",
                              "applyMatrices(bool)", "makeMatricesDefault()", "restrictRotationAxesToggled(bool)",
                              "validateRotationAxisRestriction()"}));
    }

    void names()
    {
        Scene scene;
        QVERIFY(scene.find<QScrollArea>("JointParamMatricesScrollArea")->widgetResizable());
        QCOMPARE(scene.find<QScrollArea>("JointParamMatricesScrollArea")->widget(),
                 scene.find<QWidget>("JointParamMatricesScrollContentsWgt"));
        const auto *all = scene.find<QGroupBox>(enable);
        QCOMPARE(all->title(), QStringLiteral("Enable Sphere Matrices"));
        QVERIFY(all->isCheckable());
        const auto *inner = scene.find<QGroupBox>("JointParamMatricesMatricesGrpBox");
        QVERIFY(inner->title().isEmpty() && all->isAncestorOf(inner));
        QCOMPARE(scene.reset()->text(), QStringLiteral("Reset Matrices"));
        QVERIFY(inner->isAncestorOf(scene.reset()));
        QCOMPARE(scene.find<QLabel>("JointParamMatricesActiveSphereLbl")->text(), QStringLiteral("Active Sphere :"));
        QStringList items;
        for (int i = 0; i < scene.sphere()->count(); ++i)
            items.append(scene.sphere()->itemText(i));
        QCOMPARE(items, QStringList({"Static", "Dynamic", "Both (From Static Values)", "Both (From Dynamic Values)"}));
        QCOMPARE(scene.sphere()->currentIndex(), 1);
        const std::pair<const char *, const char *> titles[] = {
            {position, "Position :"}, {rotation, "Rotation :"}, {scaling, "Scale :"}};
        for (const auto &[name, title] : titles)
            QCOMPARE(scene.find<QGroupBox>(name)->title(), QString::fromLatin1(title));
        for (const Field &row : fields) {
            const auto *label = scene.find<QLabel>(QByteArray(row.name) + "Lbl");
            QVERIFY2(label, row.name);
            QCOMPARE(label->text(), QString::fromLatin1(row.label));
            QVERIFY2(scene.find<QGroupBox>(row.group)->isAncestorOf(scene.field(fieldName(row))), row.name);
            QCOMPARE(QLatin1String("Change ") + scene.field(fieldName(row))->numberField()->accessibleName(),
                     QString::fromLatin1(row.caption));
        }
        const auto *restrict = scene.find<QCheckBox>("JointParamMatricesRestrictRotationsCbx");
        QCOMPARE(restrict->text(), QStringLiteral("Restrict Axes (Compatibility Mode)"));
        QVERIFY(scene.find<QGroupBox>(rotation)->isAncestorOf(restrict) && !restrict->isChecked());
    }

    void everyFieldInEveryMode_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("mode");
        for (int row = 0; row < 10; ++row) {
            for (int mode = 0; mode < 4; ++mode)
                QTest::addRow("%s %d", fields[row].name, mode) << row << mode;
        }
    }
    void everyFieldInEveryMode()
    {
        QFETCH(int, row);
        QFETCH(int, mode);
        Scene scene;
        // The scale's partner stands on the driver's joint, those of the others on the parent's.
        const RyLegacyJointParam *param = scene.choose(scene.doll.lHand, row % 2 ? "lArm_smoox" : "jointz");
        QVERIFY(param);
        RyPaneScene::pickItem(*scene.sphere(), scene.sphere()->itemText(mode));
        const Field &field = fields[row];
        const RyLegacyJointParam *partner = param->findPartner();
        RyFloatProperty *dynamic = param->getDynamicSphere()->controls()[size_t(row)];
        RyFloatProperty *fixed = param->getStaticSphere()->controls()[size_t(row)];
        RyFloatProperty *partnersDynamic = partner->getDynamicSphere()->controls()[size_t(row)];
        RyFloatProperty *partnersStatic = partner->getStaticSphere()->controls()[size_t(row)];
        QCOMPARE(scene.field(fieldName(field))->getFirstProperty(), mode == 0 || mode == 2 ? fixed : dynamic);
        const QString before = RyPaneScene::wholeDump();
        scene.type(fieldName(field), QStringLiteral("3/4"));
        const bool writesDynamic = mode != 0;
        const bool writesStatic = mode != 1;
        QCOMPARE(dynamic->getValue() == 0.75f, writesDynamic);
        QCOMPARE(partnersDynamic->getValue() == 0.75f, writesDynamic);
        QCOMPARE(fixed->getValue() == 0.75f, writesStatic);
        QCOMPARE(partnersStatic->getValue() == 0.75f, writesStatic);
        const QString text = QStringLiteral("0.75") + QString::fromUtf8(field.suffix);
        QCOMPARE(scene.shown(fieldName(field)), text);
        RyPaneScene::checkStep(before, QString::fromLatin1(field.caption));
        QCOMPARE(scene.shown(fieldName(field)), text);
    }

    void activeSphereOutOfRange()
    {
        Scene scene;
        const RyLegacyJointParam *param = scene.choose(scene.doll.lHand, "jointz");
        RyFloatProperty *fixed = param->getStaticSphere()->getXTransControl();
        QVERIFY(QMetaObject::invokeMethod(scene.page(), "setActiveSphere", Q_ARG(int, 0)));
        QCOMPARE(scene.sphere()->currentIndex(), 0);
        RyFloatPropertyWgt *field = scene.field("JointParamMatricesMatrixPositionXWgt");
        for (const int selection : {7, -1, 4}) {
            field->clearProperties();
            QVERIFY(QMetaObject::invokeMethod(scene.page(), "setActiveSphere", Q_ARG(int, selection)));
            QCOMPARE(field->getFirstProperty(), fixed);
            QCOMPARE(scene.sphere()->currentIndex(), 0);
        }
    }

    void switches()
    {
        Scene scene;
        auto *box = scene.find<QGroupBox>(enable);
        for (const char *name : {"jointz", "twistx", "lArm_smoox"}) {
            const RyLegacyJointParam *param = scene.choose(scene.doll.lHand, name);
            QVERIFY(box->isChecked());
            QVERIFY(scene.field(rotationX)->isEnabled());
            const QString before = RyPaneScene::wholeDump();
            ryUndoStack()->clearAll();
            RyPaneScene::click(*box);
            QVERIFY(!param->applyMatrices() && !param->findPartner()->applyMatrices());
            QVERIFY(!scene.field(rotationX)->isEnabled());
            RyPaneScene::checkStep(before, QStringLiteral("Apply Matrices"));
            param->getDynamicSphere()->getXRotControl()->setValue(5.0f);
            QVERIFY(!scene.field(rotationX)->isEnabled());
            ryUndoStack()->undo();
            QVERIFY(box->isChecked());
            QVERIFY(scene.field(rotationX)->isEnabled());
        }
        scene.tool->setParam(nullptr);
        ryUndoStack()->clearAll();
        for (const bool on : {true, false})
            QVERIFY(QMetaObject::invokeMethod(scene.page(), "applyMatrices", Q_ARG(bool, on)));
        QCOMPARE(ryUndoStack()->count(), 0);
        for (const Field &row : fields)
            QVERIFY(!scene.field(fieldName(row))->getFirstProperty());
    }

    void reset()
    {
        Scene scene;
        for (const char *name : {"jointz", "twistx", "lArm_smoox"}) {
            RyLegacyJointParam *param = scene.choose(scene.doll.lHand, name);
            const QString before = RyPaneScene::wholeDump();
            ryUndoStack()->clearAll();
            QSignalSpy announced(scene.doll.binding, &RyLegacyBinding::bindingChanged);
            QTest::mouseClick(scene.reset(), Qt::LeftButton);
            QCOMPARE(announced.count(), 1);
            const RyBox3 box = scene.doll.lHand->getOrientedBoundingBox().box;
            QVERIFY(box.getSize() > 5.0f);
            for (const RyLegacyJointParam *each : {static_cast<const RyLegacyJointParam *>(param),
                                                   static_cast<const RyLegacyJointParam *>(param->findPartner())}) {
                const RyVec3 center = each->getDynamicMatrix().multVecMatrix({});
                QVERIFY(each->getDriver() != scene.doll.lHand || ryIsNear(center, box.getCenter()));
                QVERIFY(ryIsNear(each->getDynamicMatrix().multVecMatrix({1, 0, 0}),
                                 center + RyVec3(0.5f * box.getSize(), 0, 0)));
                QVERIFY(ryIsNear(each->getStaticMatrix().multVecMatrix({0, -1, 0}),
                                 center - RyVec3(0, 0.75f * box.getSize(), 0)));
            }
            QCOMPARE(scene.field("JointParamMatricesMatrixPositionXWgt")->numberField()->value(),
                     double(param->getDynamicSphere()->getXTransControl()->getValue()));
            RyPaneScene::checkStep(before, QStringLiteral("Set Matrices to Default"));
        }
    }

    void resetWithoutNodeOrParameter()
    {
        Scene scene;
        scene.select(scene.doll.lHand);
        const QString before = RyPaneScene::wholeDump();
        QVERIFY(QMetaObject::invokeMethod(scene.page(), "makeMatricesDefault"));
        QVERIFY(scene.choose(scene.doll.lHand, "jointz"));
        scene.tool->deactivated();
        QVERIFY(!scene.tool->currentNode());
        RyLegacyJointParam *param = scene.doll.param(scene.doll.lHand, "jointz");
        QVERIFY(QMetaObject::invokeMethod(scene.page(), "updateParam", Q_ARG(RyLegacyJointParam *, param)));
        QVERIFY(QMetaObject::invokeMethod(scene.page(), "makeMatricesDefault"));
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(RyPaneScene::wholeDump(), before);
    }

    void restrictedAxes()
    {
        Scene scene;
        const RyLegacyJointParam *param = scene.choose(scene.doll.lHand, "jointz");
        const RyLegacyJointSphere *sphere = param->getDynamicSphere();
        sphere->getXRotControl()->setValue(0.0f);
        sphere->getYRotControl()->setValue(0.0f);
        scene.type(rotationX, "10");
        QVERIFY(scene.field(rotationY)->isEnabled());
        scene.type(rotationX, "0");

        auto *restrict = scene.find<QCheckBox>("JointParamMatricesRestrictRotationsCbx");
        QTest::mouseClick(restrict, Qt::LeftButton, Qt::NoModifier, QPoint(8, restrict->height() / 2));
        QVERIFY(scene.tool->display().restrictRotationAxes);
        QVERIFY(scene.field(rotationX)->isEnabled() && scene.field(rotationY)->isEnabled());
        scene.type(rotationX, "10");
        QVERIFY(scene.field(rotationX)->isEnabled() && !scene.field(rotationY)->isEnabled());
        // Other controls have no say.
        sphere->getZRotControl()->setValue(0.0f);
        QVERIFY(QMetaObject::invokeMethod(scene.page(), "validateRotationAxisRestriction"));
        QVERIFY(!scene.field(rotationY)->isEnabled());
        scene.type(rotationX, "0");
        QVERIFY(scene.field(rotationY)->isEnabled());
        scene.type(rotationY, "-20");
        QVERIFY(!scene.field(rotationX)->isEnabled() && scene.field(rotationY)->isEnabled());

        QTest::mouseClick(restrict, Qt::LeftButton, Qt::NoModifier, QPoint(8, restrict->height() / 2));
        QVERIFY(!scene.tool->display().restrictRotationAxes);
        QVERIFY(scene.field(rotationX)->isEnabled() && scene.field(rotationY)->isEnabled());
        // What is so when they are restricted stays until a turn changes, and nobody else asks.
        sphere->getXRotControl()->setValue(5.0f);
        scene.tool->setRestrictRotationAxes(true);
        QVERIFY(QMetaObject::invokeMethod(scene.page(), "validateRotationAxisRestriction"));
        QVERIFY(scene.field(rotationX)->isEnabled() && scene.field(rotationY)->isEnabled());
        // Fields of nothing stay disabled.
        scene.tool->setParam(nullptr);
        QVERIFY(QMetaObject::invokeMethod(scene.page(), "restrictRotationAxesToggled", Q_ARG(bool, false)));
        QVERIFY(!scene.field(rotationX)->isEnabled());
    }

    void restrictedAxesOfAnotherParameter()
    {
        Scene scene;
        const RyLegacyJointParam *first = scene.choose(scene.doll.lHand, "jointz");
        const RyLegacyJointParam *second = scene.choose(scene.doll.lHand, "jointy");
        scene.tool->setRestrictRotationAxes(true);
        first->getDynamicSphere()->getYRotControl()->setValue(0.0f);
        first->getDynamicSphere()->getXRotControl()->setValue(33.0f);
        QVERIFY(scene.field(rotationY)->isEnabled());
        second->getDynamicSphere()->getXRotControl()->setValue(44.0f);
        QVERIFY(!scene.field(rotationY)->isEnabled());
    }
};

RY_TEST(RyJointParamMatricesPageTest)

#include "tst_RyJointParamMatricesPage.moc"
