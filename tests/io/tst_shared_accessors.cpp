#include "CharacterScene.h"
#include "FigureSketch.h"
#include "RigEdits.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include "evaluator/GltfFileReader.h"

#include <Eigen/Geometry>

using nlohmann::json;

/// Primitives of one mesh that share their vertices, as exporters write a mesh of several materials.
class SharedAccessorsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    /// Each primitive has some triangles of its own around vertices of the other.
    void normalsAroundMovedVertices()
    {
        FigureSketch sketch = twoMaterials();
        std::vector<float> normals;
        for (int split = 0; split < 18; ++split)
            normals.insert(normals.end(), {-0.1f / std::sqrt(1.01f), 0.0f, 1.0f / std::sqrt(1.01f)});
        const int normal = sketch.add<float>(normals, 5126, "VEC3");
        for (json &primitive : sketch.tree["meshes"][0]["primitives"])
            primitive["attributes"]["NORMAL"] = normal;
        CharacterScene scene(sketch.write(path("before")));
        RyFacetMesh &mesh = meshOf(scene);
        std::vector<RyVec3> positions = mesh.getPositions();
        for (size_t v = 4; v < positions.size(); ++v)
            positions[v] += RyVec3(0, 0, float(v * v % 7) - 3.0f);
        mesh.setPositions(positions);
        save(scene, "after");

        const GltfFileData file = readGltfFile(path("after").toStdString());
        const json &primitives = file.json["meshes"][0]["primitives"];
        const json &attributes = primitives[0]["attributes"];
        QCOMPARE(primitives[1]["attributes"], attributes); // still shared
        const GltfTable points = readGltfAccessor(file, attributes["POSITION"]);
        const GltfTable written = readGltfAccessor(file, attributes["NORMAL"]);
        std::vector<Eigen::Vector3d> sums(points.count, Eigen::Vector3d::Zero());
        std::vector<bool> isNear(points.count, false);
        for (const json &primitive : primitives) {
            const GltfTable corners = readGltfAccessor(file, primitive["indices"]);
            for (size_t t = 0; t < corners.count; t += 3) {
                const size_t c[3] = {size_t(corners.values[t]), size_t(corners.values[t + 1]),
                                     size_t(corners.values[t + 2])};
                const auto at = [&](int i) { return Eigen::Vector3d(points.row(c[i])); };
                for (const size_t corner : c) {
                    sums[corner] += (at(1) - at(0)).cross(at(2) - at(0));
                    isNear[corner] = isNear[corner] || c[0] >= 4 || c[1] >= 4 || c[2] >= 4;
                }
            }
        }
        for (size_t split = 0; split < points.count; ++split) {
            const Eigen::Vector3d now(written.row(split));
            const Eigen::Vector3d before(normals[3 * split], normals[3 * split + 1], normals[3 * split + 2]);
            const Eigen::Vector3d expected = isNear[split] ? sums[split].normalized() : before;
            QVERIFY2((now - expected).norm() < 1e-5, qPrintable(QString::number(split)));
        }
    }

    /// With morphs of its own a primitive has vertices of its own, though the file says their places once.
    void positionsOfMorphedPrimitives()
    {
        FigureSketch sketch = twoMaterials();
        for (int i = 0; i < 2; ++i) {
            std::vector<float> shifts(3 * 18, i == 0 ? 0.125f : -0.0625f);
            sketch.tree["meshes"][0]["primitives"][size_t(i)]["targets"] = {
                {{"POSITION", sketch.add<float>(shifts, 5126, "VEC3")}}};
            json &accessor = sketch.tree["accessors"].back();
            accessor["min"] = accessor["max"] = {shifts[0], shifts[0], shifts[0]};
        }
        CharacterScene scene(sketch.write(path("before")));
        RyFacetMesh &mesh = meshOf(scene);
        QCOMPARE(mesh.getNumVertices(), 36);
        std::vector<RyVec3> positions = mesh.getPositions();
        for (size_t v = 0; v < positions.size(); ++v)
            positions[v] += v < 18 ? RyVec3(0, 0, float(v)) : RyVec3(float(v) - 30.0f, 0, 0);
        mesh.setPositions(positions);
        save(scene, "after");
        const GltfEvaluator file(path("after").toStdString());
        const double moved = largestDistance(scene.shown(), positionsOf(file, scene.unit()));
        QVERIFY2(moved < 1e-3, qPrintable(QString::number(moved)));
    }

    /// Influences that they share are written once, and from then on in place.
    void influences()
    {
        const FigureSketch sketch = twoMaterials();
        CharacterScene scene(sketch.write(path("before")));
        RigEdits::shiftWeights(scene.scene, 3000);
        save(scene, "after");
        const json first = GltfEvaluator(path("after").toStdString()).tree();
        QCOMPARE(first["meshes"][0]["primitives"][0]["attributes"], first["meshes"][0]["primitives"][1]["attributes"]);
        QCOMPARE(first["accessors"].size(), sketch.tree["accessors"].size() + 2);
        CharacterScene again(path("after"));
        RigEdits::shiftWeights(again.scene, 5000);
        save(again, "after");
        const json second = GltfEvaluator(path("after").toStdString()).tree();
        QCOMPARE(second["accessors"], first["accessors"]);
        QCOMPARE(second["meshes"], first["meshes"]);
    }

    /// What the reader leaves out with a message is not in the file any more when the weights beside it are written.
    void influencesThatWereLeftOut()
    {
        FigureSketch sketch;
        json &attributes = sketch.tree["meshes"][0]["primitives"][0]["attributes"];
        attributes["WEIGHTS_1"] = attributes["WEIGHTS_0"];
        attributes["JOINTS_2"] = attributes["JOINTS_0"];
        attributes["WEIGHTS_2"] = attributes["WEIGHTS_0"];
        std::vector<float> weights;
        for (int split = 0; split < 18; ++split)
            weights.insert(weights.end(), {0.5f, 0.4f, 0.0f, split == 2 ? -0.25f : 0.0f});
        attributes["WEIGHTS_0"] = sketch.add<float>(weights, 5126, "VEC4");
        CharacterScene scene(sketch.write(path("before")));
        QCOMPARE(scene.messages.filter(QStringLiteral("left out")).size(), 1);
        QCOMPARE(scene.messages.filter(QStringLiteral("stands without")).size(), 1);
        RigEdits::shiftWeights(scene.scene, 3000);
        save(scene, "after");
        CharacterScene again(path("after"));
        QVERIFY2(again.messages.isEmpty(), qPrintable(again.messages.join(QLatin1Char('\n'))));
        const json now = again.file.tree()["meshes"][0]["primitives"][0]["attributes"];
        QCOMPARE(now.size(), size_t(3));
        for (const std::vector<GltfInfluence> &each : again.file.influences(again.file.primitives().front()))
            QVERIFY(each.size() <= 2);
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    /// The strip, posed and turned, with the lower half in one material and the upper half, with one triangle that
    /// reaches down, in another.
    static FigureSketch twoMaterials()
    {
        FigureSketch sketch;
        sketch.tree["nodes"][0]["scale"] = {0.8, 0.8, 0.8};
        sketch.tree["nodes"][0]["rotation"] = {0.0, std::sin(0.3), 0.0, std::cos(0.3)};
        sketch.tree["nodes"][2]["rotation"] = {0.0, 0.0, std::sin(0.2), std::cos(0.2)};
        sketch.tree["materials"] = {{{"name", "lower"}}, {{"name", "upper"}}};
        std::vector<std::uint16_t> lower, upper;
        for (std::uint16_t row = 0; row < 8; ++row) {
            const auto at = std::uint16_t(2 * row);
            std::vector<std::uint16_t> &list = row < 4 ? lower : upper;
            for (const int corner : {0, 1, 2, 2, 1, 3})
                (row == 3 && corner != 0 && list.size() % 6 >= 3 ? upper : list).push_back(std::uint16_t(at + corner));
        }
        json &primitives = sketch.tree["meshes"][0]["primitives"];
        primitives.push_back(primitives[0]);
        primitives[0]["indices"] = sketch.add<std::uint16_t>(lower, 5123, "SCALAR");
        primitives[1]["indices"] = sketch.add<std::uint16_t>(upper, 5123, "SCALAR");
        primitives[0]["material"] = 0;
        primitives[1]["material"] = 1;
        return sketch;
    }

    static RyFacetMesh &meshOf(const CharacterScene &character)
    {
        const RySkeleton *figure = character.scene.getSkeletons().front();
        return *qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure))->getFacetMesh();
    }

    void save(CharacterScene &scene, const char *name)
    {
        QString error;
        const QString dump = rySceneDump(scene.scene);
        QVERIFY2(RySceneFile::save(&scene.scene, path(name), &error), qPrintable(error));
        CharacterScene again(path(name));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        const RyValidation valid = ryValidate(path(name));
        if (valid.available)
            QVERIFY2(valid.errors == 0, qPrintable(valid.report));
    }

    QTemporaryDir m_folder;
};

RY_TEST(SharedAccessorsTest)
#include "tst_shared_accessors.moc"
