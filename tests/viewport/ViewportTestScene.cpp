#include "rycore/viewport/RyGL.h"

#include "viewport/ViewportTestScene.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyDrawStyle.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWindow>

namespace {

constexpr int Rings = 5;
constexpr int Corners = 4;

/// A square tube of four rings of quads with lids, 10 wide, one ring every 10 cm.
RyFacetMesh *makeTube()
{
    std::vector<RyVec3> positions;
    for (int ring = 0; ring < Rings; ++ring) {
        for (int corner = 0; corner < Corners; ++corner)
            positions.emplace_back(corner == 0 || corner == 3 ? -5.0f : 5.0f, 10.0f * float(ring),
                                   corner < 2 ? 5.0f : -5.0f);
    }
    std::vector<RyFacet> facets;
    for (int ring = 0; ring + 1 < Rings; ++ring) {
        for (int corner = 0; corner < Corners; ++corner) {
            RyFacet facet;
            const int next = (corner + 1) % Corners;
            const int quad[4] = {ring * 4 + corner, ring * 4 + next, ring * 4 + 4 + next, ring * 4 + 4 + corner};
            std::copy(quad, quad + 4, facet.vertices);
            facets.push_back(facet);
        }
    }
    RyFacet top;
    const int lid[4] = {16, 17, 18, 19};
    std::copy(lid, lid + 4, top.vertices);
    facets.push_back(top);
    auto *mesh = new RyFacetMesh;
    mesh->setPositions(positions);
    mesh->setFacets(facets);
    return mesh;
}

RyBoneBinding *bind(RyBone *bone, int firstVertex, int count)
{
    auto *map = new RyWeightMap(bone->getName());
    std::vector<int> indices;
    for (int i = 0; i < count; ++i)
        indices.push_back(firstVertex + i);
    map->setAffected(Rings * Corners, indices, std::vector<quint16>(size_t(count), RyWeightMap::FullWeight));
    auto *binding = new RyBoneBinding;
    binding->setBone(bone);
    binding->setWeights(map);
    return binding;
}

void drawSquare(const RyVec3 &c, float h)
{
    glBegin(GL_QUADS);
    glVertex3f(c.x - h, c.y - h, c.z);
    glVertex3f(c.x + h, c.y - h, c.z);
    glVertex3f(c.x + h, c.y + h, c.z);
    glVertex3f(c.x - h, c.y + h, c.z);
    glEnd();
}

} // namespace

ViewportTestFigure addBoxFigure(RyScene &scene)
{
    ViewportTestFigure result;
    result.figure = new RyFigure;
    result.figure->setName(QStringLiteral("figure"));
    result.lower = new RyBone;
    result.lower->setName(QStringLiteral("lower"));
    result.upper = new RyBone;
    result.upper->setName(QStringLiteral("upper"));
    result.lower->setEndPoint(RyVec3(0, 20, 0), true);
    result.upper->setOrigin(RyVec3(0, 20, 0), true);
    result.upper->setEndPoint(RyVec3(0, 40, 0), true);
    result.figure->addNodeChild(result.lower);
    result.lower->addNodeChild(result.upper);
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(makeTube()));
    result.figure->setObject(object);
    auto *skin = new RySkinBinding;
    skin->addBoneBinding(bind(result.lower, 0, 8));
    skin->addBoneBinding(bind(result.upper, 8, 12));
    object->addModifier(skin);
    scene.addNode(result.figure);
    return result;
}

void ViewportMouse::send(int type, const QPoint &point, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    QMouseEvent event(QEvent::Type(type), point, m_viewport.mapToGlobal(point), button, m_buttons, modifiers);
    QCoreApplication::sendEvent(m_viewport.windowHandle(), &event);
}

void ViewportMouse::move(const QPoint &point, Qt::KeyboardModifiers modifiers)
{
    send(QEvent::MouseMove, point, Qt::NoButton, modifiers);
}

void ViewportMouse::press(const QPoint &point, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    m_buttons |= button;
    send(QEvent::MouseButtonPress, point, button, modifiers);
}

void ViewportMouse::release(const QPoint &point, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    m_buttons &= ~Qt::MouseButtons(button);
    send(QEvent::MouseButtonRelease, point, button, modifiers);
}

void ViewportMouse::wheel(const QPoint &point, int degrees)
{
    QWheelEvent event(point, m_viewport.mapToGlobal(point), QPoint(), QPoint(0, degrees), m_buttons, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_viewport.windowHandle(), &event);
}

void SquareTool::draw(Ry3DViewport *viewport, const RyDrawStyle &style)
{
    ++draws;
    RyPickTool::draw(viewport, style);
    const bool pick = style.shadeStyle == RyDrawStyle::PickPass;
    if (pick)
        glGetFloatv(GL_LINE_WIDTH, &pickLineWidth);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_DEPTH_TEST);
    for (const Square &square : squares) {
        if (pick)
            glColor3ub(GLubyte(square.id), 0, 128);
        else if (square.id == hovered)
            glColor3ub(255, 255, 0);
        else
            glColor3ub(0, 255, 0);
        drawSquare(square.center, halfSize);
    }
    glPopAttrib();
}

bool SquareTool::mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    calls.append(QStringLiteral("press %1 %2").arg(int(event->button())).arg(int(modifier)));
    if (event->button() == Qt::RightButton) {
        if (dragging)
            event->accept();
        dragging = false;
        return false;
    }
    hovered = viewport->pickOnGizmo(event->pos());
    dragging = hovered != 0;
    return dragging || RyPickTool::mousePress(viewport, event, modifier);
}

bool SquareTool::mouseMove(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier)
{
    calls.append(QStringLiteral("move"));
    return dragging;
}

bool SquareTool::mouseRelease(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier)
{
    calls.append(QStringLiteral("release"));
    dragging = false;
    return true;
}

void SquareTool::cancelDrag()
{
    calls.append(QStringLiteral("cancel"));
    dragging = false;
}

void SquareTool::finishDrag()
{
    calls.append(QStringLiteral("finish"));
    dragging = false;
}

void SquareTool::mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    calls.append(QStringLiteral("over"));
    const int id = viewport->pickOnGizmo(event->pos());
    if (id == 0)
        RyPickTool::mouseOver(viewport, event, modifier);
    if (id == hovered)
        return;
    setHighlightNode(nullptr);
    hovered = id;
    viewport->setToolTipText(id ? QStringLiteral("square %1").arg(id) : QString());
    drawnDataChanged();
}

void BoneListTool::draw(Ry3DViewport *, const RyDrawStyle &style)
{
    const bool pick = style.shadeStyle == RyDrawStyle::PickPass;
    RySkeleton *skeleton = node ? node->getSkeleton() : nullptr;
    if (!skeleton)
        return;
    if (pick) {
        bones.clear();
        skeleton->getAllBones(bones);
    }
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_DEPTH_TEST);
    // All bones of the tree in order; those that the list lacks draw nothing.
    std::vector<RyNode *> nodes;
    skeleton->getNodeChildren(nodes, true);
    for (RyNode *drawn : nodes) {
        const auto place = std::find(bones.begin(), bones.end(), drawn);
        if (place == bones.end() && pick)
            continue;
        if (pick)
            glColor3ub(GLubyte(place - bones.begin() + 47), 0, 128);
        else
            glColor3ub(90, 90, 90);
        drawSquare(drawn->getOrigin(), 0.9f);
    }
    if (pick)
        glColor3ub(GLubyte(handleId), 0, 128);
    if (handleId)
        drawSquare(handle, 0.9f);
    glPopAttrib();
}
