#pragma once

#include "rycore/viewport/RyViewMouseModifier.h"

#include <QGLWidget>

#include <memory>

class RyCamera;
class RyNode;
class RyScene;
class RySceneRenderer;
class RyViewTool;
class RyViewportMgr;

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
    /// Where the tool's skeleton has more than 209 bones, bone ids are resolved slice by slice; the full id comes back.
    virtual int pickOnGizmo(const QPoint &point);
    /// The node whose mesh is nearest under the point; null when there is none.
    virtual RyNode *pickNode(const QPoint &point);
    /// Shown at the cursor; empty clears.
    virtual void setToolTipText(const QString &text);
    QString getToolTipText() const;
    using QGLWidget::makeCurrent;

    /// Paints one frame of the given size with whatever context is current (screenshots, tests).
    void renderFrame(int width, int height, float devicePixelRatio);
    /// The picture as the tool draws it, without a display too.
    QImage grabPicture(int width, int height);

    void frameNodes(bool selectionOnly);
    enum class StandardView { Front, Side, Top, Perspective };
    void setStandardView(StandardView view);

signals:
    void painted();

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
