#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/viewport/RyPickTool.h"

#include <QPoint>
#include <QStringList>

#include <vector>

class Ry3DViewport;
class RyBone;
class RyFigure;
class RyNode;
class RyScene;

/// A figure of two bones in a box from y = 0 to 40, weighted half and half, and a prop.
struct ViewportTestFigure
{
    RyFigure *figure = nullptr;
    RyBone *lower = nullptr;
    RyBone *upper = nullptr;
};
ViewportTestFigure addBoxFigure(RyScene &scene);

/// Events as the window system sends them: they enter at the viewport's own window handle.
class ViewportMouse
{
public:
    explicit ViewportMouse(Ry3DViewport &viewport) : m_viewport(viewport) {}
    void move(const QPoint &point, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void press(const QPoint &point, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void release(const QPoint &point, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void wheel(const QPoint &point, int degrees);
    /// All buttons go up where nobody sees it.
    void loseButtons() { m_buttons = Qt::NoButton; }

private:
    void send(int type, const QPoint &point, Qt::MouseButton button, Qt::KeyboardModifiers modifiers);
    Ry3DViewport &m_viewport;
    Qt::MouseButtons m_buttons;
};

/// Draws coded squares at places of the world and writes down what it is told.
class SquareTool : public RyPickTool
{
    Q_OBJECT
public:
    struct Square
    {
        RyVec3 center;
        int id;
    };
    SquareTool() : RyPickTool(QStringLiteral("Squares")) {}

    void draw(Ry3DViewport *viewport, const RyDrawStyle &style) override;
    bool mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    bool mouseMove(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    bool mouseRelease(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void cancelDrag() override;
    void finishDrag() override;

    std::vector<Square> squares;
    float halfSize = 2.0f;
    int hovered = 0;
    bool dragging = false;
    QStringList calls;
    int draws = 0;
    float pickLineWidth = 0.0f;
};

/// Draws the bones of a skeleton as the joint editor codes them: a square at each bone of its list, the list refilled
/// in every pick pass, and one handle.
class BoneListTool : public RyPickTool
{
    Q_OBJECT
public:
    BoneListTool() : RyPickTool(QStringLiteral("Bones")) {}
    void draw(Ry3DViewport *viewport, const RyDrawStyle &style) override;

    RyNode *node = nullptr;
    RyVec3 handle;
    int handleId = 0;
    std::vector<RyBone *> bones;
};
