#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyViewportPrivate.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyGLUtility.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyViewTool.h"

#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int Samples = 4;

QGLFormat viewportFormat()
{
    QGLFormat format;
    format.setDepth(true);
    format.setSampleBuffers(true);
    format.setSamples(Samples);
    return format;
}

} // namespace

Ry3DViewport::Ry3DViewport(RyViewportMgr *manager, QWidget *parent)
    : QGLWidget(viewportFormat(), parent), d(std::make_unique<Private>(*this))
{
    d->manager = manager;
    d->camera = new RyCamera;
    connect(d->camera.get(), &RyNode::poseChanged, this, [this] { update(); });
    connect(d->camera.get(), &RyCamera::lensChanged, this, [this] { update(); });
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
    if (d->pictureContext != 0) {
        makeCurrent();
        if (RyOffscreenContext::currentKey() == d->pictureContext) {
            d->renderer.release();
        } else {
            d->pickPass.abandon();
            for (auto *buffer : {&d->picture, &d->pictureDraft}) {
                if (*buffer)
                    (*buffer)->abandon();
            }
        }
        d->pickPass.release();
        d->picture.reset();
        d->pictureDraft.reset();
    }
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
    const quintptr context = RyOffscreenContext::currentKey();
    if (context == 0)
        return;
    const float ratio = float(devicePixelRatioF());
    RyGLUtility::setDevicePixelRatio(ratio);
    glViewport(0, 0, std::lround(float(width()) * ratio), std::lround(float(height()) * ratio));
    matrices().load();
    d->pictureContext = context;
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
        if (d->pictureContext == 0)
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
    const qreal ratio = devicePixelRatioF();
    const quintptr context = RyOffscreenContext::currentKey();
    d->pictureContext = context;
    renderFrame(int(std::lround(width() * ratio)), int(std::lround(height() * ratio)), float(ratio));
    ++d->framePaints;
    if (std::exchange(d->paintAgain, false)) {
        // Some drivers learn of a window's new size only after they have shown a frame in the old one.
        QMetaObject::invokeMethod(
            this, [this] { update(); }, Qt::QueuedConnection);
    }
    emit painted();
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

void Ry3DViewport::renderFrame(int width, int height, float devicePixelRatio)
{
    GLint target = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &target);
    RyViewTool *tool = d->tool();
    Private::PictureKey key;
    key.matrices = RyViewMatrices(*d->camera, width, height);
    key.options = d->options;
    key.options.pixelRatio = devicePixelRatio;
    key.options.seeThrough = d->options.seeThrough || (tool && tool->showsInsideFigures());
    key.sceneRevision = d->manager ? d->manager->sceneRevision() : 1;
    key.context = RyOffscreenContext::currentKey();
    if (d->picture && d->pictureKey.context != key.context) {
        d->picture->abandon();
        d->picture.reset();
        if (d->pictureDraft)
            d->pictureDraft->abandon();
        d->pictureDraft.reset();
        d->pickPass.abandon();
    }
    RyGLUtility::setDevicePixelRatio(devicePixelRatio);
    if (!d->picture || !(key == d->pictureKey)) {
        if (!d->picture || d->picture->width() != width || d->picture->height() != height) {
            d->picture = std::make_unique<RyFramebuffer>(width, height, 0);
            d->pictureDraft = std::make_unique<RyFramebuffer>(width, height, RyFramebuffer::supportedSamples(Samples));
            if (!d->pictureDraft->isComplete())
                d->pictureDraft = std::make_unique<RyFramebuffer>(width, height, 0);
        }
        d->pictureDraft->bind();
        if (const RyScene *scene = d->scene())
            d->renderer.render(*scene, key.matrices, key.options, width, height, key.sceneRevision);
        d->pictureDraft->resolveInto(*d->picture);
        d->pictureKey = key;
        ++d->scenePaints;
        glBindFramebuffer(GL_FRAMEBUFFER, GLuint(target));
    }
    glViewport(0, 0, width, height);
    drawSceneCopy(width, height);
    key.matrices.load();
    if (!tool)
        return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_LIGHTING);
    glEnable(GL_MULTISAMPLE);
    glLineWidth(1.5f * devicePixelRatio);
    glPointSize(4.0f * devicePixelRatio);
    tool->draw(this, RyDrawStyle(RyDrawStyle::Textured));
    glPopAttrib();
    key.matrices.load();
}

