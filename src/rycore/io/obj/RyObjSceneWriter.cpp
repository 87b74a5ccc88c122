#include "rycore/io/obj/RyObjSceneWriter.h"

#include "rycore/io/RyPartPolygons.h"
#include "rycore/io/RyPictureBytes.h"
#include "rycore/io/RySafeFile.h"
#include "rycore/io/obj/RyKeyTable.h"
#include "rycore/io/obj/RyObjNumbers.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <bit>
#include <iterator>

namespace {

constexpr const char *FirstLine = "# Materials of the OBJ file of this name, written with it\n";

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A name for a file of one's own, without a folder.
QString fileName(const QString &wanted)
{
    QString name;
    for (const QChar c : wanted)
        name += c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('.') ? c : QLatin1Char('_');
    while (name.startsWith(QLatin1Char('.')))
        name.remove(0, 1);
    return name.left(100);
}

QByteArray numbersText(const float *numbers, int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += ' ' + QByteArray::number(double(numbers[i]), 'g', 7);
    return text;
}

/// A polygon of which facets went to other groups is written in pieces.
bool isInOneGroup(const RyFacetMesh &mesh, int firstFacet, int count)
{
    const auto first = mesh.getFacets().begin() + firstFacet;
    return std::all_of(first, first + count, [first](const RyFacet &facet) { return facet.group == first->group; });
}

} // namespace

void RyObjSceneWriter::addPositions(const std::vector<RyVec3> &positions)
{
    for (const RyVec3 &p : positions) {
        m_file.positions.push_back({RyObjNumbers::inUnits(p.x, m_unit), RyObjNumbers::inUnits(p.y, m_unit),
                                    RyObjNumbers::inUnits(p.z, m_unit)});
    }
}

void RyObjSceneWriter::addGroups(const RyFacetMesh &mesh)
{
    m_groupPlaces.clear();
    for (int g = 0; g < mesh.getNumFaceGroups(); ++g) {
        const QString &name = mesh.getFaceGroup(g)->getName();
        const auto known = m_places.constFind(name);
        m_groupPlaces.push_back(known != m_places.constEnd() ? *known : int(m_file.groups.size()));
        if (known != m_places.constEnd())
            continue;
        m_places.insert(name, m_groupPlaces.back());
        m_file.groups.push_back(name);
    }
}

void RyObjSceneWriter::addMesh(const QString &name, const RyFacetShape &shape)
{
    const RyFacetMesh &mesh = *shape.getFacetMesh();
    const int firstVertex = int(m_file.positions.size());
    addPositions(mesh.getPositions());
    addGroups(mesh);
    m_file.objects.push_back(name);
    const int object = int(m_file.objects.size()) - 1;
    if (shape.getParts() && shape.getParts()->fits(mesh)) {
        addPartFacets(shape, firstVertex, object);
        return;
    }
    std::vector<int> corners;
    for (int facet = 0, count = 1; facet < mesh.getNumFacets(); facet += count) {
        count = mesh.readPolygon(facet, corners);
        if (!isInOneGroup(mesh, facet, count)) {
            const RyFacet &piece = mesh.getFacet(facet);
            corners.assign(piece.vertices, piece.vertices + piece.count());
            count = 1;
        }
        m_file.facets.push_back({int(m_file.corners.size()), int(corners.size()), groupOf(mesh, facet), object, -1});
        for (const int vertex : corners)
            m_file.corners.push_back({firstVertex + vertex, -1, -1});
    }
}

int RyObjSceneWriter::groupOf(const RyFacetMesh &mesh, int facet) const
{
    const int group = mesh.getFacet(facet).group;
    return group < 0 ? -1 : m_groupPlaces[size_t(group)];
}

