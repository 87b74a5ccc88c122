#include "RyCenterEndPageScene.h"
#include "slotsOf.h"

#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSlider>
#include <QVBoxLayout>

/// The numbers of a node in the pane.
class RyCenterEndGeneralPageTest : public QObject
{
    Q_OBJECT

private slots:
    void slotsInOrder()
    {
        QCOMPARE(slotsOf<RyCenterEndGeneralPage>(),
                 QStringList({"updateNode(RyNode*)", "refresh()", "startNodeEdit()", "align()", "snapCenter()",
                              "snapEnd()", "setAutoAlign(bool)", "setAutoSnapEndPoints(bool)", "nodeRemoved()",
                              "inheritsScaleChanged()", "promoteSelectoinChange()", "updateInheritScaleFromNode()",
                              "updatePromoteSelectionFromNode()", "hiddenChanged()", "updateHiddenFromNode()"}));
        const QMetaObject &meta = RyCenterEndGeneralPage::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            QCOMPARE(meta.method(i).access(), QMetaMethod::Private);
    }

    void looks()
    {
        RyCenterEndPageScene scene;
        QCOMPARE(scene.page.layout()->contentsMargins(), QMargins());
        QCOMPARE(scene.page.layout()->spacing(), 0);
        const auto *area = scene.find<QScrollArea>("JointEditorCenterEndGeneralScrollArea");
        QCOMPARE(area->frameShape(), QFrame::NoFrame);
        QVERIFY(area->widgetResizable());
        QCOMPARE(area->widget()->objectName(), QStringLiteral("JointEditorCenterEndGeneralScrollContentsWgt"));
        const std::pair<const char *, const char *> groups[] = {{"JointEditorOriginGrpBox", "Center Point :"},
                                                                {"JointEditorEndPointGrpBox", "End Point :"},
                                                                {"JointEditorOrientationGrpBox", "Orientation :"},
                                                                {"JointEditorTransformGrpBox", "Node Attributes :"}};
        auto *column = qobject_cast<QVBoxLayout *>(area->widget()->layout());
        QCOMPARE(column->count(), 5);
        QVERIFY(column->itemAt(4)->spacerItem());
        int place = 0;
        for (const auto &[name, title] : groups) {
            const auto *box = qobject_cast<QGroupBox *>(column->itemAt(place++)->widget());
            QCOMPARE(box->objectName(), QLatin1String(name));
            QCOMPARE(box->title(), QLatin1String(title));
            const auto *grid = qobject_cast<QGridLayout *>(box->layout());
            QCOMPARE(grid->columnStretch(0), 0);
            QCOMPARE(grid->columnStretch(1), 1);
        }
        const std::pair<QCheckBox *, const char *> boxes[] = {{&scene.inherit(), "Inherit Parent Scale"},
                                                              {&scene.promote(), "Promote Selection"},
                                                              {&scene.hidden(), "Hide in Scene View(s)"}};
        const auto *group = scene.find<QWidget>("JointEditorTransformGrpBox");
        for (const auto &[box, text] : boxes) {
            QCOMPARE(box->text(), QLatin1String(text));
            QCOMPARE(box->parentWidget(), group);
        }
    }

    void rowsOfNumbers()
    {
        RyCenterEndPageScene scene;
        int place = 0;
        for (const RyCenterEndRow &row : centerEndRows) {
            const RyFloatPropertyWgt *field = scene.field(widgetOf(row));
            const auto *label = scene.find<QLabel>((QByteArray(row.name) + "Lbl").constData());
            const auto *grid = qobject_cast<QGridLayout *>(field->parentWidget()->layout());
            QCOMPARE(grid->itemAtPosition(place % 3, 0)->widget(), label);
            QCOMPARE(grid->itemAtPosition(place % 3, 1)->widget(), field);
            QCOMPARE(label->text(), QLatin1String(row.text));
            QVERIFY(label->geometry().right() < field->geometry().left());
            QVERIFY(label->width() >= label->fontMetrics().horizontalAdvance(label->text()));
            // The text takes the room that is there.
            QVERIFY(field->slider()->isHidden());
            QCOMPARE(field->numberField()->width(), field->width());
            QCOMPARE(field->numberField()->suffix(), QString::fromUtf8(row.suffix));
            ++place;
        }
    }

