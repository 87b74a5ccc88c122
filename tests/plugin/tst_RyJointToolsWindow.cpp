#include "plugin/PluginStage.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyPickTool.h"

#include <QComboBox>
#include <QGroupBox>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>

/// Bears the name of the plug-in's tool and is none.
class RyJointEditorTool : public RyPickTool
{
    Q_OBJECT
public:
    RyJointEditorTool() : RyPickTool(QStringLiteral("Joint Editor")) {}
};

/// The plug-in in a main window: its tool and actions where the host keeps them, and an edit with the mouse from the
/// selection to the undo step.
class RyJointToolsWindowTest : public QObject, private PluginStage
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { close(); }
    void toolAndActions();
    void activatingActionActivates();
    void paneShowsTheNode();
    void rotationOrderFromThePane();
    void rotationOrderFromTheMenu();
    void interactiveModeFromTheMenu();
    void anotherToolOfThatName();
    void editWithTheMouse();
    void objectsOfScriptsGoWithTheWindow();

private:
    void select(RyNode *node);
    void mouse(QEvent::Type type, const QPoint &point, Qt::MouseButton button, Qt::MouseButtons buttons);
    template<typename W>
    W *paneWidget(const char *name) const
    {
        return m_tool->getSettingsWidget()->findChild<W *>(QString::fromLatin1(name));
    }

    Ry3DViewport *m_viewport = nullptr;
    RyBone *m_upper = nullptr;
    RyBone *m_lower = nullptr;
};

void RyJointToolsWindowTest::init()
{
    ryScene()->clear();
    ryUndoStack()->clearAll();
    auto *figure = new RyFigure;
    figure->setName(QStringLiteral("figure"));
    m_upper = new RyBone;
    m_upper->setName(QStringLiteral("lUpperArm"));
    m_upper->setOrigin({0, 100, 0}, true);
    m_upper->setEndPoint({30, 100, 0}, true);
    m_lower = new RyBone;
    m_lower->setName(QStringLiteral("lForearm"));
    m_lower->setOrigin({30, 100, 0}, true);
    m_lower->setEndPoint({55, 98, 0}, true);
    figure->addNodeChild(m_upper);
    m_upper->addNodeChild(m_lower);
    ryScene()->addNode(figure);

    open();
    QCOMPARE(RyApp::getInterface(), m_window.get());
    m_viewport = new Ry3DViewport(m_window->getViewportMgr(), m_window.get());
    m_viewport->resize(800, 600);
    m_window->getViewportMgr()->setActiveTool(m_tool);
}

void RyJointToolsWindowTest::select(RyNode *node)
{
    ryScene()->setSelection({node});
    QCoreApplication::processEvents();
}