void Ry3DViewport::drawSceneCopy(int width, int height) const
{
    static const float Corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    static const float Coordinates[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, d->picture->texture());
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, Corners);
    glTexCoordPointer(2, GL_FLOAT, 0, Coordinates);
    glDrawArrays(GL_QUADS, 0, 4);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glPopAttrib();
    glDepthMask(GL_TRUE);
    glClear(GL_DEPTH_BUFFER_BIT);
}

QImage Ry3DViewport::grabPicture(int width, int height)
{
    makeCurrent();
    if (d->pictureContext == 0)
        return {};
    GLint previous = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &previous);
    QImage image;
    {
        auto draft = std::make_unique<RyFramebuffer>(width, height, RyFramebuffer::supportedSamples(Samples));
        if (!draft->isComplete())
            draft = std::make_unique<RyFramebuffer>(width, height, 0);
        const RyFramebuffer resolved(width, height, 0);
        draft->bind();
        renderFrame(width, height, 1.0f);
        draft->resolveInto(resolved);
        image = resolved.toImage();
        glBindFramebuffer(GL_FRAMEBUFFER, GLuint(previous));
    }
    makeCurrent();
    return image;
}

void Ry3DViewport::drawNodeHighlight(RyNode *node)
{
    const RyScene *scene = d->scene();
    if (!scene || !node)
        return;
    const auto &patches = d->picker.patchesOf(*scene, node, d->manager->sceneRevision());
    if (patches.empty())
        return;
    const QColor &tint = d->options.accent;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glEnableClientState(GL_VERTEX_ARRAY);
    for (const RyNodePicker::Patch &patch : patches) {
        glPushMatrix();
        glMultMatrixf(patch.meshNode->worldMap().toMatrix4().data());
        glVertexPointer(3, GL_FLOAT, sizeof(RyVec3), patch.positions.data());
        // Depth first: the tint covers every pixel once.
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(1.0f, 1.0f);
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        glDrawElements(GL_TRIANGLES, int(patch.triangles.size()), GL_UNSIGNED_INT, patch.triangles.data());
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glColor4f(float(tint.redF()), float(tint.greenF()), float(tint.blueF()), 0.13f);
        glDrawElements(GL_TRIANGLES, int(patch.triangles.size()), GL_UNSIGNED_INT, patch.triangles.data());
        glDisable(GL_POLYGON_OFFSET_FILL);
        glColor4f(float(tint.redF()), float(tint.greenF()), float(tint.blueF()), 0.75f);
        glDrawElements(GL_LINES, int(patch.border.size()), GL_UNSIGNED_INT, patch.border.data());
        glPopMatrix();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glPopAttrib();
    glClear(GL_DEPTH_BUFFER_BIT);
}

RyBox3 Ry3DViewport::frameBox(bool selectionOnly) const
{
    RyBox3 box;
    const RyScene *scene = d->scene();
    if (!scene)
        return box;
    const bool selection = selectionOnly && scene->getNumSelectedNodes() > 0;
    for (RyNode *node : selection ? scene->selectedNodeListIterator() : scene->getNodes()) {
        if (!node->isVisible())
            continue;
        if (node->getObject()) {
            const RyAffine &map = node->worldMap();
            for (const RyVec3 &p : node->getObject()->getDeformedPositions())
                box.include(map.mapPoint(p));
        } else if (qobject_cast<RyBone *>(node)) {
            const RyVec3 a = node->getWSPos();
            const RyVec3 b = node->getWSEndPoint();
            const float margin = selection ? std::max((b - a).length() * 0.75f, 1.0f) : 0.0f;
            for (const RyVec3 &p : {a, b}) {
                box.include(p + RyVec3(margin, margin, margin));
                box.include(p - RyVec3(margin, margin, margin));
            }
        } else if (selection) {
            for (RyNode *child : node->nodeChildrenIterator())
                box.include(child->getWSPos());
        }
    }
    return box;
}

void Ry3DViewport::frameNodes(bool selectionOnly)
{
    RyCameraController(d->camera).frame(frameBox(selectionOnly), size());
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
    return {d->pickPass.passes(), d->scenePaints, d->framePaints, d->renderer.uploads()};
}
