#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyViewportPrivate.h"

#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStackSilence.h"
#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyGLContext.h"
#include "rycore/viewport/RyGLHeadStart.h"
#include "rycore/viewport/RyGLUtility.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/ryDrawPatches.h"
#include "rycore/viewport/ryFrameBox.h"

#include <QEvent>
#include <QOpenGLContext>
#include <QToolTip>

#include <cmath>
#include <utility>

namespace {

/// After the last event, in ms.
constexpr int refiningDelay = 250;

// Without samples: frames that want some are drawn aside.
QGLFormat viewportFormat()
{
    RyGLHeadStart::finish(); // before the widget makes its context
    QGLFormat format;
    format.setDepth(true);
    format.setSampleBuffers(false);
    return format;
}

} // namespace

Ry3DViewport::Ry3DViewport(RyViewportMgr *manager, QWidget *parent)
    : QGLWidget(viewportFormat(), parent), d(std::make_unique<Private>(*this))
{
    d->manager = manager;
    {
        const RyUndoStackSilence silence; // it is no part of the document
        d->camera = new RyCamera;
    }
    connect(d->camera.get(), &RyNode::poseChanged, this, [this] { update(); });
    connect(d->camera.get(), &RyCamera::lensChanged, this, [this] { update(); });
    d->refining.setSingleShot(true);
    connect(&d->refining, &QTimer::timeout, this, &Ry3DViewport::refine);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    setAccessibleName(tr("Viewport"));
    RyCameraController(d->camera).frame(RyBox3(RyVec3(-60, 0, -60), RyVec3(60, 180, 60)), QSizeF(640, 480));
    setStandardView(StandardView::Perspective);
    if (manager)
        manager->addViewport(this);
}

Ry3DViewport::~Ry3DViewport()
{
    if (d->manager)
        d->manager->removeViewport(this);
    if (d->context == 0)
        return;
    makeCurrent(); // what another context had is given up by that
    d->painter.release();
    d->pickPass.release();
}

bool Ry3DViewport::Private::enterContext()
{
    const quint64 current = RyGLContext::currentNumber();
    if (current == 0)
        return false;
    if (context != 0 && current != context) {
        painter.abandon();
        pickPass.abandon();
    }
    context = current;
    return true;
}

RySceneView Ry3DViewport::Private::sceneView(int width, int height, float devicePixelRatio) const
{
    RySceneView view{RyViewMatrices(*camera, width, height), options, width, height};
    view.options.pixelRatio = devicePixelRatio;
    view.options.seeThrough = options.seeThrough || (tool() && tool()->showsInsideFigures());
    return view;
}

RyCamera *Ry3DViewport::getCamera() const
{
    return d->camera;
}

RyViewportMgr *Ry3DViewport::getViewportMgr() const
{
    return d->manager;
}

void Ry3DViewport::makeCurrent()
{
    if (isValid())
        QGLWidget::makeCurrent();
    else
        RyOffscreenContext::instance().makeCurrent();
    if (!d->enterContext())
        return;
    const float ratio = float(devicePixelRatioF());
    RyGLUtility::setDevicePixelRatio(ratio);
    glViewport(0, 0, std::lround(float(width()) * ratio), std::lround(float(height()) * ratio));
    matrices().load();
}

RyViewMatrices Ry3DViewport::matrices() const
{
    return RyViewMatrices(*d->camera, width(), height());
}

RyCameraController Ry3DViewport::cameraController() const
{
    return RyCameraController(d->camera);
}

bool Ry3DViewport::project(const RyVec3 &world, QPointF &pixel) const
{
    return matrices().project(world, pixel);
}

const RyRenderOptions &Ry3DViewport::renderOptions() const
{
    return d->options;
}

void Ry3DViewport::setRenderOptions(const RyRenderOptions &options)
{
    d->options = options;
    update();
}

int Ry3DViewport::pickOnGizmo(const QPoint &point)
{
    RyViewTool *tool = d->tool();
    if (!tool || !rect().contains(point))
        return 0;
    // In logical pixels: a line is as easy to catch on a dense display as on any other.
    const Private::TileKey key{matrices(), tool, d->manager->sceneRevision(), d->manager->toolRevision()};
    if (!(key == d->tileKey) || !d->tile.contains(point)) {
        makeCurrent();
        if (d->context == 0)
            return 0;
        RyGLUtility::setDevicePixelRatio(1.0f);
        d->tile.clear();
        d->tileKey = key;
        const QRect area = RyIdTile::areaAround(point);
        d->tile.set(area, d->pickPass.ids(this, tool, key.matrices, area));
        // Matrices and viewport of the whole widget again, for rays cast right after this.
        makeCurrent();
    }
    return d->tile.idAt(point);
}

RyNode *Ry3DViewport::pickNode(const QPoint &point)
{
    const RyScene *scene = d->scene();
    if (!scene)
        return nullptr;
    return d->picker.pick(*scene, matrices().ray(QPointF(point) + QPointF(0.5, 0.5)), d->manager->sceneRevision()).node;
}

void Ry3DViewport::setToolTipText(const QString &text)
{
    if (text == d->toolTip)
        return;
    d->toolTip = text;
    if (text.isEmpty())
        QToolTip::hideText();
    else if (isVisible())
        QToolTip::showText(mapToGlobal(d->input.lastPlace()), text, this);
}

