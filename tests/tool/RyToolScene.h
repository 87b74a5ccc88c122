#pragma once

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QMouseEvent>
#include <QTemporaryDir>

#include <memory>

/// A viewport whose picks are scripted and whose tool tips are kept.
class RyScriptedViewport : public Ry3DViewport
{
    Q_OBJECT
public:
    using Ry3DViewport::Ry3DViewport;

    int pickOnGizmo(const QPoint &point) override
    {
        ++gizmoPicks;
        lastPoint = point;
        return nextId;
    }
    RyNode *pickNode(const QPoint &) override
    {
        ++nodePicks;
        return nextNode;
    }
    void setToolTipText(const QString &text) override
    {
        ++toolTips;
        toolTip = text;
    }

    int nextId = 0;
    RyNode *nextNode = nullptr;
    int gizmoPicks = 0;
    int nodePicks = 0;
    int toolTips = 0;
    QPoint lastPoint;
    QString toolTip;
};

/// The application's scene with a figure of five bones and a prop, an empty settings store, a tool and a viewport of
/// 800 by 600 whose camera looks from the front, slightly from above and aside.
///
///     figure - hip - lThigh - lShin - lFoot
///                  - rThigh
class RyToolScene
{
public:
    RyToolScene();
    ~RyToolScene();

    static RyBone *makeBone(RyNode *parent, const char *name, const RyVec3 &origin, const RyVec3 &endPoint);
    /// Moves and turns the figure and bends the hip and the left leg; nothing is scaled.
    void pose();
    QString dump() const { return rySceneDump(*ryScene()); }
    /// Selects the node and lets the active tool take it.
    void select(RyNode *node);

    void hover(int id, const QPoint &point = QPoint(400, 300));
    bool press(int id, const QPoint &point, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    bool move(const QPoint &point, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    bool release(const QPoint &point = QPoint(400, 300));
    /// Press, two moves and release.
    void drag(int id, const QPoint &from, const QPoint &to, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    QPoint pixelOf(const RyVec3 &world) const;

    QTemporaryDir settingsFolder;
    RyFigure *figure;
    RyBone *hip;
    RyBone *lThigh;
    RyBone *lShin;
    RyBone *lFoot;
    RyBone *rThigh;
    RyNode *prop;
    std::unique_ptr<RyViewportMgr> manager;
    std::unique_ptr<RyScriptedViewport> viewport;
    RyJointEditorTool *tool; // the manager's
};
