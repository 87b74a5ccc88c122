#include "support/RyTest.h"

#include "RyFilledAttributesDialog.h"

#include "tool/RyWindowScene.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJENodeActions.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/checkUndo.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QRadioButton>

namespace {

using Dialog = RyFilledAttributesDialog;

std::vector<float> valuesOf(const RyNode *node)
{
    return {node->getOriginXControl()->getValue(), node->getOriginYControl()->getValue(),
            node->getOriginZControl()->getValue(), node->getEndXControl()->getValue(),
            node->getEndYControl()->getValue(),    node->getEndZControl()->getValue(),
            node->getOrientXControl()->getValue(), node->getOrientYControl()->getValue(),
            node->getOrientZControl()->getValue()};
}

} // namespace

/// The dialog that sets rigging values of the selected nodes.
class RyAttributesDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void looks();
    void boxesEnableNumbers();
    void numbersKeepTheirRange();
    void setsEachValue_data();
    void setsEachValue();
    void adjustsEachNode();
    void goesThroughNodesAndRowsInOrder();
    void nothingChecked();
    void nodeWithoutControls();
    void withoutSelection();
    void opensNoHold();
    void actionRunsTheDialog();
};

void RyAttributesDialogTest::looks()
{
    RyWindowScene scene;
    const Dialog dialog;
    QCOMPARE(dialog.objectName(), QStringLiteral("RySelectedNodesAttributesEditDlg"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Joint Attributes"));
    QCOMPARE(dialog.parentWidget(), static_cast<QWidget *>(scene.window.get()));
    const auto *set = dialog.findChild<QRadioButton *>("NodeAttributesSetValueBtn");
    const auto *adjust = dialog.findChild<QRadioButton *>("NodeAttributesAdjustValueBtn");
    QVERIFY(set && adjust);
    QCOMPARE(set->text(), QStringLiteral("Set To Value"));
    QCOMPARE(adjust->text(), QStringLiteral("Adjust By Value"));
    QVERIFY(set->isChecked() && !adjust->isChecked());

    QStringList groups;
    for (const QGroupBox *group : dialog.findChildren<QGroupBox *>())
        groups << group->title() << group->objectName();
    QCOMPARE(groups, QStringList({"Center Point : ", "NodeAttributesEditDlgCenterGrp", "End Point : ",
                                  "NodeAttributesEditDlgEndGrp", "Orientation : ", "NodeAttributesEditDlgOrientGrp"}));
    QStringList rows;
    for (int i = 0; i < dialog.checks.size(); ++i)
        rows << dialog.checks[i]->text() + '|' + dialog.checks[i]->objectName() + '|' + dialog.values[i]->objectName();
    QCOMPARE(rows, QStringList({"X Position|NodeAttributesEditCenterXCbx|NodeAttributesEditCenterXSBox",
                                "Y Position|NodeAttributesEditCenterYCbx|NodeAttributesEditCenterYSBox",
                                "Z Position|NodeAttributesEditCenterZCbx|NodeAttributesEditCenterZSBox",
                                "X Position|NodeAttributesEditEndXCbx|NodeAttributesEditEndXSBox",
                                "Y Position|NodeAttributesEditEndYCbx|NodeAttributesEditEndYSBox",
                                "Z Position|NodeAttributesEditEndZCbx|NodeAttributesEditEndZSBox",
                                "X Rotation|NodeAttributesEditEndXCbx|NodeAttributesEditOrientXSBox",
                                "Y Rotation|NodeAttributesEditEndYCbx|NodeAttributesEditOrientYSBox",
                                "Z Rotation|NodeAttributesEditOrientZCbx|NodeAttributesEditOrientZSBox"}));
    // A search by name finds the end point's.
    QCOMPARE(dialog.findChild<QCheckBox *>("NodeAttributesEditEndXCbx"), dialog.checks[3]);

    Dialog shown;
    shown.show();
    QCoreApplication::processEvents();
    const auto *first = shown.findChild<QRadioButton *>("NodeAttributesSetValueBtn");
    const auto *second = shown.findChild<QRadioButton *>("NodeAttributesAdjustValueBtn");
    QCOMPARE(first->y(), second->y());
    QVERIFY(first->x() < second->x());
    int above = first->y();
    for (const QGroupBox *group : shown.findChildren<QGroupBox *>()) {
        QVERIFY(group->y() > above);
        above = group->y();
    }
}

void RyAttributesDialogTest::boxesEnableNumbers()
{
    RyToolScene scene;
    const Dialog dialog;
    QCOMPARE(dialog.checks.size(), 9);
    for (const QDoubleSpinBox *value : dialog.values)
        QVERIFY(!value->isEnabled());
    for (int i = 0; i < 9; ++i) {
        dialog.checks[i]->click();
        for (int k = 0; k < 9; ++k)
            QCOMPARE(dialog.values[k]->isEnabled(), k == i);
        dialog.checks[i]->click();
        QVERIFY(!dialog.values[i]->isEnabled());
    }
    QVERIFY(RyJESelectedNodesAttributesEditDlg::staticMetaObject.indexOfSlot("validateSpinBoxStates()") >= 0);
}

void RyAttributesDialogTest::numbersKeepTheirRange()
{
    RyToolScene scene;
    const Dialog dialog;
    for (QDoubleSpinBox *value : dialog.values) {
        QCOMPARE(value->value(), 0.0);
        QCOMPARE(value->minimum(), 0.0);
        QCOMPARE(value->maximum(), 99.99);
        QCOMPARE(value->decimals(), 2);
        QCOMPARE(value->singleStep(), 1.0);
        value->setEnabled(true);
        value->selectAll();
        QTest::keyClicks(value, "-5");
        QVERIFY(value->value() >= 0.0);
        value->selectAll();
        QTest::keyClicks(value, "123.456");
        QVERIFY(value->value() <= 99.99);
    }
}

void RyAttributesDialogTest::setsEachValue_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < 9; ++row)
        QTest::newRow(QByteArray::number(row)) << row;
}

