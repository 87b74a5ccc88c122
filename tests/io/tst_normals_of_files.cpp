#include "CharacterScene.h"
#include "FigureSketch.h"
#include "support/RyTest.h"

#include "rycore/io/RyPartNormals.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyNormalSource.h"

#include <Eigen/Geometry>

#include <QTemporaryDir>

/// Normals that stay in the file until they are asked for.
class NormalsOfFilesTest : public QObject
{
    Q_OBJECT

private slots:
    /// Of a prop that is moved, turned and stretched; also when nothing but its parts is left of the scene.
    void outliveTheScene()
    {
        const Eigen::Vector3d normal(0.48, 0.6, 0.64), size(1.5, 0.5, 2.0);
        FigureSketch sketch;
        sketch.tree["meshes"].push_back(sketch.tree["meshes"][0]);
        auto &primitive = sketch.tree["meshes"][1]["primitives"][0];
        primitive["attributes"].erase("JOINTS_0");
        primitive["attributes"].erase("WEIGHTS_0");
        std::vector<float> normals;
        for (int i = 0; i < 18; ++i)
            normals.insert(normals.end(), {float(normal.x()), float(normal.y()), float(normal.z())});
        primitive["attributes"]["NORMAL"] = sketch.add<float>(normals, 5126, "VEC3");
        sketch.tree["nodes"].push_back({{"name", "thing"},
                                        {"translation", {1.5, 0.25, 0}},
                                        {"rotation", {0, 0.6, 0, 0.8}},
                                        {"scale", {size.x(), size.y(), size.z()}},
                                        {"mesh", 1}});
        sketch.tree["scenes"][0]["nodes"] = {0, 3, 4};
        std::shared_ptr<const RyMeshParts> parts;
        std::vector<RyVec3> positions;
        {
            CharacterScene scene(sketch.write(m_folder.filePath(QStringLiteral("prop.gltf"))));
            const RyNode *prop = scene.scene.findNode(QStringLiteral("thing"));
            QVERIFY(prop);
            const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(prop));
            parts = shape->getParts();
            positions = shape->getFacetMesh()->getPositions();
            QVERIFY(RyPartNormals(*shape).of(parts->parts[0]) == parts->parts[0].readNormals());
        }
        const RyMeshPart &part = parts->parts[0];
        QVERIFY(part.hasNormals());
        // Upright on a surface that is stretched first and turned then.
        const Eigen::Quaterniond turn(0.8, 0.0, 0.6, 0.0);
        const Eigen::Vector3d expected = turn * normal.cwiseQuotient(size).normalized();
        const std::vector<RyVec3> read = part.readNormals();
        QCOMPARE(read.size(), size_t(18));
        for (const RyVec3 &each : read)
            QVERIFY((Eigen::Vector3d(each.x, each.y, each.z) - expected).norm() < 1e-5);
        const std::vector<RyVec3> places = part.normalSource->positions();
        QCOMPARE(places.size(), part.vertexOfSplit.size());
        for (size_t split = 0; split < places.size(); ++split)
            QVERIFY(places[split] == positions[size_t(part.vertexOfSplit[split])]);
    }

private:
    QTemporaryDir m_folder;
};

RY_TEST(NormalsOfFilesTest)
#include "tst_normals_of_files.moc"
