#pragma once

#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyIdTile.h"
#include "rycore/viewport/RyNodePicker.h"
#include "rycore/viewport/RyPickPass.h"
#include "rycore/viewport/RyViewportInput.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/RySceneRenderer.h"

#include <QPointer>

class RyScene;

/// What a viewport keeps.
struct Ry3DViewport::Private
{
    /// What a picture of the scene was made from.
    struct PictureKey
    {
        RyViewMatrices matrices;
        RyRenderOptions options;
        quint64 sceneRevision = 0;
        quintptr context = 0;
        bool operator==(const PictureKey &) const = default;
    };
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

    RySceneRenderer renderer;
    PictureKey pictureKey;
    std::unique_ptr<RyFramebuffer> picture;      // the scene, resolved
    std::unique_ptr<RyFramebuffer> pictureDraft; // multisampled
    quintptr pictureContext = 0;

    RyPickPass pickPass;
    RyIdTile tile;
    TileKey tileKey;
    RyNodePicker picker;

    int scenePaints = 0;
    int framePaints = 0;
    bool paintAgain = false; // after a change of size

    RyViewportInput input;

    explicit Private(Ry3DViewport &viewport) : input(viewport) {}
    RyScene *scene() const { return manager ? manager->getScene() : nullptr; }
    RyViewTool *tool() const { return manager ? manager->getActiveTool() : nullptr; }
};
