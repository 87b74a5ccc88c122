#include "RyPaneParams.h"
#include "slotsOf.h"

#include "pluginsource/RyJointTools/pane/RyBoneFaceGroupSelectionDropDown.h"
#include "pluginsource/RyJointTools/pane/RyJointEditorDisplayOptionsPanel.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/ui/RyDividerBar.h"
#include "rycore/ui/RyDynamicDividerWgt.h"
#include "rycore/ui/RySceneSelectionDropDown.h"

#include <QGridLayout>
#include <QLabel>
#include <QLayout>
#include <QMetaMethod>
#include <QScrollArea>
#include <QTabWidget>

using namespace RyPaneParams;

/// The pane of the tool: its rows, its room, and the rotation order.
class RyJointEditorToolFrameTest : public QObject
{
    Q_OBJECT

private slots:
    void slotsInOrder()
    {
        QCOMPARE(slotsOf<RyJointEditorToolFrame>(),
                 QStringList(
                     {"setParam(int)", "updateNode(RyNode*)", "updateParam(RyLegacyJointParam*)", "setRotation(int)"}));
        for (int i = 0; i < 4; ++i)
            QCOMPARE(RyJointEditorToolFrame::staticMetaObject
                         .method(RyJointEditorToolFrame::staticMetaObject.methodOffset() + i)
                         .access(),
                     QMetaMethod::Private);
    }

    void rows()
    {
        RyPaneScene scene;
        const auto *label = scene.find<QLabel>("JointEditorParameterLbl");
        QCOMPARE(label->text(), QStringLiteral("Parameter :"));
        QCOMPARE(label->buddy(), static_cast<QWidget *>(&combo(scene)));
        QCOMPARE(combo(scene).minimumHeight(), combo(scene).maximumHeight());
        int last = -1;
        for (const char *name : {"JointEditorNodeLbl", "JointEditorSelectionGroupLbl", "JointEditorParameterLbl",
                                 "JointEditorRotationOrderLbl", "JointEditorCenterEndPanel"}) {
            const QWidget *widget = scene.find<QWidget>(name);
            QCOMPARE(widget->parentWidget(), scene.find<QWidget>("JointEditorTopWgt"));
            QVERIFY(widget->y() > last);
            last = widget->y();
        }
        // Either page has the same room.
        scene.select(scene.doll.lHand);
        QCoreApplication::processEvents();
        const QRect room = scene.find<QWidget>("JointEditorCenterEndPanel")->geometry();
        QVERIFY(scene.choose(scene.doll.lHand, "jointz"));
        QCoreApplication::processEvents();
        QCOMPARE(scene.find<QWidget>("JointEditorParamPanel")->geometry(), room);
    }

    void top()
    {
        RyPaneScene scene;
        QCOMPARE(scene.pane->objectName(), QStringLiteral("Joint Editor Tool Settings"));
        QCOMPARE(scene.pane->minimumSizeHint(), QSize(350, 600));
        QCOMPARE(scene.pane->layout()->contentsMargins(), QMargins());
        QCOMPARE(scene.pane->layout()->spacing(), 0);
        const std::pair<const char *, const char *> labels[] = {{"JointEditorNodeLbl", "Node :"},
                                                                {"JointEditorSelectionGroupLbl", "Selection Group :"},
                                                                {"JointEditorParameterLbl", "Parameter :"},
                                                                {"JointEditorRotationOrderLbl", "Rotation Order :"}};
        const QWidget *const fields[] = {scene.find<RySceneSelectionDropDown>("JointEditorNodeBtn"),
                                         scene.find<RyBoneFaceGroupSelectionDropDown>("JointEditorSelectionGroupBtn"),
                                         &combo(scene), scene.find<QComboBox>("JointEditorRotationOrderCmb")};
        const auto *grid = qobject_cast<QGridLayout *>(scene.find<QWidget>("JointEditorTopWgt")->layout());
        for (size_t i = 0; i < 4; ++i) {
            const auto *label = scene.find<QLabel>(labels[i].first);
            QCOMPARE(label->text(), QLatin1String(labels[i].second));
            QVERIFY(fields[i] && label->buddy() == fields[i]);
            QCOMPARE(fields[i]->minimumHeight(), fields[i]->maximumHeight());
            QVERIFY(label->geometry().right() < fields[i]->geometry().left());
            QCOMPARE(fields[i]->accessibleName() + QLatin1String(" :"), label->text());
        }
        QCOMPARE(grid->columnStretch(0), 0);
        QCOMPARE(grid->columnStretch(1), 1);
        QCOMPARE(grid->rowStretch(grid->rowCount() - 1), 1);
        // A gap sets the node apart.
        QVERIFY(fields[1]->y() - fields[0]->geometry().bottom() > fields[2]->y() - fields[1]->geometry().bottom());
        for (const char *name : {"JointEditorCenterEndPanel", "JointEditorParamPanel"})
            QCOMPARE(scene.find<QWidget>(name)->parentWidget(), scene.find<QWidget>("JointEditorTopWgt"));
    }