    void checkedUntilItIsTold()
    {
        RyCenterEndPageScene scene;
        RyCenterEndGeneralPage page(scene.tool);
        for (const QCheckBox *box : page.findChildren<QCheckBox *>())
            QVERIFY(box->isChecked());
        QCOMPARE(page.findChildren<QCheckBox *>().size(), 3);
    }

    void typing()
    {
        for (const RyCenterEndRow &row : centerEndRows) {
            RyCenterEndPageScene scene;
            RyFloatProperty *control = (scene.lShin->*row.control)();
            const QString before = RyCenterEndPageScene::wholeDump();
            QSignalSpy announced(scene.lShin, &RyNode::riggingChanged);
            scene.type(widgetOf(row), QStringLiteral("12.5+3"));
            QCOMPARE(control->getValue(), 15.5f);
            QCOMPARE(scene.shown(widgetOf(row)), QStringLiteral("15.5") + QString::fromUtf8(row.suffix));
            QCOMPARE(announced.count(), 1);
            QCOMPARE(scene.lShin->editLevel(), 0);
            RyCenterEndPageScene::checkStep(before, QLatin1String(row.caption));
        }
    }

    void arithmeticWithTheValue()
    {
        RyCenterEndPageScene scene;
        const float before = scene.lShin->getEndYControl()->getValue();
        scene.type("JointEditorEndPointYWgt", QStringLiteral("*2"));
        QCOMPARE(scene.lShin->getEndYControl()->getValue(), 2 * before);
        scene.type("JointEditorEndPointYWgt", QStringLiteral("/-4 cm"));
        QCOMPARE(scene.lShin->getEndYControl()->getValue(), before / -2);
        scene.type("JointEditorEndPointYWgt", QStringLiteral("*2"));
        QCOMPARE(scene.lShin->getEndYControl()->getValue(), -before);
        QCOMPARE(ryUndoStack()->count(), 3);
    }

