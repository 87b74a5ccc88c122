#include "CharacterScene.h"
#include "ObjSketch.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/obj/RyObjFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <Eigen/Geometry>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

using nlohmann::json;

namespace {

/// All that a corner has, by its numbers; -99 for what it has not.
using Corner = std::array<double, 8>;
struct Polygon
{
    QString group, material;
    std::vector<Corner> corners;
};

/// The facets of an OBJ file, positions in centimetres. Normals have length 1.
std::vector<Polygon> polygonsOf(const RyObjFile &file, double unit)
{
    std::vector<Polygon> result;
    for (const RyObjFile::Facet &facet : file.facets) {
        Polygon polygon;
        if (facet.group >= 0)
            polygon.group = file.groups[size_t(facet.group)];
        if (facet.material >= 0)
            polygon.material = file.materials[size_t(facet.material)];
        for (int k = 0; k < facet.cornerCount; ++k) {
            const RyObjFile::Corner &from = file.corners[size_t(facet.firstCorner + k)];
            Corner corner;
            corner.fill(-99.0);
            for (size_t axis = 0; axis < 3; ++axis)
                corner[axis] = unit * file.positions[size_t(from.vertex)][axis];
            for (size_t axis = 0; from.texcoord >= 0 && axis < 2; ++axis)
                corner[3 + axis] = file.texcoords[size_t(from.texcoord)][axis];
            if (from.normal >= 0) {
                const auto &[x, y, z] = file.normals[size_t(from.normal)];
                const double length = std::hypot(x, y, z);
                corner[5] = x / length;
                corner[6] = y / length;
                corner[7] = z / length;
            }
            polygon.corners.push_back(corner);
        }
        result.push_back(std::move(polygon));
    }
    return result;
}

/// What OBJ files say, from the same first corners on.
bool samePolygons(const std::vector<Polygon> &a, const std::vector<Polygon> &b, bool withLooks)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i].group != b[i].group || (withLooks && a[i].material != b[i].material) ||
            a[i].corners.size() != b[i].corners.size()) {
            qWarning("facet %d: %s of %s", int(i), qPrintable(b[i].group), qPrintable(b[i].material));
            return false;
        }
        for (size_t k = 0; k < a[i].corners.size(); ++k) {
            for (size_t n = 0; n < 8; ++n) {
                if (std::abs(a[i].corners[k][n] - b[i].corners[k][n]) > 1e-4) {
                    qWarning("facet %d, corner %d, number %d: %g instead of %g", int(i), int(k), int(n),
                             b[i].corners[k][n], a[i].corners[k][n]);
                    return false;
                }
            }
        }
    }
    return true;
}

/// The indices of a primitive as the file has them.
std::vector<unsigned> indicesOf(const GltfEvaluator &file, const json &primitive)
{
    const std::string bytes = file.accessorBytes(primitive["indices"].get<int>());
    std::vector<unsigned> indices(bytes.size() / 4);
    std::memcpy(indices.data(), bytes.data(), bytes.size());
    return indices;
}

/// Sizes of the polygons that a primitive says it has, read by the letter of the extension.
std::vector<int> polygonSizes(const std::vector<unsigned> &indices)
{
    std::vector<int> sizes;
    for (size_t t = 0; t + 2 < indices.size(); t += 3) {
        if (t > 0 && indices[t] == indices[t - 3] && indices[t + 1] == indices[t - 1])
            ++sizes.back();
        else
            sizes.push_back(3);
    }
    return sizes;
}

} // namespace

/// OBJ files in the scene, on their way to glTF and back.
class ObjScenesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void sketchIsShown();
    void sketchAsGltf();
    void sketchAsFigure();
    void propOfGltfBecomesFigure();
    void noTriangleFoldsOver();
    void backToObj_data();
    void backToObj();
    void baseMesh_data();
    void baseMesh();

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    void checkValid(const QString &path) const
    {
        const RyValidation valid = ryValidate(path);
        if (valid.available)
            QVERIFY2(valid.errors == 0 && valid.warnings == 0, qPrintable(valid.report));
    }
    QTemporaryDir m_folder;
};

