#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RySceneRenderer.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/drawing/RyObjectDrawing.h"
#include "rycore/viewport/drawing/RySceneShaders.h"
#include "rycore/viewport/drawing/RySceneView.h"
#include "rycore/viewport/drawing/RyShader.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

RySceneRenderer::RySceneRenderer() = default;

RySceneRenderer::~RySceneRenderer()
{
    abandon();
}

void RySceneRenderer::forget()
{
    m_droppedUploads = uploads();
    m_drawn.clear();
    m_objects.clear();
    m_surface.reset();
    m_dataRevision = 0;
}

void RySceneRenderer::abandon()
{
    if (m_surface)
        m_surface->abandon();
    for (auto &[object, drawing] : m_objects)
        drawing->abandon();
    forget();
}

void RySceneRenderer::release()
{
    forget();
}

int RySceneRenderer::uploads() const
{
    int sum = m_droppedUploads;
    for (const auto &[object, drawing] : m_objects)
        sum += drawing->uploads();
    return sum;
}

RyObjectDrawing &RySceneRenderer::drawingOf(RyObject *object)
{
    std::unique_ptr<RyObjectDrawing> &drawing = m_objects[object];
    if (drawing && drawing->object() != object) // another object has come to lie at the place of one that is gone
        m_droppedUploads += drawing->uploads();
    if (!drawing || drawing->object() != object)
        drawing = std::make_unique<RyObjectDrawing>(object);
    return *drawing;
}

quint64 RySceneRenderer::update(const RyScene &scene, quint64 dataRevision)
{
    if (dataRevision == m_dataRevision)
        return m_content;
    m_dataRevision = dataRevision;
    bool isOther = false;
    std::vector<Drawn> drawn;
    std::unordered_set<const RyObject *> used;
    for (const RyNode *node : scene.getNodes()) {
        RyObject *object = node->getObject();
        if (!object || !node->isVisible())
            continue;
        RyObjectDrawing &drawing = drawingOf(object);
        const auto update = drawing.update();
        if (update == RyObjectDrawing::Update::Nothing)
            continue;
        isOther = isOther || update == RyObjectDrawing::Update::Changed;
        used.insert(object);
        drawn.push_back({node->worldMap().toMatrix4(), &drawing});
    }
    for (auto each = m_objects.begin(); each != m_objects.end();) {
        if (used.count(each->first)) {
            ++each;
            continue;
        }
        m_droppedUploads += each->second->uploads();
        each = m_objects.erase(each);
    }
    if (isOther || drawn != m_drawn)
        ++m_content;
    m_drawn = std::move(drawn);
    return m_content;
}

bool RySceneRenderer::drawSurfaces(const RySceneView &view, Progress &progress, int mostTriangles)
{
    if (!m_surface)
        m_surface = std::make_unique<RyShader>(RySceneShaders::SurfaceVertex, RySceneShaders::SurfaceFragment);
    const RyRenderOptions &options = view.options;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDisable(GL_BLEND);
    if (options.wireframe) {
        // Room for the edges. Not at other times: it pushes the outline behind the far side of the figure.
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(0.6f, 1.0f);
    }
    m_surface->use();
    const RyVec3 up = view.matrices.view().multDirMatrix(RyVec3(0, 1, 0));
    m_surface->set("up", up.x, up.y, up.z);
    m_surface->set("picture", 0);
    m_surface->set("cover", options.seeThrough ? options.seeThroughAlpha : 1.0f);
    const float clay[3] = {float(options.clay.redF()), float(options.clay.greenF()), float(options.clay.blueF())};
    while (progress.object < m_drawn.size() && mostTriangles > 0) {
        const Drawn &drawn = m_drawn[progress.object];
        const int left = drawn.drawing->triangleCount() - progress.triangle;
        const int count = std::min(left, mostTriangles);
        glPushMatrix();
        glMultMatrixf(drawn.map.data());
        drawn.drawing->drawSurfaces(*m_surface, clay, {progress.triangle, count});
        glPopMatrix();
        mostTriangles -= count;
        progress =
            count == left ? Progress{progress.object + 1, 0} : Progress{progress.object, progress.triangle + count};
    }
    RyShader::useNone();
    glPopAttrib();
    return progress.object >= m_drawn.size();
}

void RySceneRenderer::drawEdges(const RySceneView &view) const
{
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_FALSE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLineWidth(1.0f);
    const QColor &wire = view.options.wire;
    glColor4f(float(wire.redF()), float(wire.greenF()), float(wire.blueF()), 0.42f);
    for (const Drawn &drawn : m_drawn) {
        glPushMatrix();
        glMultMatrixf(drawn.map.data());
        drawn.drawing->drawEdges();
        glPopMatrix();
    }
    glPopAttrib();
}