    void divider()
    {
        RyPaneScene scene;
        auto *divider = scene.find<RyDynamicDividerWgt>("JointEditorDynamicDividerWgt");
        auto *display = scene.find<RyJointEditorDisplayOptionsPanel>("JointEditorDisplayPanel");
        RyDividerBar *bar = divider->getDividerBar();
        QCOMPARE(scene.tool->getDividerBar(), static_cast<QWidget *>(bar));
        QVERIFY(!bar->areMovesEnabled());
        QCOMPARE(divider->getExtent(), display->minimumSizeHint().height());
        const auto *panel = scene.find<QWidget>("JointEditorCenterEndPanel");
        QCoreApplication::processEvents();
        const int height = display->height();
        QCOMPARE(height, display->minimumSizeHint().height());
        scene.pane->resize(350, 900);
        QCoreApplication::processEvents();
        QCOMPARE(display->height(), height);
        const int before = panel->height();
        QTest::keyClick(bar, Qt::Key_Space);
        QCoreApplication::processEvents();
        QVERIFY(!display->isVisible());
        QVERIFY(panel->height() >= before + height);
        QCOMPARE(bar->mapTo(scene.pane, bar->rect().bottomLeft()).y(), scene.pane->height() - 1);
        QTest::keyClick(bar, Qt::Key_Space);
        QCoreApplication::processEvents();
        QCOMPARE(panel->height(), before);
    }

    void theTabKeyGoesDown_data()
    {
        QTest::addColumn<QString>("param");
        QTest::newRow("points") << QString();
        for (const char *param : {"jointz", "twistx", "lArm_smoox"})
            QTest::newRow(param) << QString(param);
    }

    void theTabKeyGoesDown()
    {
        QFETCH(QString, param);
        RyPaneScene scene;
        scene.pane->resize(350, 1400); // nothing is scrolled away
        scene.select(scene.doll.lHand);
        scene.tool->setParam(scene.doll.param(scene.doll.lHand, qPrintable(param)));
        QCoreApplication::processEvents();
        QWidget *first = scene.find<QWidget>("JointEditorNodeBtn");
        first->setFocus();
        QStringList way{first->objectName()};
        int last = -1;
        int column = -1;
        for (QWidget *widget = first;;) {
            // What has the keyboard is a control, stands where it can be seen, and below what had it before.
            QVERIFY2(!qobject_cast<QScrollArea *>(widget), qPrintable(widget->objectName()));
            QVERIFY2(!widget->visibleRegion().isEmpty(), qPrintable(widget->objectName()));
            const QPoint place = widget->mapTo(scene.pane, QPoint());
            QVERIFY2(place.y() > last || (place.y() == last && place.x() > column),
                     qPrintable(way.join(QLatin1String(", "))));
            last = place.y();
            column = place.x();
            QTest::keyClick(widget, Qt::Key_Tab);
            widget = QApplication::focusWidget();
            QVERIFY(widget && scene.pane->isAncestorOf(widget));
            if (widget == first)
                break;
            way.append(qobject_cast<RyNumberField *>(widget) ? widget->parentWidget()->objectName()
                                                             : widget->objectName());
            QVERIFY(way.size() < 100);
        }
        way.removeOne(QStringLiteral("JointEditorSelectionGroupBtn")); // there is one for weight-mapped figures
        QCOMPARE(way.mid(0, 3),
                 QStringList({"JointEditorNodeBtn", "JointEditorParameterCmb", "JointEditorRotationOrderCmb"}));
        QCOMPARE(way.last(), QStringLiteral("JointEditorManipulatorsCbx"));
        const QString field = param.isEmpty()     ? "JointEditorOriginXWgt"
                              : param == "jointz" ? "JointParamGeneralStaticAWgt"
                              : param == "twistx" ? "JointParamGeneralEnableTwistGrpBox"
                                                  : "JointParamGeneralEnableScaleGrpBox";
        QVERIFY2(way.contains(field), qPrintable(way.join(QLatin1String(", "))));
    }