/// Equal ones once. `places`: per split vertex.
void RyObjSceneWriter::addCoordinates(const RyMeshPart &part, std::vector<int> &places)
{
    const int first = int(m_file.texcoords.size());
    RyKeyTable table;
    for (size_t i = 0; i + 1 < part.uvs.size(); i += 2) {
        if (std::binary_search(part.withoutUv.begin(), part.withoutUv.end(), int(i / 2))) {
            places.push_back(-1);
            continue;
        }
        const float u = part.uvs[i] + 0.0f;
        const float v = part.uvs[i + 1] + 0.0f;
        const int number = table.numberOf({std::bit_cast<std::int32_t>(u), std::bit_cast<std::int32_t>(v)});
        if (first + number == int(m_file.texcoords.size()))
            m_file.texcoords.push_back({RyObjNumbers::shortest(u), RyObjNumbers::upwards(v)});
        places.push_back(first + number);
    }
    places.resize(part.vertexOfSplit.size(), -1);
}

void RyObjSceneWriter::addNormals(const RyPartNormals &shown, const RyMeshPart &part, std::vector<int> &places)
{
    const int first = int(m_file.normals.size());
    RyKeyTable table;
    for (const RyVec3 &normal : part.hasNormals() ? shown.of(part) : std::vector<RyVec3>()) {
        const int number =
            table.numberOf({std::bit_cast<std::int32_t>(normal.x + 0.0f), std::bit_cast<std::int32_t>(normal.y + 0.0f),
                            std::bit_cast<std::int32_t>(normal.z + 0.0f)});
        if (first + number == int(m_file.normals.size())) {
            m_file.normals.push_back({RyObjNumbers::shortest(normal.x + 0.0f), RyObjNumbers::shortest(normal.y + 0.0f),
                                      RyObjNumbers::shortest(normal.z + 0.0f)});
        }
        places.push_back(first + number);
    }
    places.resize(part.vertexOfSplit.size(), -1);
}

void RyObjSceneWriter::addPartFacets(const RyFacetShape &shape, int firstVertex, int object)
{
    const RyFacetMesh &mesh = *shape.getFacetMesh();
    const RyMeshParts &parts = *shape.getParts();
    std::vector<RyObjFile::Facet> facets(static_cast<size_t>(mesh.getNumFacets()));
    RyPartPolygons polygons(mesh, parts);
    const RyPartNormals shown(shape);
    for (const RyMeshPart &part : parts.parts) {
        std::vector<int> coordinates, normals;
        addCoordinates(part, coordinates);
        addNormals(shown, part, normals);
        const int material = materialOf(parts, part.look);
        const auto add = [&](int facet, const std::vector<unsigned> &splits) {
            facets[size_t(facet)] = {int(m_file.corners.size()), int(splits.size()), groupOf(mesh, facet), object,
                                     material};
            for (const unsigned split : splits)
                m_file.corners.push_back({firstVertex + part.vertexOfSplit[split], coordinates[split], normals[split]});
        };
        polygons.forNextPart([&](const RyPartPolygon &polygon) {
            if (isInOneGroup(mesh, polygon.firstFacet, polygon.facetCount))
                return add(polygon.firstFacet, polygon.splits);
            for (int i = 0; i < polygon.facetCount; ++i)
                add(polygon.firstFacet + i, {polygon.inFan(0), polygon.inFan(i + 1), polygon.inFan(i + 2)});
        });
    }
    // Only the first facet of a polygon stands for it.
    std::copy_if(facets.begin(), facets.end(), std::back_inserter(m_file.facets),
                 [](const RyObjFile::Facet &facet) { return facet.cornerCount > 0; });
}

int RyObjSceneWriter::materialOf(const RyMeshParts &parts, int look)
{
    if (look < 0 || size_t(look) >= parts.looks.size())
        return -1;
    const RyMaterialLook &wanted = parts.looks[size_t(look)];
    std::vector<int> &known = m_ofLookName[wanted.name];
    for (const int place : known) {
        const RyMaterialLook &other = *m_materials[size_t(place)].look;
        if (other.baseColor == wanted.baseColor && other.picture == wanted.picture && other.texture == wanted.texture)
            return place;
    }
    known.push_back(int(m_materials.size()));
    const QString stem = RyObjFile::plainName(wanted.name.isEmpty() ? QStringLiteral("material") : wanted.name);
    QString name = stem;
    for (int number = 2; m_materialNames.contains(name); ++number)
        name = stem + QString::number(number);
    m_materialNames.insert(name);
    m_materials.push_back({name, &wanted});
    m_file.materials.push_back(name);
    return int(m_materials.size()) - 1;
}

