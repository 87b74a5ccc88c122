#pragma once

#include "rycore/viewport/RyCameraController.h"
#include "rycore/viewport/RyRenderOptions.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/RyViewportCounts.h"

#include <QGLWidget>

#include <memory>

class RyCamera;
class RyNode;
class RyViewportMgr;
struct RySceneView;

/// A view of the scene: camera, shaded figures, the active tool above them. Points are the mouse event's; the device
/// pixel ratio is handled inside. Without a display the widget exists, but is drawn through an offscreen context.
class Ry3DViewport : public QGLWidget
{
    Q_OBJECT
public:
    explicit Ry3DViewport(RyViewportMgr *manager, QWidget *parent = nullptr);
    ~Ry3DViewport() override;

    RyCamera *getCamera() const;
    RyViewportMgr *getViewportMgr() const;
    /// Redraws the active tool with shade style 11 off screen and reads the id under the point; 0 when there is none.
    /// Ids of bones are full ones, however many bones the tool's skeleton has.
    virtual int pickOnGizmo(const QPoint &point);
    /// The node whose mesh is nearest under the point; null when there is none.
    virtual RyNode *pickNode(const QPoint &point);
    /// Shown at the cursor; empty clears.
    virtual void setToolTipText(const QString &text);
    QString getToolTipText() const;
    /// Makes the context that this viewport draws with current and loads its matrices, so that RyGLUtility::pixelToRay
    /// answers for it. Works without a display too.
    void makeCurrent();

    /// The picture with all samples, without a display too.
    QImage grabPicture(int width, int height);

    void frameNodes(bool selectionOnly);
    enum class StandardView { Front, Side, Top, Perspective };
    void setStandardView(StandardView view);

    /// Where a point of the world is in the widget (logical pixels); false behind the eye.
    bool project(const RyVec3 &world, QPointF &pixel) const;
    /// The matrices for the widget's size in logical pixels.
    RyViewMatrices matrices() const;
    RyCameraController cameraController() const;
    const RyRenderOptions &renderOptions() const;
    void setRenderOptions(const RyRenderOptions &options);
    /// Tints the part of the meshes that stands for a node; for tools while they draw.
    void drawNodeHighlight(RyNode *node);
    /// Tells the active tool of the cursor once more, as if it had moved to where it is. Nothing while it is elsewhere
    /// and while a button is held.
    void hoverAgain();
    /// True between a press that the tool got and its release.
    bool isToolDragging() const;

    /// Whether nothing finer is to come: a software renderer draws with one sample while something moves, and with all
    /// of them when nothing has happened for a while.
    bool isRefined() const;
    RyViewportCounts counts() const;

signals:
    void painted();
    /// A right click that was no drag, no view movement and no cancel.
    void contextMenuRequested(const QPoint &globalPosition);

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    RySceneView windowView() const;
    void paintFrame(const RySceneView &view, int samples);
    void drawTool(const RySceneView &view);
    void refine();

    struct Private;
    std::unique_ptr<Private> d;
};