    void nodesCanBeChosenWithoutOne()
    {
        RyPaneScene scene;
        scene.select(nullptr);
        auto *nodes = scene.find<RySceneSelectionDropDown>("JointEditorNodeBtn");
        QCOMPARE(nodes->text(), QStringLiteral("None"));
        QVERIFY(nodes->isEnabled());
        QVERIFY(!scene.find<QComboBox>("JointEditorRotationOrderCmb")->isEnabled());
        QVERIFY(!scene.field("JointEditorOriginXWgt")->isEnabled());
        nodes->setFocus();
        QTest::keyClick(nodes, Qt::Key_Down);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(scene.tool->currentNode(), nodes->offeredNodes().front());
        QVERIFY(scene.field("JointEditorOriginXWgt")->isEnabled());
        // The joint tool's rule: of a figure only itself and its bones.
        scene.select(scene.lShin);
        for (const RyNode *node : nodes->offeredNodes())
            QVERIFY(node->getSkeleton() == scene.figure);
        scene.lShin->setLabel("Left Lower Leg");
        QCOMPARE(nodes->text(), QStringLiteral("Left Lower Leg"));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void theSameOrderIsNoEdit()
    {
        RyPaneScene scene;
        scene.select(scene.lShin);
        const auto choose = [&](int order) {
            return QMetaObject::invokeMethod(scene.pane, "setRotation", Q_ARG(int, order));
        };
        QVERIFY(choose(RyRotationOrder::ZXY));
        QVERIFY(choose(RyRotationOrder::YXZ));
        QCOMPARE(ryUndoStack()->count(), 2);
        ryUndoStack()->undo();
        QSignalSpy changes(ryUndoStack(), &RyUndoStack::aboutToChange);
        for (const int order : {int(RyRotationOrder::ZXY), -1, 6, 1000})
            QVERIFY(choose(order));
        scene.select(nullptr);
        changes.clear();
        QVERIFY(choose(RyRotationOrder::XZY));
        scene.select(scene.lShin);
        QCOMPARE(scene.lShin->getRotationOrder().order(), int(RyRotationOrder::ZXY));
        QCOMPARE(scene.find<QComboBox>("JointEditorRotationOrderCmb")->currentIndex(), int(RyRotationOrder::ZXY));
        QCOMPARE(changes.count(), 0);
        QCOMPARE(ryUndoStack()->count(), 2);
        ryUndoStack()->redo();
        QCOMPARE(scene.lShin->getRotationOrder().order(), int(RyRotationOrder::YXZ));
    }

    /// All of it shows what the tool has already.
    void aFrameForAToolAtWork()
    {
        RyPaneScene scene;
        RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        RyJointEditorToolFrame frame(nullptr, scene.tool);
        const auto property = [&](const char *name) {
            return frame.findChild<RyFloatPropertyWgt *>(QLatin1String(name))->getFirstProperty();
        };
        QCOMPARE(property("JointParamGeneralStaticAWgt"), bend->controllers()[0]);
        QCOMPARE(property("JointParamMatricesMatrixPositionXWgt"),
                 scene.field("JointParamMatricesMatrixPositionXWgt")->getFirstProperty());
        QVERIFY(property("JointParamMatricesMatrixPositionXWgt"));
        QCOMPARE(property("JointEditorOriginXWgt"), scene.doll.lHand->getOriginXControl());
        for (const char *name : {"JointEditorParameterCmb", "JointEditorRotationOrderCmb"})
            QCOMPARE(frame.findChild<QComboBox *>(QLatin1String(name))->currentText(),
                     scene.find<QComboBox>(name)->currentText());
        // And goes on with it.
        QVERIFY(scene.choose(scene.doll.lHand, "jointy"));
        QCOMPARE(property("JointParamGeneralStaticAWgt"),
                 scene.doll.param(scene.doll.lHand, "jointy")->controllers()[0]);
    }

    /// Neither lists anything at first.
    void anEmptyBindingInPlaceOfNone()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        const RyRef<RyLegacyBinding> kept(scene.doll.binding);
        scene.doll.figure->getObject()->removeModifier(scene.doll.binding);
        QCOMPARE(items(scene), QStringList({"Center/EndPoint"}));
        auto *binding = new RyLegacyBinding;
        scene.doll.figure->getObject()->addModifier(binding);
        QCOMPARE(items(scene), QStringList({"Center/EndPoint"}));
        RyLegacyJointMaker(scene.doll.lHand, RyLegacyJointMaker::Side::ByEndPoint).make(scene.doll.lArm, true);
        QVERIFY(binding->findJoint(scene.doll.lHand));
        QVERIFY(items(scene).contains("jointz [ZRot]"));
    }