void RyJointToolsWindowTest::mouse(QEvent::Type type, const QPoint &point, Qt::MouseButton button,
                                   Qt::MouseButtons buttons)
{
    QMouseEvent event(type, point, button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(m_viewport, &event);
}

void RyJointToolsWindowTest::toolAndActions()
{
    QCOMPARE(m_tool->objectName(), QStringLiteral("Joint Editor"));
    QCOMPARE(m_tool->getSettingsWidget()->parentWidget(), static_cast<QWidget *>(m_window.get()));
    QCOMPARE(m_tool->getSettingsWidget()->objectName(), QStringLiteral("Joint Editor Tool Settings"));
    QCOMPARE(m_tool->getToolPriority(), 29);
    for (const char *name :
         {"RyJointEditorToolAction", "RyJECreateBoneAction", "RyJEMirrorAction", "RyJERotationOrderZYXAction",
          "RyJECreateControlBonesAction", "RyMVCCageAdjustRigToShapeAction"})
        QVERIFY2(m_window->getActionMgr()->findAction(QString::fromLatin1(name)), name);
}

void RyJointToolsWindowTest::activatingActionActivates()
{
    m_window->getViewportMgr()->setActiveTool(nullptr);
    RyAction *action = m_window->getActionMgr()->findAction(QStringLiteral("RyJointEditorToolAction"));
    QVERIFY(action);
    QCOMPARE(action->text(), QStringLiteral("Joint Editor"));
    QVERIFY(!action->isChecked());
    action->trigger();
    QCOMPARE(m_window->getViewportMgr()->getActiveTool(), m_tool);
    QVERIFY(action->isChecked());
}

void RyJointToolsWindowTest::paneShowsTheNode()
{
    QVERIFY(!paneWidget<RyFloatPropertyWgt>("JointEditorEndPointXWgt")->isEnabled());
    select(m_lower);
    QVERIFY(paneWidget<RyFloatPropertyWgt>("JointEditorEndPointXWgt")->isEnabled());
    QCOMPARE(paneWidget<QPushButton>("JointEditorNodeBtn")->text(), QStringLiteral("lForearm"));
    const std::pair<const char *, RyFloatProperty *> numbers[] = {
        {"JointEditorOriginXWgt", m_lower->getOriginXControl()},
        {"JointEditorOriginYWgt", m_lower->getOriginYControl()},
        {"JointEditorOriginZWgt", m_lower->getOriginZControl()},
        {"JointEditorEndPointXWgt", m_lower->getEndXControl()},
        {"JointEditorEndPointYWgt", m_lower->getEndYControl()},
        {"JointEditorEndPointZWgt", m_lower->getEndZControl()},
        {"JointEditorOrientationXWgt", m_lower->getOrientXControl()},
        {"JointEditorOrientationYWgt", m_lower->getOrientYControl()},
        {"JointEditorOrientationZWgt", m_lower->getOrientZControl()}};
    for (const auto &[name, property] : numbers) {
        const auto *number = paneWidget<RyFloatPropertyWgt>(name);
        QVERIFY2(number, name);
        QCOMPARE(number->getFirstProperty(), property);
    }
    QStringList titles;
    for (const char *name : {"JointEditorOriginGrpBox", "JointEditorEndPointGrpBox", "JointEditorOrientationGrpBox"})
        titles.append(paneWidget<QGroupBox>(name)->title());
    QCOMPARE(titles, QStringList({"Center Point :", "End Point :", "Orientation :"}));
    ryScene()->selectAllNodes(false);
    QCoreApplication::processEvents();
    QVERIFY(!paneWidget<RyFloatPropertyWgt>("JointEditorEndPointXWgt")->getFirstProperty());
    QCOMPARE(paneWidget<QPushButton>("JointEditorNodeBtn")->text(), QStringLiteral("None"));
}

void RyJointToolsWindowTest::rotationOrderFromThePane()
{
    select(m_lower);
    auto *orders = paneWidget<QComboBox>("JointEditorRotationOrderCmb");
    QVERIFY(orders);
    QStringList texts;
    for (int i = 0; i < orders->count(); ++i)
        texts.append(orders->itemText(i));
    QCOMPARE(texts, QStringList({"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"}));
    QCOMPARE(orders->currentIndex(), 0);
    orders->setCurrentIndex(4);
    emit orders->activated(4);
    QCOMPARE(m_lower->getRotationOrder().order(), 4);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Rotation Order Change"));
    ryUndoStack()->undo();
    QCOMPARE(m_lower->getRotationOrder().order(), 0);
    QCOMPARE(orders->currentIndex(), 0);
    m_lower->setLabel(QStringLiteral("Left Forearm"));
    QCOMPARE(paneWidget<QPushButton>("JointEditorNodeBtn")->text(), QStringLiteral("Left Forearm"));
    m_upper->setRotationOrder(RyRotationOrder(3));
    select(m_upper);
    QCOMPARE(orders->currentIndex(), 3);
}

void RyJointToolsWindowTest::rotationOrderFromTheMenu()
{
    RyAction *action = m_window->getActionMgr()->findAction(QStringLiteral("RyJERotationOrderZXYAction"));
    QVERIFY(action);
    QVERIFY(!action->isEnabled());
    select(m_lower);
    QVERIFY(action->isEnabled());
    action->trigger();
    QCOMPARE(m_lower->getRotationOrder().order(), 4);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Rotation Order ZXY"));
    const auto *orders = paneWidget<QComboBox>("JointEditorRotationOrderCmb");
    QCOMPARE(orders->currentIndex(), 4);
    ryUndoStack()->undo();
    QCOMPARE(orders->currentIndex(), 0);
}

void RyJointToolsWindowTest::interactiveModeFromTheMenu()
{
    if (!RyOffscreenContext::instance().makeCurrent())
        QSKIP("no OpenGL here");
    RyAction *action = m_window->getActionMgr()->findAction(QStringLiteral("RyJEToggleViewBoneCreationAction"));
    QVERIFY(action);
    QVERIFY(!action->isChecked());
    action->trigger();
    bool active = false;
    QVERIFY(QMetaObject::invokeMethod(m_tool, "boneCreationActive", Q_RETURN_ARG(bool, active)));
    QVERIFY(active);

    select(m_lower);
    m_viewport->getCamera()->lookAt({45, 110, 300}, {45, 98, 0});
    const RyVec3 goal(90, 70, 0);
    QPointF pixel;
    QVERIFY(m_viewport->project(goal, pixel));
    for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, pixel.toPoint(), Qt::LeftButton, held, Qt::ControlModifier);
        QCoreApplication::sendEvent(m_viewport, &event);
    }
    QCOMPARE(m_lower->getNumNodeChildren(), 1);
    const RyNode *bone = m_lower->getNodeChild(0);
    QCOMPARE(bone->getName(), QStringLiteral("lForearm2"));
    QCOMPARE(bone->getOrigin(), m_lower->getEndPoint());
    // The camera looks slightly down: the plane that faces it passes through the world's origin, not the goal.
    const RyVec3 toEye = RyVec3(0, 12, 300).normalized();
    QVERIFY(std::abs(bone->getEndPoint().dot(toEye)) < 1e-2f);
    QPointF end;
    QVERIFY(m_viewport->project(bone->getWSEndPoint(), end));
    QVERIFY((end - pixel).manhattanLength() < 2);
    QCOMPARE(ryScene()->getPrimarySelection(), static_cast<RyNode *>(m_lower));
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyJointToolsWindowTest::anotherToolOfThatName()
{
    m_window->getViewportMgr()->deleteTools();
    m_window->getViewportMgr()->addTool(new RyJointEditorTool);
    QVERIFY(m_window->getViewportMgr()->findTool(QStringLiteral("RyJointEditorTool")));
    for (const char *name : {"RyJETogglePropagateTranslationAction", "RyJEToggleViewBoneCreationAction",
                             "RyJEToggleAutoAlignNodeAction", "RyJEToggleAutoSnapEndPointsAction"}) {
        RyAction *action = m_window->getActionMgr()->findAction(QString::fromLatin1(name));
        QVERIFY2(action, name);
        action->trigger();
        QVERIFY2(action->isChecked(), name);
        // Taking a flag over would clear the check mark.
        action->init();
        QVERIFY2(action->isChecked(), name);
    }
    select(m_lower);
    m_window->getActionMgr()->findAction(QStringLiteral("RyJERotationOrderYZXAction"))->trigger();
    QCOMPARE(m_lower->getRotationOrder().order(), 3);
    QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Rotation Order YZX"));
}

