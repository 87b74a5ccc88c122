#include "rycore/io/obj/RyObjOrigin.h"

#include "rycore/io/RyUnitFactor.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>

namespace {

double heightOf(const RyObjFile &file)
{
    if (file.positions.empty())
        return 0.0;
    std::array<double, 3> low = file.positions.front();
    std::array<double, 3> high = low;
    for (const std::array<double, 3> &p : file.positions) {
        for (size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], p[axis]);
            high[axis] = std::max(high[axis], p[axis]);
        }
    }
    const double largest = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
    return high[1] - low[1] > 0.01 * largest ? high[1] - low[1] : largest;
}

/// The file's facets as triangles and quads; polygons of more corners become fans.
RyFacetMesh *makeMesh(const RyObjFile &file, double unit, int *fans)
{
    auto *mesh = new RyFacetMesh;
    std::vector<RyVec3> positions;
    positions.reserve(file.positions.size());
    for (const std::array<double, 3> &p : file.positions)
        positions.emplace_back(float(p[0] * unit), float(p[1] * unit), float(p[2] * unit));
    std::vector<RyFacet> facets;
    std::vector<int> groups;
    facets.reserve(file.facets.size());
    for (const RyObjFile::Facet &polygon : file.facets) {
        const auto corner = [&](int i) { return file.corners[size_t(polygon.firstCorner + i)].vertex; };
        if (polygon.cornerCount == 4) {
            facets.push_back({{corner(0), corner(1), corner(2), corner(3)}, -1});
            groups.push_back(polygon.group);
            continue;
        }
        *fans += polygon.cornerCount > 4;
        for (int i = 1; i + 1 < polygon.cornerCount; ++i) {
            facets.push_back({{corner(0), corner(i), corner(i + 1), -1}, -1});
            groups.push_back(polygon.group);
        }
    }
    mesh->setPositions(std::move(positions));
    mesh->setFacets(std::move(facets));
    for (const QString &group : file.groups)
        mesh->createFaceGroup(group);
    mesh->setGroupsOfFacets(groups);
    return mesh;
}

/// `places` of the names in the file's list of groups.
void appendMesh(RyObjFile &file, const RyNode &node, double unit, QHash<QString, int> &places)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh)
        return;
    const int first = int(file.positions.size());
    for (const RyVec3 &p : mesh->getPositions())
        file.positions.push_back({p.x / unit, p.y / unit, p.z / unit});
    file.objects.push_back(node.getName());
    const int object = int(file.objects.size()) - 1;
    std::vector<int> groupPlace;
    for (int g = 0; g < mesh->getNumFaceGroups(); ++g) {
        const QString &name = mesh->getFaceGroup(g)->getName();
        const auto known = places.constFind(name);
        groupPlace.push_back(known != places.constEnd() ? *known : int(file.groups.size()));
        if (known != places.constEnd())
            continue;
        places.insert(name, groupPlace.back());
        file.groups.push_back(name);
    }
    for (const RyFacet &facet : mesh->getFacets()) {
        RyObjFile::Facet polygon;
        polygon.firstCorner = int(file.corners.size());
        polygon.cornerCount = facet.count();
        polygon.group = facet.group < 0 ? -1 : groupPlace[size_t(facet.group)];
        polygon.object = object;
        for (int corner = 0; corner < facet.count(); ++corner)
            file.corners.push_back({first + facet.vertices[corner], -1, -1});
        file.facets.push_back(polygon);
    }
}

} // namespace

std::unique_ptr<RyObjOrigin> RyObjOrigin::read(const QString &path, double unit, std::vector<RyRef<RyNode>> *tops,
                                               QString *error, QStringList *messages)
{
    auto origin = std::make_unique<RyObjOrigin>();
    origin->m_file = RyObjFile::read(path, error);
    if (!origin->m_file)
        return nullptr;
    origin->m_path = path;
    const double stated = origin->m_file->statedUnit;
    origin->m_unit = unit > 0.0 ? unit : stated > 0.0 ? stated : ryUnitFactor(1.0, heightOf(*origin->m_file));
    int fans = 0;
    auto *mesh = makeMesh(*origin->m_file, origin->m_unit, &fans);
    auto *shape = new RyFacetShape(mesh);
    auto *object = new RyObject;
    object->addShape(shape);
    auto *prop = new RyNode;
    prop->setName(QFileInfo(path).completeBaseName());
    object->setName(prop->getName());
    prop->setObject(object);
    const RyBox3 box = mesh->getBoundingBox();
    prop->setOrigin({box.getCenter().x, box.getMin().y, box.getCenter().z}, true);
    prop->setEndPoint({box.getCenter().x, box.getMax().y, box.getCenter().z}, true);
    origin->m_node = prop;
    origin->m_loadedPositions = mesh->getPositions();
    tops->emplace_back(prop);
    if (messages) {
        messages->append(origin->m_file->warnings);
        if (fans > 0)
            messages->append(QStringLiteral("%1 polygons of more than four corners are shown as triangles").arg(fans));
    }
    return origin;
}

bool RyObjOrigin::save(const RyScene &scene, const QString &path, QString *error, QStringList *messages)
{
    const auto *source = dynamic_cast<const RyObjOrigin *>(scene.getOrigin());
    const std::vector<RyNode *> nodes = scene.getNodesInTreeOrder();
    const bool hasBones = std::any_of(nodes.begin(), nodes.end(),
                                      [](const RyNode *node) { return qobject_cast<const RyBone *>(node) != nullptr; });
    if (hasBones && messages)
        messages->append(
            QStringLiteral("%1: this format has no place for bones and weights; only the meshes were written")
                .arg(path));

    const auto meshes = std::count_if(nodes.begin(), nodes.end(), [](const RyNode *node) { return node->getObject(); });
    const auto *shape = source && source->m_node
                            ? qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(source->m_node))
                            : nullptr;
    if (shape && meshes == 1) {
        RyObjFile file = *source->m_file;
        const std::vector<RyVec3> &positions = shape->getFacetMesh()->getPositions();
        for (size_t i = 0; i < positions.size() && i < file.positions.size(); ++i) {
            if (positions[i] == source->m_loadedPositions[i])
                continue;
            file.positions[i] = {positions[i].x / source->m_unit, positions[i].y / source->m_unit,
                                 positions[i].z / source->m_unit};
        }
        return file.write(path, error);
    }
    RyObjFile file;
    const double unit = scene.getOrigin() ? scene.getOrigin()->unitFactor() : 1.0;
    QHash<QString, int> groupPlaces;
    for (const RyNode *node : nodes)
        appendMesh(file, *node, unit, groupPlaces);
    if (file.positions.empty()) {
        if (error)
            *error = QStringLiteral("%1: the scene holds no mesh, and this format nothing else").arg(path);
        return false;
    }
    return file.write(path, error);
}