void ObjScenesTest::sketchIsShown()
{
    RyScene scene;
    QString error;
    QStringList messages;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error, &messages), qPrintable(error));
    QCOMPARE(messages.filter(QStringLiteral("of nowhere")).size(), 1);
    QCOMPARE(messages.size(), 1);
    const RyFacetShape *shape = shapeOf(scene);
    const RyFacetMesh &mesh = *shape->getFacetMesh();
    const RyMeshParts &parts = *shape->getParts();
    QCOMPARE(mesh.getNumVertices(), ObjSketch::Vertices);
    QCOMPARE(mesh.getNumFacets(), ObjSketch::Facets);
    QCOMPARE(quadCount(mesh), ObjSketch::Quads);
    QCOMPARE(mesh.getPolygons().size(), size_t(2));
    QVERIFY(parts.fits(mesh));
    QCOMPARE(parts.parts.size(), size_t(4)); // skin, cloth, of nowhere, none
    QCOMPARE(parts.parts[3].look, -1);
    const RyMaterialLook &skin = parts.looks[size_t(parts.parts[0].look)];
    QCOMPARE(skin.name, QStringLiteral("skin"));
    QCOMPARE(skin.baseColor, (std::array<float, 4>{0.8f, 0.25f, 0.125f, 0.75f}));
    QCOMPARE(skin.texture.size(), QSize(4, 3));
    QCOMPARE(skin.picture, ObjSketch::picture(20));
    const RyMaterialLook &cloth = parts.looks[size_t(parts.parts[1].look)];
    QCOMPARE(cloth.baseColor, (std::array<float, 4>{0.5f, 0.5f, 0.5f, 1.0f}));
    QCOMPARE(cloth.picture, ObjSketch::picture(200));
    // The facets stay in the order of the file: skin, skin, cloth.
    QCOMPARE(parts.facetsByPart()[2], 4);
    const auto uvAt = [&parts](int part, int vertex) {
        const RyMeshPart &of = parts.parts[size_t(part)];
        const auto split =
            std::find(of.vertexOfSplit.begin(), of.vertexOfSplit.end(), vertex) - of.vertexOfSplit.begin();
        return std::pair(of.uvs[size_t(2 * split)], of.uvs[size_t(2 * split + 1)]);
    };
    QCOMPARE(uvAt(0, 1), std::pair(1.0f, 1.0f));
    QCOMPARE(uvAt(1, 6), std::pair(0.3f, float(1.0 - 0.7)));
}

void ObjScenesTest::sketchAsGltf()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    for (const char *name : {"sketch.glb", "sketch.gltf"}) {
        QVERIFY2(RySceneFile::save(&scene, path(name), &error), qPrintable(error));
        checkValid(path(name));
        RyScene again;
        QStringList messages;
        QVERIFY2(RySceneFile::open(&again, path(name), &error, &messages), qPrintable(error));
        QVERIFY2(messages.isEmpty(), qPrintable(messages.join(QLatin1Char('\n'))));
        QVERIFY(sameDumps(plainDump(again), plainDump(scene)));
        for (int f = 0; f < ObjSketch::Facets; ++f)
            QCOMPARE(shapeOf(again)->getFacetMesh()->getFacet(f).count(),
                     shapeOf(scene)->getFacetMesh()->getFacet(f).count());
        QVERIFY2(RySceneFile::save(&again, path("twice.glb"), &error), qPrintable(error));
    }
    const GltfEvaluator file(path("sketch.glb").toStdString());
    const json &tree = file.tree();
    QCOMPARE(tree["extensionsUsed"], json({"FB_ngon_encoding"}));
    const json &primitives = tree["meshes"][0]["primitives"];
    QCOMPARE(primitives.size(), size_t(4));
    for (const json &primitive : primitives)
        QCOMPARE(primitive["extensions"]["FB_ngon_encoding"], json::object());
    QCOMPARE(polygonSizes(indicesOf(file, primitives[0])), (std::vector<int>{4, 4, 5}));
    QCOMPARE(polygonSizes(indicesOf(file, primitives[1])), (std::vector<int>{4, 3, 8}));
    QCOMPARE(primitives[0]["attributes"].contains("TEXCOORD_0"), true);
    QCOMPARE(primitives[3]["attributes"].contains("TEXCOORD_0"), false);
    QCOMPARE(primitives[3].contains("material"), false);
    const json &skin = tree["materials"][primitives[0]["material"].get<size_t>()];
    QCOMPARE(skin["name"], json("skin"));
    QCOMPARE(skin.value("alphaMode", std::string()), std::string("BLEND"));
    QVERIFY(std::abs(skin["pbrMetallicRoughness"]["baseColorFactor"][3].get<double>() - 0.75) < 1e-6);
    const json &texture = tree["textures"][skin["pbrMetallicRoughness"]["baseColorTexture"]["index"].get<size_t>()];
    const json &image = tree["images"][texture["source"].get<size_t>()];
    QCOMPARE(image["mimeType"], json("image/png"));
    const json &view = tree["bufferViews"][image["bufferView"].get<size_t>()];
    QCOMPARE(QByteArray::fromStdString(file.bufferBytes(0))
                 .mid(view["byteOffset"].get<int>(), view["byteLength"].get<int>()),
             ObjSketch::picture(20));
}

