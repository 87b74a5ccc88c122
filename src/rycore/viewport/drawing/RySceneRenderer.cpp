#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RySceneRenderer.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/drawing/RyObjectDrawing.h"
#include "rycore/viewport/drawing/RySceneShaders.h"
#include "rycore/viewport/drawing/RyShader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

/// Nodes whose object is to be drawn.
std::vector<const RyNode *> drawnNodes(const RyScene &scene)
{
    std::vector<const RyNode *> nodes;
    for (const RyNode *node : scene.getNodes()) {
        if (node->getObject() && node->isVisible())
            nodes.push_back(node);
    }
    return nodes;
}

void setColor(const RyShader &shader, const char *name, const QColor &color)
{
    shader.set(name, float(color.redF()), float(color.greenF()), float(color.blueF()));
}

} // namespace

RySceneRenderer::RySceneRenderer() = default;

RySceneRenderer::~RySceneRenderer()
{
    abandon();
}

void RySceneRenderer::abandon()
{
    for (auto *shader : {&m_background, &m_grid, &m_surface}) {
        if (*shader)
            (*shader)->abandon();
        shader->reset();
    }
    for (auto &[object, drawing] : m_objects)
        drawing->abandon();
    m_droppedUploads = uploads();
    m_objects.clear();
    m_dataRevision = 0;
}

void RySceneRenderer::release()
{
    m_droppedUploads = uploads();
    m_objects.clear();
    m_background.reset();
    m_grid.reset();
    m_surface.reset();
    m_dataRevision = 0;
}

int RySceneRenderer::uploads() const
{
    int sum = m_droppedUploads;
    for (const auto &[object, drawing] : m_objects)
        sum += drawing->uploads();
    return sum;
}

void RySceneRenderer::checkContext()
{
    const quintptr context = RyOffscreenContext::currentKey();
    if (context != m_context)
        abandon();
    m_context = context;
    if (!m_surface) {
        using namespace RySceneShaders;
        m_background = std::make_unique<RyShader>(BackgroundVertex, BackgroundFragment);
        m_grid = std::make_unique<RyShader>(GridVertex, GridFragment);
        m_surface = std::make_unique<RyShader>(SurfaceVertex, SurfaceFragment);
    }
}

void RySceneRenderer::render(const RyScene &scene, const RyViewMatrices &matrices, const RyRenderOptions &options,
                             int width, int height, quint64 dataRevision)
{
    checkContext();
    updateObjects(scene, dataRevision);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glViewport(0, 0, width, height);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_LIGHTING);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDepthMask(GL_TRUE);
    glClear(GL_DEPTH_BUFFER_BIT);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    drawBackground(options);
    matrices.load();
    if (options.showGrid)
        drawGrid(matrices, options);
    drawObjects(scene, matrices, options);
    drawAxes(matrices, options);
    RyShader::useNone();
    glPopAttrib();
}

void RySceneRenderer::updateObjects(const RyScene &scene, quint64 dataRevision)
{
    if (dataRevision == m_dataRevision)
        return;
    m_dataRevision = dataRevision;
    std::unordered_map<const RyObject *, std::unique_ptr<RyObjectDrawing>> kept;
    for (const RyNode *node : drawnNodes(scene)) {
        RyObject *object = node->getObject();
        auto found = m_objects.find(object);
        const bool known = found != m_objects.end() && found->second->object() == object;
        auto drawing = known ? std::move(found->second) : std::make_unique<RyObjectDrawing>(object);
        if (known)
            m_objects.erase(found);
        if (drawing->update())
            kept.emplace(object, std::move(drawing));
    }
    for (const auto &[object, drawing] : m_objects)
        m_droppedUploads += drawing->uploads();
    m_objects = std::move(kept);
}

void RySceneRenderer::drawBackground(const RyRenderOptions &options)
{
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    m_background->use();
    setColor(*m_background, "top", options.backgroundTop);
    setColor(*m_background, "bottom", options.backgroundBottom);
    glRectf(-1, -1, 1, 1);
    RyShader::useNone();
}

void RySceneRenderer::drawGrid(const RyViewMatrices &matrices, const RyRenderOptions &options)
{
    // Around the place of the ground below the middle of the picture.
    const RyLine3 middle = matrices.ray(QPointF(matrices.width() * 0.5, matrices.height() * 0.5));
    const RyVec3 eye = matrices.view().inverse().translation();
    const float reach =
        std::clamp(std::abs(eye.y) * 8.0f + (eye - RyVec3(0, eye.y, 0)).length() * 1.5f, 300.0f, 20000.0f);
    const RyVec3 ahead = eye + middle.getDirection() * (reach * 0.25f);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_FALSE);
    glEnable(GL_BLEND);
    m_grid->use();
    setColor(*m_grid, "color", options.grid);
    m_grid->set("radius", reach);
    m_grid->set("center", ahead.x, ahead.z);
    const float corners[4][3] = {{ahead.x - reach, 0, ahead.z - reach},
                                 {ahead.x - reach, 0, ahead.z + reach},
                                 {ahead.x + reach, 0, ahead.z + reach},
                                 {ahead.x + reach, 0, ahead.z - reach}};
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, corners);
    glDrawArrays(GL_QUADS, 0, 4);
    glDisableClientState(GL_VERTEX_ARRAY);
    RyShader::useNone();
    glDepthMask(GL_TRUE);
}

