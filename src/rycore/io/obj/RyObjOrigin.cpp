#include "rycore/io/obj/RyObjOrigin.h"

#include "rycore/io/RySafeFile.h"
#include "rycore/io/RyUnitFactor.h"
#include "rycore/io/gltf/save/RyGltfJoin.h"
#include "rycore/io/obj/RyObjLooks.h"
#include "rycore/io/obj/RyObjMeshBuilder.h"
#include "rycore/io/obj/RyObjSceneWriter.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

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
    return ryFigureHeight(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
}

/// Whether the mesh still has the facets and groups of the file.
bool hasGroupsOf(const RyObjFile &file, const RyFacetMesh &mesh)
{
    if (mesh.getNumFaceGroups() != int(file.groups.size()))
        return false;
    for (int g = 0; g < mesh.getNumFaceGroups(); ++g) {
        if (mesh.getFaceGroup(g)->getName() != file.groups[size_t(g)])
            return false;
    }
    int facet = 0;
    for (const RyObjFile::Facet &polygon : file.facets) {
        const int count = polygon.cornerCount == 4 ? 1 : polygon.cornerCount - 2;
        for (const int end = facet + count; facet < end; ++facet) {
            if (facet >= mesh.getNumFacets() || mesh.getFacet(facet).group != polygon.group)
                return false;
        }
    }
    return facet == mesh.getNumFacets();
}

/// What the scene has and this format has no place for.
QStringList lostParts(const RyScene &scene)
{
    QStringList parts;
    const std::vector<RyNode *> nodes = scene.getNodesInTreeOrder();
    if (std::any_of(nodes.begin(), nodes.end(), [](const RyNode *node) { return qobject_cast<const RyBone *>(node); }))
        parts << QStringLiteral("bones") << QStringLiteral("weights");
    const auto hasMorphs = [](const RyNode *node) {
        const RyShape *shape = RyShape::getCurrentShapeForNode(node);
        return shape && !shape->getMorphs().empty();
    };
    if (std::any_of(nodes.begin(), nodes.end(), hasMorphs))
        parts << QStringLiteral("morphs");
    const std::vector<const RyGltfOrigin *> sources = RyGltfJoin::liveOrigins(scene);
    if (std::any_of(sources.begin(), sources.end(),
                    [](const RyGltfOrigin *source) { return !source->document->model().animationNames.empty(); }))
        parts << QStringLiteral("clips");
    return parts;
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
    RyObjLooks looks(QFileInfo(path).absolutePath(), messages);
    for (const QString &library : origin->m_file->materialLibraries)
        looks.readLibraries(library);
    RyObjMeshBuilder builder(*origin->m_file, origin->m_unit, looks);
    RyFacetShape *shape = builder.makeShape();
    const RyFacetMesh *mesh = shape->getFacetMesh();
    auto *object = new RyObject;
    object->addShape(shape);
    auto *prop = new RyNode;
    prop->setName(QFileInfo(path).completeBaseName());
    object->setName(prop->getName());
    prop->setObject(object);
    const RyBox3 box = mesh->getBoundingBox();
    prop->setOrigin({box.getCenter().x, box.getMin().y, box.getCenter().z}, true);
    prop->setEndPoint({box.getCenter().x, box.getMax().y, box.getCenter().z}, true);
    origin->m_shape = shape;
    origin->m_companions = looks.files();
    origin->m_loadedPositions = mesh->getPositions();
    tops->emplace_back(prop);
    if (messages) {
        messages->append(origin->m_file->warnings);
        if (builder.foldedCount() > 0) {
            messages->append(QStringLiteral("%1 polygons of more than four corners are bent so that the triangles they "
                                            "are shown as fold over")
                                 .arg(builder.foldedCount()));
        }
    }
    return origin;
}