/// The same as a figure whose bone is posed.
void ObjScenesTest::sketchAsFigure()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    // Some vertices follow no bone, two of them at one place with one that does.
    RyWeightMap *map = RySkinBinding::findSkin(ObjSketch::convert(scene))->bindings().front()->getWeights();
    map->setAffected(ObjSketch::Vertices, {0, 1, 2, 4, 5, 6, 8, 16, 19},
                     std::vector<quint16>(9, RyWeightMap::FullWeight));
    const QString saved = path("figure.glb");
    QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
    checkValid(saved);
    CharacterScene again(saved);
    QVERIFY2(again.messages.isEmpty(), qPrintable(again.messages.join(QLatin1Char('\n'))));
    QCOMPARE(quadCount(*shapeOf(again.scene)->getFacetMesh()), ObjSketch::Quads);
    QVERIFY(sameDumps(plainDump(again.scene), plainDump(scene)));
    // And with an edit of that file.
    again.bones().front()->setLabel(QStringLiteral("Other"));
    const QString dump = plainDump(again.scene);
    QVERIFY2(RySceneFile::save(&again.scene, path("edited.glb"), &error), qPrintable(error));
    QVERIFY(sameDumps(plainDump(CharacterScene(path("edited.glb")).scene), dump));
    checkValid(path("edited.glb"));
}

/// The primitives that a first save made are copied for the figure, with all that is known of them.
void ObjScenesTest::propOfGltfBecomesFigure()
{
    RyScene scene;
    QString error;
    const QString sketch = ObjSketch::write(m_folder);
    QVERIFY2(RySceneFile::open(&scene, sketch, &error), qPrintable(error));
    RySceneFile::Options beside;
    beside.merge = true;
    QVERIFY2(RySceneFile::open(&scene, sketch, beside, &error), qPrintable(error)); // keeps its place in the file
    QVERIFY2(RySceneFile::save(&scene, path("props.glb"), &error), qPrintable(error));
    CharacterScene props(path("props.glb"));
    QCOMPARE(props.file.tree()["materials"].size(), size_t(3)); // both look alike
    QCOMPARE(props.file.tree()["images"].size(), size_t(2));
    ObjSketch::convert(props.scene);
    QVERIFY2(RySceneFile::save(&props.scene, path("made figure.glb"), &error), qPrintable(error));
    CharacterScene again(path("made figure.glb"));
    QVERIFY(sameDumps(plainDump(again.scene), plainDump(props.scene)));
    QCOMPARE(quadCount(*shapeOf(again.scene)->getFacetMesh()), ObjSketch::Quads);
    checkValid(path("made figure.glb"));
}

/// Flat polygons, dented or not, are covered by their triangles and nothing beside them is.
void ObjScenesTest::noTriangleFoldsOver()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    QVERIFY2(RySceneFile::save(&scene, path("flat.glb"), &error), qPrintable(error));
    const GltfEvaluator file(path("flat.glb").toStdString());
    const GltfPrimitive &skin = file.primitives().front();
    const std::vector<Eigen::Vector3d> points = file.restPositions(skin);
    const std::vector<std::array<int, 3>> triangles = file.triangles(skin);
    QCOMPARE(triangles.size(), size_t(7));
    for (size_t t = 0; t < 4; ++t) { // the dented ones
        const auto at = [&](size_t corner) { return points[size_t(triangles[t][corner])]; };
        QVERIFY((at(1) - at(0)).cross(at(2) - at(0)).z() > 0.0);
    }
}