    void keysAndWheel()
    {
        RyCenterEndPageScene scene;
        QSignalSpy announced(scene.lShin, &RyNode::riggingChanged);
        RyNumberField *field = scene.field("JointEditorOrientationYWgt")->numberField();
        const RyFloatProperty *control = scene.lShin->getOrientYControl();
        const float before = control->getValue();
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Up);
        QCOMPARE(control->getValue(), before + 1);
        QTest::keyClick(field, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(control->getValue(), before - 9);
        const QPointF middle(field->rect().center());
        QWheelEvent wheel(middle, field->mapToGlobal(middle.toPoint()), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(field, &wheel);
        QCOMPARE(control->getValue(), before - 8);
        QCOMPARE(ryUndoStack()->count(), 3);
        QCOMPARE(announced.count(), 3);
    }

    void scrubbing()
    {
        RyCenterEndPageScene scene;
        const QString before = RyCenterEndPageScene::wholeDump();
        QSignalSpy announced(scene.lShin, &RyNode::riggingChanged);
        const float value = scene.lShin->getEndXControl()->getValue();
        scene.startScrubbing();
        QVERIFY(scene.lShin->getEndXControl()->getValue() > value + 10);
        QCOMPARE(announced.count(), 0);
        QCOMPARE(scene.lShin->editLevel(), 1);
        scene.mouse(QEvent::MouseButtonRelease, 40);
        QCOMPARE(announced.count(), 1);
        QCOMPARE(scene.lShin->editLevel(), 0);
        RyCenterEndPageScene::checkStep(before, QStringLiteral("Change End Point X Position"));
    }

    void anotherNodeFinishesTheEdit()
    {
        RyCenterEndPageScene scene;
        const QString before = RyCenterEndPageScene::wholeDump();
        QSignalSpy announced(scene.lShin, &RyNode::riggingChanged);
        scene.startScrubbing();
        scene.select(scene.rThigh);
        QCOMPARE(scene.lShin->editLevel(), 0);
        QCOMPARE(announced.count(), 1);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        const RyVec3 other = scene.rThigh->getEndPoint();
        scene.mouse(QEvent::MouseMove, 70);
        scene.mouse(QEvent::MouseButtonRelease, 70);
        QCOMPARE(scene.rThigh->getEndPoint(), other);
        scene.select(scene.lShin);
        RyCenterEndPageScene::checkStep(before, QStringLiteral("Change End Point X Position"));
    }

    void aFieldThatGoesFinishesTheEdit()
    {
        for (const bool hides : {true, false}) {
            RyCenterEndPageScene scene;
            const QString before = RyCenterEndPageScene::wholeDump();
            QSignalSpy announced(scene.lShin, &RyNode::riggingChanged);
            scene.startScrubbing();
            QCOMPARE(scene.lShin->editLevel(), 1);
            if (hides)
                scene.page.hide();
            else
                scene.page.setEnabled(false);
            QCOMPARE(scene.lShin->editLevel(), 0);
            QCOMPARE(announced.count(), 1);
            QVERIFY(!ryUndoStack()->isHoldOpen());
            RyCenterEndPageScene::checkStep(before, QStringLiteral("Change End Point X Position"));
        }
    }

    void aTypedTextStaysWithItsNode()
    {
        RyCenterEndPageScene scene;
        RyNumberField *field = scene.field("JointEditorEndPointZWgt")->numberField();
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, QStringLiteral("42"));
        const RyVec3 other = scene.rThigh->getEndPoint();
        scene.select(scene.rThigh);
        QCOMPARE(scene.lShin->getEndPoint().z, 42.0f);
        QCOMPARE(scene.rThigh->getEndPoint(), other);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void theKeyboardStaysInTheField()
    {
        RyCenterEndPageScene scene;
        RyNumberField *field = scene.field("JointEditorEndPointZWgt")->numberField();
        field->setFocus();
        scene.select(scene.rThigh);
        QVERIFY(field->hasFocus());
        scene.select(nullptr);
        QVERIFY(!field->hasFocus());
    }

    void withoutNode()
    {
        RyCenterEndPageScene scene;
        scene.lShin->setInheritScale(false);
        scene.lShin->setHidden(true);
        scene.select(scene.prop);
        scene.prop->setPromoteSelection(true);
        scene.select(nullptr);
        for (const RyCenterEndRow &row : centerEndRows) {
            QVERIFY(!scene.field(widgetOf(row))->isEnabled());
            QVERIFY(!scene.field(widgetOf(row))->label()->isEnabled());
            QVERIFY(!scene.field(widgetOf(row))->getFirstProperty());
            QCOMPARE(scene.shown(widgetOf(row)), QString());
        }
        QVERIFY(scene.inherit().isChecked());
        QVERIFY(!scene.promote().isChecked());
        QVERIFY(!scene.hidden().isChecked());
        for (const QCheckBox *box : {&scene.inherit(), &scene.promote(), &scene.hidden()})
            QVERIFY(!box->isEnabled());
        const QString before = RyCenterEndPageScene::wholeDump();
        for (const char *slot : {"align", "snapCenter", "snapEnd", "refresh", "inheritsScaleChanged",
                                 "promoteSelectoinChange", "hiddenChanged", "nodeRemoved"})
            scene.call(slot);
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(RyCenterEndPageScene::wholeDump(), before);
    }

    void followsTheValues()
    {
        RyCenterEndPageScene scene;
        scene.lShin->setEndPoint({1.25f, -2, 3});
        QCOMPARE(scene.shown("JointEditorEndPointXWgt"), QStringLiteral("1.25 cm"));
        QCOMPARE(scene.shown("JointEditorEndPointYWgt"), QStringLiteral("-2 cm"));
        // By hands that tell nobody, as long as nothing else is told.
        {
            const QSignalBlocker nodeBlocker(scene.lShin);
            const QSignalBlocker blocker(scene.lShin->getEndZControl());
            scene.lShin->getEndZControl()->setValue(8);
            QCOMPARE(scene.shown("JointEditorEndPointZWgt"), QStringLiteral("3 cm"));
        }
        emit scene.lShin->riggingChanged();
        QCOMPARE(scene.shown("JointEditorEndPointZWgt"), QStringLiteral("8 cm"));
    }
};

RY_TEST(RyCenterEndGeneralPageTest)

#include "tst_RyCenterEndGeneralPage.moc"
