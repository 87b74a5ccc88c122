#include "RyPaneScene.h"
#include "slotsOf.h"

#include "pluginsource/RyJointTools/pane/RyCenterEndGeneralPage.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/ui/RyScrubLabel.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSlider>
#include <QVBoxLayout>

namespace {

struct Row
{
    const char *name;
    const char *text;
    RyFloatProperty *(RyNode::*control)() const;
    const char *suffix;
    const char *caption;
};

const Row rows[] = {
    {"JointEditorOriginX", "X Position", &RyNode::getOriginXControl, " cm", "Change Center Point X Position"},
    {"JointEditorOriginY", "Y Position", &RyNode::getOriginYControl, " cm", "Change Center Point Y Position"},
    {"JointEditorOriginZ", "Z Position", &RyNode::getOriginZControl, " cm", "Change Center Point Z Position"},
    {"JointEditorEndPointX", "X Position", &RyNode::getEndXControl, " cm", "Change End Point X Position"},
    {"JointEditorEndPointY", "Y Position", &RyNode::getEndYControl, " cm", "Change End Point Y Position"},
    {"JointEditorEndPointZ", "Z Position", &RyNode::getEndZControl, " cm", "Change End Point Z Position"},
    {"JointEditorOrientationX", "X Rotation", &RyNode::getOrientXControl, "\u00b0", "Change Orientation X Rotation"},
    {"JointEditorOrientationY", "Y Rotation", &RyNode::getOrientYControl, "\u00b0", "Change Orientation Y Rotation"},
    {"JointEditorOrientationZ", "Z Rotation", &RyNode::getOrientZControl, "\u00b0", "Change Orientation Z Rotation"},
};

QByteArray widgetOf(const Row &row)
{
    return QByteArray(row.name) + "Wgt";
}

/// The scene with the left leg posed and placed otherwise than it was modelled, and the page of its pane.
struct Scene : RyPaneScene
{
    Scene() : page(*find<RyCenterEndGeneralPage>("JointEditorCenterEndGeneralPage"))
    {
        pose();
        lShin->setOrigin({12, 49, 3.5f});
        lShin->setOrientation(RyQuat({1, 2, 3}, 0.4f));
        select(lShin);
        ryUndoStack()->clearAll();
    }
    QCheckBox &inherit() const { return *find<QCheckBox>("JointEditorInheritParentScaleCbx"); }
    QCheckBox &promote() const { return *find<QCheckBox>("JointEditorPromoteSelectionCbx"); }
    QCheckBox &hidden() const { return *find<QCheckBox>("JointEditorHiddenCbx"); }
    void call(const char *slot) const { QVERIFY(QMetaObject::invokeMethod(&page, slot)); }

    void mouse(QEvent::Type type, int x) const
    {
        RyScrubLabel *label = field("JointEditorEndPointXWgt")->label();
        const QPoint point(x, label->height() / 2);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, point, label->mapToGlobal(point), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(label, &event);
    }
    /// Until before the release.
    void startScrubbing() const
    {
        mouse(QEvent::MouseButtonPress, 5);
        for (int x : {15, 25, 40})
            mouse(QEvent::MouseMove, x);
    }

    RyCenterEndGeneralPage &page;
};

} // namespace