RyObjOrigin::Kept RyObjOrigin::keep(const RyScene &scene) const
{
    Kept kept{m_path, m_unit, m_file->toBytes(), m_companions, -1};
    const std::vector<RyNode *> nodes = scene.getNodesInTreeOrder();
    for (size_t i = 0; m_shape && i < nodes.size(); ++i) {
        if (RyShape::getCurrentShapeForNode(nodes[i]) == m_shape)
            kept.node = int(i);
    }
    return kept;
}

std::unique_ptr<RyObjOrigin> RyObjOrigin::makeAgain(const Kept &kept, const std::vector<RyNode *> &nodes)
{
    auto origin = std::make_unique<RyObjOrigin>();
    QString error;
    origin->m_file = RyObjFile::parse(kept.text, kept.path, &error);
    if (!origin->m_file)
        return nullptr;
    origin->m_path = kept.path;
    origin->m_unit = kept.unit;
    origin->m_companions = kept.companions;
    RyObjLooks noLooks(QString(), nullptr);
    const std::unique_ptr<RyFacetShape> asRead(RyObjMeshBuilder(*origin->m_file, kept.unit, noLooks).makeShape());
    origin->m_loadedPositions = asRead->getFacetMesh()->getPositions();
    if (kept.node >= 0 && size_t(kept.node) < nodes.size())
        origin->m_shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(nodes[size_t(kept.node)]));
    return origin;
}

bool RyObjOrigin::save(const RyScene &scene, const QString &path, QString *error, QStringList *messages)
{
    const QStringList lost = lostParts(scene);
    if (!lost.isEmpty() && messages) {
        const QString all = lost.mid(0, lost.size() - 1).join(QStringLiteral(", "));
        messages->append(QStringLiteral("%1: this format has no place for %2; only the meshes were written")
                             .arg(path, all.isEmpty() ? lost.last() : all + QStringLiteral(" and ") + lost.last()));
    }
    const auto *source = dynamic_cast<const RyObjOrigin *>(scene.getOrigin());
    if (source && source->isOnlyMeshOf(scene))
        return source->saveText(path, error);
    return RyObjSceneWriter(scene.getOrigin() ? scene.getOrigin()->unitFactor() : 1.0).write(scene, path, error);
}

/// Whether the scene shows the file's mesh, facet by facet, and no other.
bool RyObjOrigin::isOnlyMeshOf(const RyScene &scene) const
{
    if (!m_shape || !m_shape->getFacetMesh() || !hasGroupsOf(*m_file, *m_shape->getFacetMesh()) ||
        m_shape->getFacetMesh()->getNumVertices() != int(m_loadedPositions.size()))
        return false;
    bool isShown = false;
    for (const RyNode *node : scene.getNodesInTreeOrder()) {
        if (node->getObject() && RyShape::getCurrentShapeForNode(node) != m_shape)
            return false;
        isShown = isShown || node->getObject();
    }
    return isShown;
}

bool RyObjOrigin::saveText(const QString &path, QString *error) const
{
    if (!copyCompanions(path, error))
        return false;
    RyObjFile file = *m_file;
    const std::vector<RyVec3> &positions = m_shape->getFacetMesh()->getPositions();
    for (size_t i = 0; i < positions.size() && i < file.positions.size(); ++i) {
        if (positions[i] == m_loadedPositions[i])
            continue;
        file.positions[i] = {positions[i].x / m_unit, positions[i].y / m_unit, positions[i].z / m_unit};
    }
    return file.write(path, error);
}

/// In another folder the text needs its libraries and pictures as well; what is there already stays.
bool RyObjOrigin::copyCompanions(const QString &path, QString *error) const
{
    const QDir from(QFileInfo(m_path).absolutePath());
    const QDir to(QFileInfo(path).absolutePath());
    if (from.canonicalPath() == to.canonicalPath())
        return true;
    for (const QString &name : m_companions) {
        const QFileInfo target(to.filePath(name));
        QFile file(from.filePath(name));
        if (target.exists() || !file.open(QIODevice::ReadOnly))
            continue;
        to.mkpath(QFileInfo(name).path());
        if (!RySafeFile::write(target.filePath(), file.readAll(), error))
            return false;
    }
    return true;
}
