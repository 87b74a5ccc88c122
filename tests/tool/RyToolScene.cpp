#include "RyToolScene.h"

#include "rycore/base/RyFloatProperty.h"

#include <QCoreApplication>

RyBone *RyToolScene::makeBone(RyNode *parent, const char *name, const RyVec3 &origin, const RyVec3 &endPoint)
{
    auto *bone = new RyBone;
    bone->setName(QString::fromLatin1(name));
    bone->setOrigin(origin, true);
    bone->setEndPoint(endPoint, true);
    parent->addNodeChild(bone);
    if (parent->getScene())
        parent->getScene()->addNode(bone);
    return bone;
}

RyToolScene::RyToolScene()
{
    RyAppSettings::setSettingsPath(settingsFolder.path());
    ryScene()->clear();
    ryUndoStack()->clearAll();

    figure = new RyFigure;
    figure->setName(QStringLiteral("figure"));
    hip = makeBone(figure, "hip", {0, 100, 0}, {0, 112, 1});
    lThigh = makeBone(hip, "lThigh", {10, 95, 0}, {11, 50, 2});
    lShin = makeBone(lThigh, "lShin", {11, 50, 2}, {10, 8, -1});
    lFoot = makeBone(lShin, "lFoot", {10, 8, -1}, {11, 2, 13});
    rThigh = makeBone(hip, "rThigh", {-10, 95, 0}, {-11, 50, 2});
    ryScene()->addNode(figure);
    prop = new RyNode;
    prop->setName(QStringLiteral("prop"));
    ryScene()->addNode(prop);

    manager = std::make_unique<RyViewportMgr>(ryScene());
    viewport = std::make_unique<RyScriptedViewport>(manager.get());
    viewport->resize(800, 600);
    viewport->getCamera()->lookAt({60, 120, 260}, {0, 60, 0});
    tool = new RyJointEditorTool;
    manager->addTool(tool);
}

RyToolScene::~RyToolScene()
{
    viewport.reset();
    manager.reset();
    ryScene()->clear();
    ryUndoStack()->clearAll();
    RyAppSettings::setSettingsPath(QString());
}

void RyToolScene::pose()
{
    figure->getXTransControl()->setValue(15.0f);
    figure->getZTransControl()->setValue(-20.0f);
    figure->getYRotControl()->setValue(25.0f);
    hip->getXRotControl()->setValue(10.0f);
    hip->getZRotControl()->setValue(-15.0f);
    lThigh->getXRotControl()->setValue(-40.0f);
    lThigh->getYRotControl()->setValue(20.0f);
    lShin->getXRotControl()->setValue(55.0f);
    lShin->getZRotControl()->setValue(12.0f);
    lFoot->getYRotControl()->setValue(-30.0f);
}

void RyToolScene::select(RyNode *node)
{
    ryScene()->setSelection({node});
    if (manager->getActiveTool() != tool)
        manager->setActiveTool(tool);
    QCoreApplication::sendPostedEvents();
}

void RyToolScene::hover(int id, const QPoint &point)
{
    viewport->nextId = id;
    QMouseEvent event(QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    tool->mouseOver(viewport.get(), &event, RyViewMouseModifier::None);
}

bool RyToolScene::press(int id, const QPoint &point, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    viewport->nextId = id;
    QMouseEvent event(QEvent::MouseButtonPress, point, button, button, modifiers);
    return tool->mousePress(viewport.get(), &event, ryViewMouseModifier(modifiers));
}

bool RyToolScene::move(const QPoint &point, Qt::KeyboardModifiers modifiers)
{
    QMouseEvent event(QEvent::MouseMove, point, Qt::NoButton, Qt::LeftButton, modifiers);
    return tool->mouseMove(viewport.get(), &event, ryViewMouseModifier(modifiers));
}

bool RyToolScene::release(const QPoint &point)
{
    QMouseEvent event(QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    return tool->mouseRelease(viewport.get(), &event, RyViewMouseModifier::None);
}

void RyToolScene::drag(int id, const QPoint &from, const QPoint &to, Qt::KeyboardModifiers modifiers)
{
    press(id, from);
    move((from + to) / 2, modifiers);
    move(to, modifiers);
    release(to);
}

QPoint RyToolScene::pixelOf(const RyVec3 &world) const
{
    QPointF pixel;
    viewport->project(world, pixel);
    return pixel.toPoint();
}