    void scriptsChangeTheOrder()
    {
        RyPaneScene scene;
        scene.select(scene.lShin);
        auto *orders = scene.find<QComboBox>("JointEditorRotationOrderCmb");
        QSignalSpy changes(orders, QOverload<int>::of(&QComboBox::currentIndexChanged));
        QSignalSpy nodes(scene.tool, &RyJointEditorTool::nodeChanged);
        scene.lShin->setRotationOrder(RyRotationOrder(RyRotationOrder::ZXY));
        QCOMPARE(orders->currentIndex(), 4);
        scene.tool->changeRotationOrder(scene.hip, RyRotationOrder(RyRotationOrder::YXZ));
        QCOMPARE(orders->currentIndex(), 4);
        QCOMPARE(nodes.count(), 0);
        scene.tool->changeRotationOrder(scene.lShin, RyRotationOrder(RyRotationOrder::YXZ));
        QCOMPARE(orders->currentIndex(), 2);
        QCOMPARE(nodes.count(), 1);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void rotationOrder()
    {
        RyPaneScene scene;
        const RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        ryUndoStack()->clearAll();
        auto *orders = scene.find<QComboBox>("JointEditorRotationOrderCmb");
        QSignalSpy params(scene.tool, &RyJointEditorTool::paramChanged);
        QSignalSpy activations(orders, QOverload<int>::of(&QComboBox::currentIndexChanged));
        const QString before = RyPaneScene::wholeDump();
        orders->setFocus();
        QTest::keyClick(orders, Qt::Key_End);
        QCOMPARE(scene.doll.lHand->getRotationOrder().order(), 5);
        QCOMPARE(scene.tool->currentParam(), bend);
        QCOMPARE(look(scene), QStringLiteral("parameter jointx [XRot]"));
        RyPaneScene::checkStep(before, QStringLiteral("Rotation Order Change"));
        QCOMPARE(look(scene), QStringLiteral("parameter jointx [XRot]"));
        ryUndoStack()->undo();
        QCOMPARE(look(scene), QStringLiteral("parameter jointz [ZRot]"));
        QCOMPARE(orders->currentIndex(), 0);
        QCOMPARE(params.count(), 0);
        QCOMPARE(activations.count(), 1); // the key
        // By other hands, too.
        scene.tool->changeRotationOrder(scene.doll.lHand, RyRotationOrder(RyRotationOrder::YZX));
        QCOMPARE(orders->currentIndex(), 3);
        QVERIFY(look(scene).startsWith(QStringLiteral("parameter joint")));
        QCOMPARE(scene.tool->currentParam(), bend);
    }

    void fitsItsWidth()
    {
        RyPaneScene scene;
        for (const char *name : {"jointz", "twistx", "lArm_smoox"}) {
            scene.choose(scene.doll.lHand, name);
            int tab = 0;
            for (const char *page : {"JointParamGeneralScrollArea", "JointParamMatricesScrollArea"}) {
                scene.find<QTabWidget>("JointEditorParamTabWgt")->setCurrentIndex(tab++);
                const auto *area = scene.find<QScrollArea>(page);
                QVERIFY(area->isVisible());
                QVERIFY2(area->widget()->minimumSizeHint().width() <= area->viewport()->width(), page);
            }
            QVERIFY2(scene.pane->layout()->totalMinimumSize().width() <= 320,
                     QByteArray::number(scene.pane->layout()->totalMinimumSize().width()));
            QVERIFY2(scene.pane->layout()->totalMinimumSize().height() <= 480,
                     QByteArray::number(scene.pane->layout()->totalMinimumSize().height()));
        }
    }
};

RY_TEST(RyJointEditorToolFrameTest)

#include "tst_RyJointEditorToolFrame.moc"