void ObjScenesTest::backToObj_data()
{
    QTest::addColumn<bool>("asFigure");
    QTest::newRow("prop") << false;
    QTest::newRow("figure") << true;
}
void ObjScenesTest::backToObj()
{
    QFETCH(bool, asFigure);
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    if (asFigure)
        ObjSketch::convert(scene);
    QVERIFY2(RySceneFile::save(&scene, path("on the way.glb"), &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, path("on the way.glb"), &error), qPrintable(error));
    const QTemporaryDir other;
    QStringList messages;
    const QString back = other.filePath(QStringLiteral("back again.obj"));
    QVERIFY2(RySceneFile::save(&again, back, &error, &messages), qPrintable(error));
    QCOMPARE(messages.filter(QStringLiteral("no place for bones and weights")).size(), asFigure ? 1 : 0);
    QVERIFY(ryUndoStack()->isClean());

    const auto wanted = RyObjFile::parse(ObjSketch::text(), QStringLiteral("sketch"), &error);
    QVERIFY2(wanted, qPrintable(error));
    const auto file = RyObjFile::read(back, &error);
    QVERIFY2(file, qPrintable(error));
    QVERIFY(file->warnings.isEmpty());
    const double unit = again.getOrigin()->unitFactor();
    QCOMPARE(file->positions.size(), wanted->positions.size());
    for (size_t v = 0; v < file->positions.size(); ++v) {
        for (size_t axis = 0; axis < 3; ++axis)
            QVERIFY(std::abs(unit * file->positions[v][axis] - 100.0 * wanted->positions[v][axis]) < 1e-4);
    }
    // Smooth normals of corners that had none among others that do are ours.
    const std::vector<Polygon> expected = polygonsOf(*wanted, 100.0);
    std::vector<Polygon> polygons = polygonsOf(*file, unit);
    QCOMPARE(polygons.size(), expected.size());
    for (size_t i = 0; i < polygons.size(); ++i) {
        QCOMPARE(polygons[i].corners.size(), expected[i].corners.size());
        for (size_t k = 0; polygons[i].material == QLatin1String("skin") && k < polygons[i].corners.size(); ++k) {
            if (expected[i].corners[k][5] == -99.0)
                std::fill(polygons[i].corners[k].begin() + 5, polygons[i].corners[k].end(), -99.0);
        }
    }
    QVERIFY(samePolygons(expected, polygons, true));
    QVERIFY(bytesOf(back).contains("vt 0.125 0.999\n"));

    // Looks as they were, in a library of its own.
    QCOMPARE(file->materialLibraries, QStringList(QStringLiteral("back again.mtl")));
    RyScene last;
    messages.clear();
    QVERIFY2(RySceneFile::open(&last, back, &error, &messages), qPrintable(error));
    QVERIFY2(messages.isEmpty(), qPrintable(messages.join(QLatin1Char('\n'))));
    const RyMeshParts &looks = *shapeOf(last)->getParts();
    const RyMeshParts &before = *shapeOf(scene)->getParts();
    QCOMPARE(looks.parts.size(), before.parts.size());
    for (size_t p = 0; p < 3; ++p) {
        const RyMaterialLook &now = looks.looks[size_t(looks.parts[p].look)];
        const RyMaterialLook &then = before.looks[size_t(before.parts[p].look)];
        QCOMPARE(now.name, then.name);
        QCOMPARE(now.picture, then.picture);
        for (size_t i = 0; i < 4; ++i)
            QVERIFY(std::abs(now.baseColor[i] - then.baseColor[i]) < 1e-6f);
    }
}

void ObjScenesTest::baseMesh_data()
{
    backToObj_data();
}
void ObjScenesTest::baseMesh()
{
    QFETCH(bool, asFigure);
    const QString original = ryModel(QStringLiteral("mh_base.obj"));
    if (original.isEmpty())
        QSKIP("the character is not here");
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, original, &error), qPrintable(error));
    if (asFigure)
        ObjSketch::convert(scene);
    const QString saved = path("base.glb");
    QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
    checkValid(saved);
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
    const RyFacetShape *shape = shapeOf(again);
    QCOMPARE(quadCount(*shape->getFacetMesh()), 18486);
    QCOMPARE(shape->getFacetMesh()->getNumFaceGroups(), 139);
    QCOMPARE(shape->getParts()->parts[0].uvs, shapeOf(scene)->getParts()->parts[0].uvs);
    QVERIFY(sameDumps(plainDump(again), plainDump(scene)));
    QVERIFY2(RySceneFile::save(&again, path("base again.glb"), &error), qPrintable(error));
    QVERIFY(bytesOf(path("base again.glb")) == bytesOf(saved));

    QVERIFY2(RySceneFile::save(&again, path("base.obj"), &error), qPrintable(error));
    const auto wanted = RyObjFile::read(original, &error);
    const auto file = RyObjFile::read(path("base.obj"), &error);
    QVERIFY2(file && wanted, qPrintable(error));
    QCOMPARE(file->groups.size(), wanted->groups.size());
    QVERIFY(file->texcoords.size() <= wanted->texcoords.size());
    QVERIFY(file->materialLibraries.isEmpty());
    QVERIFY(samePolygons(polygonsOf(*wanted, scene.getOrigin()->unitFactor()),
                         polygonsOf(*file, again.getOrigin()->unitFactor()), false));
}

RY_TEST(ObjScenesTest)
#include "tst_obj_scenes.moc"
