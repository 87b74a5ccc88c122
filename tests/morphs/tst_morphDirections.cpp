#include "MorphFileStage.h"

#include "evaluator/GltfFileReader.h"

#include <Eigen/Dense>

using Eigen::Matrix3d;
using Eigen::Vector3d;
using nlohmann::json;

/// Deltas of normals and tangents go along where a mesh is written in another space, scaled unequally as well.
class MorphDirectionsTest : public QObject, private MorphFileStage
{
    Q_OBJECT

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        file = MorphFile(ryTestSeed());
        addDirections();
    }

    void figureBecomesProp()
    {
        CharacterScene character(path);
        RySkeleton::convertFigureToProp(figureOf(character.scene), "statue");
        CharacterScene again(save(character.scene, "statue.glb"));
        const json &statue = again.file.tree()["nodes"][size_t(again.file.node("statue"))];
        compare(character.file, again.file, statue["mesh"].get<int>(), Splits);
        const QByteArray bytes = bytesOf(save(again.scene, "second.glb"));
        QCOMPARE(bytes, bytesOf(folder.filePath("statue.glb")));
    }

    /// Vertices that follow the lower joint alone, as those around them do, are turned alike.
    void reboundFigure()
    {
        useTwoBinds();
        CharacterScene character(path);
        character.bones().back()->getXRotControl()->setValue(15);
        const CharacterScene again(save(character.scene, "turned.glb"));
        compare(character.file, again.file, 0, 4);
    }

    /// What stays in its space keeps its bytes.
    void nothingElseChanges()
    {
        CharacterScene character(path);
        const json before = character.file.tree()["meshes"][0];
        morphCalled(*figureOf(character.scene), "shape 6")->getValueControl()->setValue(0.5f);
        const CharacterScene again(save(character.scene, "same.gltf"));
        QVERIFY(again.file.tree()["meshes"][0] == before);
    }

private:
    static constexpr int Splits = 18; // of a primitive
    const QStringList Names{"shape 0", "shape 1", "shape 6", "shape 13"};

    /// Normals as the triangles say them, tangents of both hands, and targets of both.
    void addDirections()
    {
        file.sketch.tree["nodes"][0]["scale"] = {3.0, 2.0, 4.0};
        for (size_t p : {size_t(0), size_t(1)}) {
            json &primitive = file.sketch.tree["meshes"][0]["primitives"][p];
            const Vector3d normal = p == 0 ? Vector3d(-0.1, 0, 1).normalized() : Vector3d(0, 0, -1);
            const Vector3d tangent = normal.cross(Vector3d(0.3, 1, 0.2)).normalized();
            std::vector<float> normals, tangents;
            for (int split = 0; split < Splits; ++split) {
                for (int axis = 0; axis < 3; ++axis) {
                    normals.push_back(float(normal[axis]));
                    tangents.push_back(float(tangent[axis]));
                }
                tangents.push_back(split % 2 == 0 ? 1.0f : -1.0f);
            }
            primitive["attributes"]["NORMAL"] = file.sketch.add<float>(normals, 5126, "VEC3");
            primitive["attributes"]["TANGENT"] = file.sketch.add<float>(tangents, 5126, "VEC4");
            for (const QString &name : Names) {
                json &target = primitive["targets"][size_t(file.figureMorphs.at(name).front().second)];
                target["NORMAL"] = randomDeltas();
                target["TANGENT"] = randomDeltas();
            }
        }
        file.sketch.write(path);
    }
    int randomDeltas()
    {
        std::uniform_real_distribution<float> number(-0.5f, 0.5f);
        std::vector<float> deltas;
        for (int i = 0; i < 3 * Splits; ++i)
            deltas.push_back(number(m_random));
        return file.sketch.add<float>(deltas, 5126, "VEC3");
    }

    static Vector3d at(const GltfTable &table, int row)
    {
        const double *numbers = table.row(size_t(row));
        return {numbers[0], numbers[1], numbers[2]};
    }
    static GltfTable of(const GltfEvaluator &reader, const json &attributes, const char *name)
    {
        return reader.accessorValues(attributes.at(name).get<int>());
    }
    static Vector3d shown(const GltfTable &base, const GltfTable &deltas, double weight, int split)
    {
        return (at(base, split) + weight * at(deltas, split)).normalized();
    }

    /// The linear map of column vectors that brought the first vertices of the body's primitives where they are.
    static Matrix3d mapBetween(const GltfEvaluator &before, const json &from, const GltfEvaluator &after,
                               const json &to, int vertices)
    {
        Eigen::MatrixXd a(2 * vertices, 4), b(2 * vertices, 3);
        for (int row = 0; row < 2 * vertices; ++row) {
            const size_t p = size_t(row / vertices);
            a.row(row) << at(of(before, from["primitives"][p]["attributes"], "POSITION"), row % vertices).transpose(),
                1.0;
            b.row(row) = at(of(after, to["primitives"][p]["attributes"], "POSITION"), row % vertices).transpose();
        }
        const Eigen::MatrixXd map = a.colPivHouseholderQr().solve(b);
        return map.topRows(3).transpose();
    }

    void compare(const GltfEvaluator &before, const GltfEvaluator &after, int mesh, int vertices) const
    {
        const json &from = before.tree()["meshes"][0];
        const json &to = after.tree()["meshes"][size_t(mesh)];
        const Matrix3d map = mapBetween(before, from, after, to, vertices);
        QVERIFY((map - map.trace() / 3.0 * Matrix3d::Identity()).norm() > 0.1 * map.norm());
        const Matrix3d ofNormals = map.inverse().transpose();
        const json &names = to["extras"]["targetNames"];
        for (const size_t p : {size_t(0), size_t(1)}) {
            const json &old = from["primitives"][p];
            const json &now = to["primitives"][p];
            for (const QString &name : Names) {
                const auto place = std::find(names.begin(), names.end(), json(name.toStdString())) - names.begin();
                const json &oldTarget = old["targets"][size_t(file.figureMorphs.at(name).front().second)];
                const json &nowTarget = now["targets"].at(size_t(place));
                for (const bool isNormal : {true, false}) {
                    const char *attribute = isNormal ? "NORMAL" : "TANGENT";
                    const GltfTable oldBase = of(before, old["attributes"], attribute);
                    const GltfTable nowBase = of(after, now["attributes"], attribute);
                    const GltfTable oldDeltas = of(before, oldTarget, attribute);
                    const GltfTable nowDeltas = of(after, nowTarget, attribute);
                    for (int split = 0; split < vertices; ++split) {
                        for (const double weight : {0.0, 0.375, 1.0}) {
                            const Vector3d wanted =
                                ((isNormal ? ofNormals : map) * shown(oldBase, oldDeltas, weight, split)).normalized();
                            const double apart = (shown(nowBase, nowDeltas, weight, split) - wanted).norm();
                            QVERIFY2(apart < 1e-4, qPrintable(QStringLiteral("%1 of %2 by %3: %4 off")
                                                                  .arg(attribute, name)
                                                                  .arg(weight)
                                                                  .arg(apart)));
                        }
                    }
                }
            }
        }
    }

    std::mt19937 m_random{ryTestSeed()};
};

RY_TEST(MorphDirectionsTest)
#include "tst_morphDirections.moc"