/// The numbers and switches of a node in the pane.
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
        Scene scene;
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
        Scene scene;
        int place = 0;
        for (const Row &row : rows) {
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
        Scene scene;
        RyCenterEndGeneralPage page(scene.tool);
        for (const QCheckBox *box : page.findChildren<QCheckBox *>())
            QVERIFY(box->isChecked());
        QCOMPARE(page.findChildren<QCheckBox *>().size(), 3);
    }

    void typing()
    {
        for (const Row &row : rows) {
            Scene scene;
            RyFloatProperty *control = (scene.lShin->*row.control)();
            const QString before = Scene::wholeDump();
            QSignalSpy announced(scene.lShin, &RyNode::riggingChanged);
            scene.type(widgetOf(row), QStringLiteral("12.5+3"));
            QCOMPARE(control->getValue(), 15.5f);
            QCOMPARE(scene.shown(widgetOf(row)), QStringLiteral("15.5") + QString::fromUtf8(row.suffix));
            QCOMPARE(announced.count(), 1);
            QCOMPARE(scene.lShin->editLevel(), 0);
            Scene::checkStep(before, QLatin1String(row.caption));
        }
    }

    void arithmeticWithTheValue()
    {
        Scene scene;
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
        Scene scene;
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
        Scene scene;
        const QString before = Scene::wholeDump();
        QSignalSpy announced(scene.lShin, &RyNode::riggingChanged);
        const float value = scene.lShin->getEndXControl()->getValue();
        scene.startScrubbing();
        QVERIFY(scene.lShin->getEndXControl()->getValue() > value + 10);
        QCOMPARE(announced.count(), 0);
        QCOMPARE(scene.lShin->editLevel(), 1);
        scene.mouse(QEvent::MouseButtonRelease, 40);
        QCOMPARE(announced.count(), 1);
        QCOMPARE(scene.lShin->editLevel(), 0);
        Scene::checkStep(before, QStringLiteral("Change End Point X Position"));
    }

    void anotherNodeFinishesTheEdit()
    {
        Scene scene;
        const QString before = Scene::wholeDump();
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
        Scene::checkStep(before, QStringLiteral("Change End Point X Position"));
    }

    void aFieldThatGoesFinishesTheEdit()
    {
        for (const bool hides : {true, false}) {
            Scene scene;
            const QString before = Scene::wholeDump();
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
            Scene::checkStep(before, QStringLiteral("Change End Point X Position"));
        }
    }

    void aTypedTextStaysWithItsNode()
    {
        Scene scene;
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
        Scene scene;
        RyNumberField *field = scene.field("JointEditorEndPointZWgt")->numberField();
        field->setFocus();
        scene.select(scene.rThigh);
        QVERIFY(field->hasFocus());
        scene.select(nullptr);
        QVERIFY(!field->hasFocus());
    }

    void withoutNode()
    {
        Scene scene;
        scene.lShin->setInheritScale(false);
        scene.lShin->setHidden(true);
        scene.select(scene.prop);
        scene.prop->setPromoteSelection(true);
        scene.select(nullptr);
        for (const Row &row : rows) {
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
        const QString before = Scene::wholeDump();
        for (const char *slot : {"align", "snapCenter", "snapEnd", "refresh", "inheritsScaleChanged",
                                 "promoteSelectoinChange", "hiddenChanged", "nodeRemoved"})
            scene.call(slot);
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(Scene::wholeDump(), before);
    }

    void switchesWrite()
    {
        Scene scene;
        scene.select(scene.prop);
        const auto click = [](QCheckBox &box) {
            QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box.height() / 2));
        };
        QVERIFY(scene.prop->inheritsScale());
        click(scene.inherit());
        QVERIFY(!scene.prop->inheritsScale());
        const bool promoted = scene.prop->isSelectionPromoted();
        click(scene.promote());
        QCOMPARE(scene.prop->isSelectionPromoted(), !promoted);
        click(scene.hidden());
        QVERIFY(scene.prop->isHidden());
        click(scene.hidden());
        QVERIFY(!scene.prop->isHidden());
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void switchesFollowTheNode()
    {
        Scene scene;
        scene.select(scene.prop);
        QSignalSpy clicks(&scene.inherit(), &QCheckBox::stateChanged);
        QSignalSpy promotions(&scene.promote(), &QCheckBox::stateChanged);
        QSignalSpy hidings(&scene.hidden(), &QCheckBox::stateChanged);
        for (bool onOff : {false, true, false}) {
            scene.prop->setInheritScale(onOff);
            scene.prop->setPromoteSelection(onOff);
            scene.prop->setHidden(onOff);
            QCOMPARE(scene.inherit().isChecked(), onOff);
            QCOMPARE(scene.promote().isChecked(), onOff);
            QCOMPARE(scene.hidden().isChecked(), onOff);
        }
        scene.lShin->setHidden(true);
        scene.lShin->setInheritScale(false);
        scene.prop->setInheritScale(true);
        scene.select(scene.lShin);
        QVERIFY(scene.hidden().isChecked() && !scene.inherit().isChecked());
        // The page left the other one.
        scene.prop->setHidden(true);
        scene.prop->setHidden(false);
        QVERIFY(scene.hidden().isChecked());
        QCOMPARE(clicks.count() + promotions.count() + hidings.count(), 0);
    }

    void promotionIsNotForBones()
    {
        Scene scene;
        QVERIFY(!scene.promote().isEnabled());
        scene.lShin->setPromoteSelection(true);
        QVERIFY(scene.promote().isChecked() && !scene.promote().isEnabled());
        for (RyNode *node : {static_cast<RyNode *>(scene.figure), scene.prop}) {
            scene.select(node);
            QVERIFY(scene.promote().isEnabled());
        }
    }

    void followsTheValues()
    {
        Scene scene;
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

    void aNodeThatGoes()
    {
        Scene scene;
        {
            RyUndoStackHold hold;
            scene.lShin->getNodeParent()->removeNodeChild(scene.lShin);
            ryScene()->removeNode(scene.lShin);
            hold.accept("Remove");
        }
        for (const Row &row : rows)
            QVERIFY(!scene.field(widgetOf(row))->getFirstProperty());
        QVERIFY(scene.inherit().isChecked());
        ryUndoStack()->undo();
        scene.select(scene.lShin);
        QCOMPARE(scene.field("JointEditorOriginXWgt")->getFirstProperty(), scene.lShin->getOriginXControl());
    }

    /// The edit is finished before the node goes, and stays the node's own.
    void removalDuringAnEdit_data()
    {
        QTest::addColumn<bool>("types");
        QTest::addColumn<bool>("inHold");
        QTest::addColumn<QStringList>("captions");
        const QString change = QStringLiteral("Change End Point X Position");
        QTest::newRow("scrubbed") << false << false << QStringList{change};
        QTest::newRow("scrubbed, in a hold") << false << true << QStringList{change, "Remove"};
        QTest::newRow("typed") << true << false << QStringList{change};
        QTest::newRow("typed, in a hold") << true << true << QStringList{"Remove"};
    }
    void removalDuringAnEdit()
    {
        QFETCH(bool, types);
        QFETCH(bool, inHold);
        Scene scene;
        const RyRef<RyNode> kept(scene.lShin);
        const QString before = Scene::wholeDump();
        const float value = scene.lShin->getEndXControl()->getValue();
        RyNumberField *number = scene.field("JointEditorEndPointXWgt")->numberField();
        if (types) {
            number->setFocus();
            number->selectAll();
            QTest::keyClicks(number, QStringLiteral("42"));
        } else {
            scene.startScrubbing();
            QVERIFY(scene.lShin->getEndXControl()->getValue() > value + 10);
        }
        const float edited = types ? 42.0f : scene.lShin->getEndXControl()->getValue();
        const auto remove = [&] { ryScene()->removeNode(scene.lShin); };
        if (inHold) {
            RyUndoStackHold hold;
            remove();
            hold.accept("Remove");
        } else {
            remove();
        }
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(kept->editLevel(), 0);
        QCOMPARE(kept->getEndXControl()->getValue(), edited);
        for (const Row &row : rows)
            QVERIFY(!scene.field(widgetOf(row))->getFirstProperty());
        QCOMPARE(number->text(), QString());
        QStringList captions;
        for (int i = 0; i < ryUndoStack()->count(); ++i)
            captions.append(ryUndoStack()->caption(i));
        QTEST(captions, "captions");
        if (!types)
            scene.mouse(QEvent::MouseButtonRelease, 40);
        QCOMPARE(ryUndoStack()->count(), captions.size());
        while (ryUndoStack()->canUndo())
            ryUndoStack()->undo();
        QCOMPARE(kept->getEndXControl()->getValue(), value);
        if (!inHold)
            return;
        scene.select(scene.lShin); // no step holds that
        QCOMPARE(Scene::wholeDump(), before);
    }

    void leavesTheNodeOfBefore()
    {
        Scene scene;
        const std::pair<const char *, const char *> links[] = {
            {SIGNAL(aboutToBeRemoved()), SLOT(nodeRemoved())},
            {SIGNAL(riggingChanged()), SLOT(refresh())},
            {SIGNAL(inheritScaleChanged()), SLOT(updateInheritScaleFromNode())},
            {SIGNAL(promoteSelectionChanged(bool)), SLOT(updatePromoteSelectionFromNode())},
            {SIGNAL(hiddenChanged(bool)), SLOT(updateHiddenFromNode())}};
        scene.select(scene.rThigh);
        for (const auto &[signal, slot] : links) {
            QVERIFY2(!QObject::disconnect(scene.lShin, signal, &scene.page, slot), signal);
            QVERIFY2(QObject::disconnect(scene.rThigh, signal, &scene.page, slot), signal);
        }
    }

    void aNodeThatGoesWhileItIsEdited()
    {
        Scene scene;
        scene.startScrubbing();
        emit scene.lShin->aboutToBeRemoved();
        QCOMPARE(scene.lShin->editLevel(), 0);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(ryUndoStack()->count(), 1);
        QVERIFY(!scene.field("JointEditorEndPointXWgt")->isEnabled());
        scene.mouse(QEvent::MouseButtonRelease, 40);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void operations_data()
    {
        QTest::addColumn<QByteArray>("slot");
        QTest::addColumn<QString>("caption");
        QTest::newRow("align") << QByteArray("align") << QStringLiteral("Align");
        QTest::newRow("center") << QByteArray("snapCenter") << QStringLiteral("Snap Center to End");
        QTest::newRow("end") << QByteArray("snapEnd") << QStringLiteral("Snap End to Center");
    }
    void operations()
    {
        QFETCH(QByteArray, slot);
        QFETCH(QString, caption);
        Scene scene;
        scene.lFoot->setOrigin({9, 7, -2});
        const QString before = Scene::wholeDump();
        const RyQuat orientation = scene.lShin->getOrientation();
        scene.call(slot);
        if (slot == "align")
            QVERIFY(!(scene.lShin->getOrientation() == orientation));
        else
            QCOMPARE(scene.lShin->getOrientation(), orientation);
        if (slot == "snapCenter")
            QCOMPARE(scene.lShin->getOrigin(), scene.lThigh->getEndPoint());
        if (slot == "snapEnd")
            QCOMPARE(scene.lShin->getEndPoint(), scene.lFoot->getOrigin());
        Scene::checkStep(before, caption);
    }

    void anOperationThatFails()
    {
        Scene scene;
        scene.select(scene.prop);
        scene.call("snapCenter"); // it has no parent
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(!ryUndoStack()->isHoldOpen());
    }

    void snappingTheEndAligns()
    {
        Scene scene;
        scene.lFoot->setOrigin({9, 7, -2});
        scene.select(scene.lShin);
        QVERIFY(QMetaObject::invokeMethod(&scene.page, "setAutoAlign", Q_ARG(bool, true)));
        QVERIFY(scene.tool->autoAlign());
        // What the tool itself aligns when points move is not what is asked about.
        scene.lShin->setEndPoint(scene.lFoot->getOrigin());
        scene.lShin->setOrientation(RyQuat({1, 2, 3}, 0.4f));
        ryUndoStack()->clearAll();
        scene.call("snapEnd");
        const RyQuat aligned = scene.lShin->getOrientation();
        scene.call("align");
        QCOMPARE(scene.lShin->getOrientation(), aligned);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Snap End to Center"));
    }

    void flagsOfTheTool()
    {
        Scene scene;
        for (bool onOff : {true, false}) {
            QVERIFY(QMetaObject::invokeMethod(&scene.page, "setAutoAlign", Q_ARG(bool, onOff)));
            QVERIFY(QMetaObject::invokeMethod(&scene.page, "setAutoSnapEndPoints", Q_ARG(bool, !onOff)));
            QCOMPARE(scene.tool->autoAlign(), onOff);
            QCOMPARE(scene.tool->autoSnapEndPoints(), !onOff);
        }
    }
};

RY_TEST(RyCenterEndGeneralPageTest)

#include "tst_RyCenterEndGeneralPage.moc"