QString RyObjSceneWriter::writePicture(const QString &folder, const RyMaterialLook &look, QString *error)
{
    QString type;
    const QByteArray bytes = ryPictureBytes(look, &type);
    if (m_pictures.contains(bytes))
        return m_pictures.value(bytes);
    const QString ending = type == QLatin1String("image/jpeg") ? QStringLiteral(".jpg") : QStringLiteral(".png");
    QString stem = fileName(look.pictureName.isEmpty() ? look.name : look.pictureName);
    if (QFileInfo(stem).suffix().size() <= 4 && stem.contains(QLatin1Char('.')))
        stem = QFileInfo(stem).completeBaseName();
    if (stem.isEmpty())
        stem = QStringLiteral("picture");
    // Another picture of that name stays.
    QString name = stem + ending;
    for (int number = 2; QFileInfo::exists(folder + QLatin1Char('/') + name); ++number) {
        if (bytesOf(folder + QLatin1Char('/') + name) == bytes) {
            m_pictures.insert(bytes, name);
            return name;
        }
        name = stem + QLatin1Char('_') + QString::number(number) + ending;
    }
    if (!writeCompanion(folder + QLatin1Char('/') + name, bytes, error))
        return {};
    m_pictures.insert(bytes, name);
    return name;
}

/// Empty when its picture cannot be written.
QByteArray RyObjSceneWriter::materialText(const QString &folder, const Material &material, QString *error)
{
    const RyMaterialLook &look = *material.look;
    QByteArray text = "\nnewmtl " + material.name.toUtf8() + "\nKd" + numbersText(look.baseColor.data(), 3) + '\n';
    if (look.baseColor[3] < 1.0f)
        text += "d" + numbersText(&look.baseColor[3], 1) + '\n';
    if (look.texture.isNull())
        return text;
    const QString picture = writePicture(folder, look, error);
    return picture.isEmpty() ? QByteArray() : text + "map_Kd " + picture.toUtf8() + '\n';
}

bool RyObjSceneWriter::writeLibrary(const QString &path, QString *error)
{
    const QFileInfo target(path);
    const QString folder = target.absolutePath();
    QByteArray text = FirstLine;
    for (const Material &material : m_materials) {
        const QByteArray piece = materialText(folder, material, error);
        if (piece.isEmpty())
            return false;
        text += piece;
    }
    // A library that somebody else wrote may say more than we know of.
    const QString stem = target.completeBaseName();
    QString name = stem + QStringLiteral(".mtl");
    const auto isForeign = [&] {
        const QString there = folder + QLatin1Char('/') + name;
        return QFileInfo::exists(there) && !bytesOf(there).startsWith(FirstLine);
    };
    for (int number = 2; isForeign(); ++number)
        name = stem + QLatin1Char('_') + QString::number(number) + QStringLiteral(".mtl");
    m_file.materialLibraries.append(name);
    return writeCompanion(folder + QLatin1Char('/') + name, text, error);
}

bool RyObjSceneWriter::writeCompanion(const QString &path, const QByteArray &bytes, QString *error)
{
    const bool isNew = !QFileInfo::exists(path);
    if (!RySafeFile::write(path, bytes, error))
        return false;
    if (isNew)
        m_newCompanions.append(path);
    return true;
}

bool RyObjSceneWriter::write(const RyScene &scene, const QString &path, QString *error)
{
    for (const RyNode *node : scene.getNodesInTreeOrder()) {
        const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
        if (shape && shape->getFacetMesh())
            addMesh(node->getName(), *shape);
    }
    if (m_file.positions.empty()) {
        if (error)
            *error = QStringLiteral("%1: the scene holds no mesh, and this format nothing else").arg(path);
        return false;
    }
    if ((m_materials.empty() || writeLibrary(path, error)) && m_file.write(path, error))
        return true;
    for (const QString &companion : m_newCompanions)
        QFile::remove(companion); // nothing names it
    return false;
}
