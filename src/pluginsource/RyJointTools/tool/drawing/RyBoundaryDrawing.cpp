#include "pluginsource/RyJointTools/tool/drawing/RyBoundaryDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"

#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <GL/gl.h>

static constexpr int linesStyle = 1;
static constexpr float boundaryAlpha = 0.4f;

static float pointSize(float distance)
{
    return distance <= 100.0f ? 8.0f : distance <= 200.0f ? 6.0f : distance <= 300.0f ? 4.0f : 2.0f;
}

static void appendEdges(const RyFacetMesh &mesh, int facetIndex, int group, std::vector<int> &edges)
{
    const RyFacet &facet = mesh.getFacet(facetIndex);
    for (int edge = 0; edge < facet.count(); ++edge) {
        const int neighbour = mesh.getNeighbour(facetIndex, edge);
        if (neighbour >= 0 && (group < 0 || mesh.getFacet(neighbour).group == group))
            continue;
        edges.push_back(facet.vertices[edge]);
        edges.push_back(facet.vertices[(edge + 1) % facet.count()]);
    }
}

std::vector<int> RyBoundaryDrawing::findEdges(const RyFacetMesh &mesh, const RyFaceGroup *group)
{
    std::vector<int> edges;
    if (!group) {
        for (int facet = 0; facet < mesh.getNumFacets(); ++facet)
            appendEdges(mesh, facet, -1, edges);
        return edges;
    }
    const int groupIndex = mesh.findFaceGroupIndex(group->getName());
    const RyIndexList &facets = group->getFacets();
    for (int i = 0; i < facets.count(); ++i)
        appendEdges(mesh, facets.getIndex(i), groupIndex, edges);
    return edges;
}

const std::vector<int> &RyBoundaryDrawing::edgesOf(const RyFacetMesh &mesh, const RyFaceGroup *group) const
{
    const int index = group ? mesh.findFaceGroupIndex(group->getName()) : -1;
    if (m_edges.mesh != &mesh || m_edges.revision != mesh.revision() || m_edges.groupRevision != mesh.groupRevision() ||
        m_edges.group != index)
        m_edges = {&mesh, mesh.revision(), mesh.groupRevision(), index, findEdges(mesh, group)};
    return m_edges.vertices;
}

void RyBoundaryDrawing::draw(const RyNode &node) const
{
    if (m_context.pickPass)
        return;
    const RySkeleton *skeleton = node.getSkeleton();
    const RyNode *owner = node.getObject() || !skeleton ? &node : skeleton;
    RyObject *object = owner->getObject();
    const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(owner));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!object || !mesh || mesh->getNumVertices() == 0)
        return;
    const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    const QString groupName = map ? map->findGroupForNode(&node) : QString();
    const RyFaceGroup *group = groupName.isEmpty() ? nullptr : mesh->findFaceGroup(groupName);
    const std::vector<int> &edges = edgesOf(*mesh, group);
    const std::vector<RyVec3> &positions = object->getDeformedPositions();
    if (edges.empty() || positions.size() != size_t(mesh->getNumVertices()))
        return;
    const RyMatrix4 toWorld = owner->worldMap().toMatrix4();

    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_POINT_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    const QColor &color = m_context.display.boundaryColor;
    const bool asLines = m_context.display.boundaryStyle == linesStyle;
    if (!asLines)
        glPointSize(pointSize(distanceFromCamera(m_context, toWorld.multVecMatrix(positions.front()))));
    glPushMatrix();
    glMultMatrixf(toWorld.data());
    glBegin(asLines ? GL_LINES : GL_POINTS);
    // Channels of 0 to 255 as they are: each of them is either off or full.
    glColor4f(GLfloat(color.red()), GLfloat(color.green()), GLfloat(color.blue()), boundaryAlpha);
    for (int vertex : edges)
        putVertex(positions[size_t(vertex)]);
    glEnd();
    glPopMatrix();
    glPopAttrib();
}