QString Ry3DViewport::getToolTipText() const
{
    return d->toolTip;
}

void Ry3DViewport::initializeGL() {}

void Ry3DViewport::resizeGL(int, int)
{
    d->paintAgain = true;
}

void Ry3DViewport::paintGL()
{
    if (!d->enterContext())
        return;
    const bool isRefined = !RyGLContext::isSoftware() || std::exchange(d->showsRefined, false);
    paintFrame(windowView(), isRefined ? RyViewPainter::MostSamples : 1);
    ++d->framePaints;
    if (!isRefined)
        d->refining.start(refiningDelay);
    if (std::exchange(d->paintAgain, false)) {
        // Some drivers learn of a window's new size only after they have shown a frame in the old one.
        QMetaObject::invokeMethod(
            this, [this] { update(); }, Qt::QueuedConnection);
    }
    emit painted();
}

RySceneView Ry3DViewport::windowView() const
{
    const qreal ratio = devicePixelRatioF();
    return d->sceneView(int(std::lround(width() * ratio)), int(std::lround(height() * ratio)), float(ratio));
}

void Ry3DViewport::refine()
{
    if (!isValid() || !isVisible())
        return;
    makeCurrent();
    const RySceneView view = windowView();
    d->painter.scene().setScene(d->scene(), d->manager ? d->manager->sceneRevision() : 1);
    d->showsRefined = d->painter.scene().refine(view, RyViewPainter::MostSamples);
    glBindFramebuffer(GL_FRAMEBUFFER, context()->contextHandle()->defaultFramebufferObject());
    if (d->showsRefined)
        update();
    else
        d->refining.start(0);
}

bool Ry3DViewport::isRefined() const
{
    return !d->refining.isActive() && !d->showsRefined;
}

bool Ry3DViewport::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::Wheel:
    case QEvent::KeyPress:
        // The hand comes first.
        if (d->refining.isActive())
            d->refining.start(refiningDelay);
        break;
    default:
        break;
    }
    return QGLWidget::event(event);
}

void Ry3DViewport::paintEvent(QPaintEvent *event)
{
    if (isValid()) {
        QGLWidget::paintEvent(event);
        return;
    }
    // Nothing shows such a widget; a picture is drawn when somebody grabs one.
    ++d->framePaints;
    emit painted();
}

void Ry3DViewport::paintFrame(const RySceneView &view, int samples)
{
    RyGLUtility::setDevicePixelRatio(view.options.pixelRatio);
    d->painter.scene().setScene(d->scene(), d->manager ? d->manager->sceneRevision() : 1);
    const bool needsDepth = d->tool() && d->tool()->needsDepth();
    d->painter.paint(view, samples, needsDepth ? RyViewPainter::Depth::Cleared : RyViewPainter::Depth::Undefined,
                     [&] { drawTool(view); });
    view.matrices.load();
}

void Ry3DViewport::drawTool(const RySceneView &view)
{
    RyViewTool *tool = d->tool();
    if (!tool)
        return;
    view.matrices.load();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    if (tool->needsDepth()) {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
    } else {
        glDisable(GL_DEPTH_TEST);
    }
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_LIGHTING);
    glEnable(GL_MULTISAMPLE);
    glLineWidth(1.5f * view.options.pixelRatio);
    glPointSize(4.0f * view.options.pixelRatio);
    tool->draw(this, RyDrawStyle(RyDrawStyle::Textured));
    glPopAttrib();
}

QImage Ry3DViewport::grabPicture(int width, int height)
{
    makeCurrent();
    if (d->context == 0)
        return {};
    GLint previous = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &previous);
    QImage image;
    {
        const RyFramebuffer target(width, height, 0);
        target.bind();
        paintFrame(d->sceneView(width, height, 1.0f), RyViewPainter::MostSamples);
        image = target.toImage();
        glBindFramebuffer(GL_FRAMEBUFFER, GLuint(previous));
    }
    makeCurrent();
    return image;
}

void Ry3DViewport::drawNodeHighlight(RyNode *node)
{
    if (const RyScene *scene = d->scene(); scene && node)
        ryDrawPatches(d->picker.patchesOf(*scene, node, d->manager->sceneRevision()), d->options.accent);
}

void Ry3DViewport::frameNodes(bool selectionOnly)
{
    if (const RyScene *scene = d->scene())
        RyCameraController(d->camera).frame(ryFrameBox(*scene, selectionOnly), size());
}

void Ry3DViewport::setStandardView(StandardView view)
{
    RyCameraController controller(d->camera);
    switch (view) {
    case StandardView::Front:
        controller.setDirection(0, 0);
        break;
    case StandardView::Side:
        controller.setDirection(90, 0);
        break;
    case StandardView::Top:
        controller.setDirection(0, 90);
        break;
    case StandardView::Perspective:
        controller.setOrthographic(false);
        controller.setDirection(24, 7);
        break;
    }
}

void Ry3DViewport::hoverAgain()
{
    d->input.hoverAgain();
}

bool Ry3DViewport::isToolDragging() const
{
    return d->input.isToolDragging();
}

RyViewportCounts Ry3DViewport::counts() const
{
    const RyScenePicture &scene = d->painter.scene();
    return {d->pickPass.passes(), scene.paints(), scene.refinements(), d->framePaints, scene.uploads()};
}