void RyJointToolsWindowTest::editWithTheMouse()
{
    if (!RyOffscreenContext::instance().makeCurrent())
        QSKIP("no OpenGL here");
    select(m_lower);
    m_viewport->getCamera()->lookAt({45, 110, 90}, {45, 98, 0});
    const QString before = rySceneDump(*ryScene());
    const auto *field = paneWidget<RyFloatPropertyWgt>("JointEditorEndPointXWgt");
    QPointF tip;
    QVERIFY(m_viewport->project(m_lower->getWSEndPoint() + RyVec3(5.7f, 0, 0), tip));
    const QPoint handle = tip.toPoint();

    mouse(QEvent::MouseMove, handle, Qt::NoButton, Qt::NoButton);
    QCOMPARE(m_viewport->getToolTipText(), QStringLiteral("Translate End Point on the X axis."));
    QCOMPARE(m_viewport->cursor().shape(), Qt::PointingHandCursor);
    QCOMPARE(m_tool->getStatusText(),
             QStringLiteral("lForearm, end point X: drag to move along X, Ctrl keeps the bone's length"));

    mouse(QEvent::MouseButtonPress, handle, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, handle + QPoint(30, 3), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, handle + QPoint(60, 5), Qt::NoButton, Qt::LeftButton);
    const RyVec3 endPoint = m_lower->getEndPoint();
    QVERIFY(endPoint.x > 56.0f);
    QCOMPARE(endPoint.y, 98.0f);
    QCOMPARE(endPoint.z, 0.0f);
    QCOMPARE(field->getFirstProperty()->getValue(), endPoint.x);
    // The tip went as far as the mouse did.
    QPointF movedTip;
    QVERIFY(m_viewport->project(m_lower->getWSEndPoint() + RyVec3(5.7f, 0, 0), movedTip));
    QVERIFY(std::abs(movedTip.x() - tip.x() - 60) < 3);
    mouse(QEvent::MouseButtonRelease, handle + QPoint(60, 5), Qt::LeftButton, Qt::NoButton);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
    ryUndoStack()->undo();
    QCOMPARE(rySceneDump(*ryScene()), before);

    // Cancelled with the other button: no step, nothing changed.
    ryUndoStack()->clearAll();
    mouse(QEvent::MouseButtonPress, handle, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, handle + QPoint(30, 3), Qt::NoButton, Qt::LeftButton);
    QVERIFY(rySceneDump(*ryScene()) != before);
    mouse(QEvent::MouseButtonPress, handle + QPoint(30, 3), Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    QCOMPARE(rySceneDump(*ryScene()), before);
    mouse(QEvent::MouseButtonRelease, handle + QPoint(30, 3), Qt::RightButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, handle + QPoint(30, 3), Qt::LeftButton, Qt::NoButton);
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(!ryUndoStack()->isHoldOpen());
}

/// While the scene that they know is there.
void RyJointToolsWindowTest::objectsOfScriptsGoWithTheWindow()
{
    const auto make = [this](const char *program) {
        return QPointer<QObject>(m_window->getScriptEngine()->evaluate(QString::fromLatin1(program)).toQObject());
    };
    const QPointer<QObject> tool = make("new RyJointEditorTool()");
    const QPointer<QObject> action = make("kept = new RyJEAlignNodeAction()");
    QVERIFY(tool && action);
    QCOMPARE(tool->parent(), QCoreApplication::instance());
    m_window.reset();
    QVERIFY(!tool);
    QVERIFY(!action);
}

RY_TEST(RyJointToolsWindowTest)

#include "tst_RyJointToolsWindow.moc"