void RySceneRenderer::drawObjects(const RyScene &scene, const RyViewMatrices &matrices, const RyRenderOptions &options)
{
    const std::vector<const RyNode *> nodes = drawnNodes(scene);
    const auto forEach = [&](const auto &draw) {
        for (const RyNode *node : nodes) {
            const auto found = m_objects.find(node->getObject());
            if (found == m_objects.end())
                continue;
            glPushMatrix();
            glMultMatrixf(node->worldMap().toMatrix4().data());
            draw(*found->second);
            glPopMatrix();
        }
    };
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    if (options.wireframe) {
        // Room for the edges. Not at other times: it pushes the outline behind the far side of the figure.
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(0.6f, 1.0f);
    }
    m_surface->use();
    const RyVec3 up = matrices.view().multDirMatrix(RyVec3(0, 1, 0));
    m_surface->set("up", up.x, up.y, up.z);
    m_surface->set("picture", 0);
    m_surface->set("alpha", options.seeThrough ? options.seeThroughAlpha : 1.0f);
    if (options.seeThrough) {
        // Depth first, so that only the nearest surface is blended over the background and no inner side shows.
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        forEach([](const RyObjectDrawing &drawing) { drawing.drawDepth(); });
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glEnable(GL_BLEND);
    } else {
        glDisable(GL_BLEND);
    }
    const float clay[3] = {float(options.clay.redF()), float(options.clay.greenF()), float(options.clay.blueF())};
    forEach([&](const RyObjectDrawing &drawing) { drawing.drawSurfaces(*m_surface, clay); });
    RyShader::useNone();
    glDisable(GL_POLYGON_OFFSET_FILL);
    if (options.wireframe) {
        glEnable(GL_BLEND);
        glDepthMask(GL_FALSE);
        glLineWidth(1.0f);
        const QColor &wire = options.wire;
        glColor4f(float(wire.redF()), float(wire.greenF()), float(wire.blueF()), 0.42f);
        forEach([](const RyObjectDrawing &drawing) { drawing.drawEdges(); });
    }
}

void RySceneRenderer::drawAxes(const RyViewMatrices &matrices, const RyRenderOptions &options)
{
    // In pixels from the upper right corner; the letters are strokes in a box of 1 by 1.
    static const std::array<std::vector<float>, 3> Letters = {
        {{0, 0, 1, 1, 0, 1, 1, 0},
         {0, 1, 0.5f, 0.5f, 1, 1, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0},
         {0, 1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 0}}};
    static const float Colors[3][3] = {{0.86f, 0.33f, 0.31f}, {0.45f, 0.72f, 0.33f}, {0.36f, 0.55f, 0.90f}};
    if (!options.showAxes)
        return;
    const float unit = options.pixelRatio;
    const auto width = float(matrices.width());
    const auto height = float(matrices.height());
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, 0, height, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glLineWidth(1.8f * unit);
    glEnableClientState(GL_VERTEX_ARRAY);
    const float cx = width - 44 * unit;
    const float cy = height - 44 * unit;
    std::array<int, 3> order{0, 1, 2};
    std::array<RyVec3, 3> directions;
    for (int axis = 0; axis < 3; ++axis)
        directions[size_t(axis)] = matrices.view().multDirMatrix(RyVec3::axis(axis));
    std::sort(order.begin(), order.end(),
              [&](int a, int b) { return directions[size_t(a)].z < directions[size_t(b)].z; });
    for (int axis : order) {
        const RyVec3 &d = directions[size_t(axis)];
        const float tipX = cx + d.x * 24 * unit;
        const float tipY = cy + d.y * 24 * unit;
        glColor4f(Colors[axis][0], Colors[axis][1], Colors[axis][2], d.z < -0.2f ? 0.55f : 1.0f);
        std::vector<float> points{cx, cy, tipX, tipY};
        const std::vector<float> &letter = Letters[size_t(axis)];
        for (size_t i = 0; i < letter.size(); i += 2) {
            points.push_back(cx + d.x * 34 * unit + (letter[i] - 0.5f) * 7 * unit);
            points.push_back(cy + d.y * 34 * unit + (letter[i + 1] - 0.5f) * 8 * unit);
        }
        glVertexPointer(2, GL_FLOAT, 0, points.data());
        glDrawArrays(GL_LINES, 0, int(points.size() / 2));
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    matrices.load();
}