void RyAttributesDialogTest::setsEachValue()
{
    QFETCH(int, row);
    RyToolScene scene;
    ryScene()->setSelection({scene.lShin, scene.prop});
    std::vector<float> shin = valuesOf(scene.lShin);
    std::vector<float> prop = valuesOf(scene.prop);
    const std::vector<float> other = valuesOf(scene.hip);
    Dialog dialog;
    dialog.fill(row, 12.25);
    for (int unused = 0; unused < 9; ++unused) {
        if (unused != row)
            dialog.values[unused]->setValue(7);
    }
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    shin[size_t(row)] = prop[size_t(row)] = 12.25f;
    QCOMPARE(valuesOf(scene.lShin), shin);
    QCOMPARE(valuesOf(scene.prop), prop);
    QCOMPARE(valuesOf(scene.hip), other);
    QCOMPARE(scene.lShin->getOrigin(true), RyVec3(11, 50, 2));
}

void RyAttributesDialogTest::adjustsEachNode()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lShin, scene.hip});
    std::vector<float> shin = valuesOf(scene.lShin);
    std::vector<float> hip = valuesOf(scene.hip);
    Dialog dialog;
    dialog.findChild<QRadioButton *>("NodeAttributesAdjustValueBtn")->click();
    dialog.fill(1, 1.5);
    dialog.fill(8, 30);
    dialog.accept();
    for (std::vector<float> *values : {&shin, &hip}) {
        (*values)[1] += 1.5f;
        (*values)[8] += 30.0f;
    }
    QCOMPARE(valuesOf(scene.lShin), shin);
    QCOMPARE(valuesOf(scene.hip), hip);
}

void RyAttributesDialogTest::goesThroughNodesAndRowsInOrder()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lFoot, scene.hip});
    QStringList calls;
    QObject listener;
    for (RyNode *node : {scene.hip, scene.lFoot}) {
        for (RyFloatProperty *control :
             {node->getOrientZControl(), node->getOriginXControl(), node->getEndYControl()}) {
            connect(control, &RyFloatProperty::currentValueChanged, &listener,
                    [&calls, node, control] { calls.append(node->getName() + ' ' + control->getName()); });
        }
    }
    Dialog dialog;
    for (int row : {8, 4, 0})
        dialog.fill(row, 77);
    dialog.accept();
    QCOMPARE(calls,
             QStringList({"lFoot originX", "lFoot endY", "lFoot orientZ", "hip originX", "hip endY", "hip orientZ"}));
}

void RyAttributesDialogTest::nothingChecked()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lShin, scene.hip});
    const QString before = scene.dump();
    Dialog dialog;
    dialog.fill(3, 5);
    dialog.checks[3]->click();
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(scene.dump(), before);
}

void RyAttributesDialogTest::nodeWithoutControls()
{
    RyToolScene scene;
    auto *bare = new RyNode(RyNode::Rigging::None);
    ryScene()->addNode(bare);
    ryScene()->setSelection({bare, scene.lShin});
    Dialog dialog;
    dialog.fill(0, 5);
    dialog.accept();
    QCOMPARE(scene.lShin->getOrigin().x, 5.0f);
}

void RyAttributesDialogTest::withoutSelection()
{
    RyToolScene scene;
    ryScene()->selectAllNodes(false);
    const QString before = scene.dump();
    Dialog dialog;
    dialog.fill(0, 5);
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(scene.dump(), before);
}

void RyAttributesDialogTest::opensNoHold()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lShin});
    Dialog dialog;
    dialog.fill(0, 5);
    dialog.accept();
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(!ryUndoStack()->isHoldOpen());
    // In the hold of somebody else it is undone and redone with it.
    Dialog second;
    second.fill(4, 9);
    checkUndoInHold([&] { second.accept(); });
}

void RyAttributesDialogTest::actionRunsTheDialog()
{
    RyWindowScene scene;
    RyJESelectedNodesAttributesEditAction action;
    QCOMPARE(action.objectName(), QStringLiteral("RyJESelectedNodeAttributesEditAction"));
    ryScene()->setSelection({scene.lShin});
    {
        RyDialogDriver driver;
        driver.setField(QStringLiteral("NodeAttributesEditCenterZCbx"), QStringLiteral("true"));
        driver.setField(QStringLiteral("NodeAttributesEditCenterZSBox"), QStringLiteral("42.5"));
        action.trigger();
        QCOMPARE(driver.errors(), QStringList());
        QCOMPARE(int(driver.records().size()), 1);
        QCOMPARE(driver.records()[0].className, QStringLiteral("RyJESelectedNodesAttributesEditDlg"));
    }
    QCOMPARE(scene.lShin->getOrigin().z, 42.5f);
    ryScene()->selectAllNodes(false);
    const QString before = scene.dump();
    RyDialogDriver driver;
    action.trigger();
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(scene.dump(), before);
    QVERIFY(!scene.window->findChild<RyJESelectedNodesAttributesEditDlg *>());
}

RY_TEST(RyAttributesDialogTest)

#include "tst_attributesDialog.moc"
