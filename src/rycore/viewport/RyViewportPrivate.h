#pragma once

#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportInput.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "rycore/viewport/drawing/RyViewPainter.h"
#include "rycore/viewport/picking/RyIdTile.h"
#include "rycore/viewport/picking/RyNodePicker.h"
#include "rycore/viewport/picking/RyPickPass.h"

#include <QPointer>
#include <QTimer>

class RyScene;

/// What a viewport keeps.
struct Ry3DViewport::Private
{
    /// What a tile of ids was made from.
    struct TileKey
    {
        RyViewMatrices matrices;
        const RyViewTool *tool = nullptr;
        quint64 sceneRevision = 0;
        quint64 toolRevision = 0;
        bool operator==(const TileKey &) const = default;
    };

    QPointer<RyViewportMgr> manager;
    RyRef<RyCamera> camera;
    RyRenderOptions options;
    QString toolTip;

    RyViewPainter painter;
    quint64 context = 0; // that the painter and the pick pass have names of, 0 for none so far

    RyPickPass pickPass;
    RyIdTile tile;
    TileKey tileKey;
    RyNodePicker picker;

    int framePaints = 0;
    bool paintAgain = false; // after a change of size
    QTimer refining;         // till the next piece of a refined picture
    bool showsRefined = false;

    RyViewportInput input;

    explicit Private(Ry3DViewport &viewport) : input(viewport) {}
    /// Gives up what belongs to another context than the current one; false when none is current.
    bool enterContext();
    /// How the scene is to be seen in a picture of a size in device pixels.
    RySceneView sceneView(int width, int height, float devicePixelRatio) const;
    RyScene *scene() const { return manager ? manager->getScene() : nullptr; }
    RyViewTool *tool() const { return manager ? manager->getActiveTool() : nullptr; }
};
