#include "evaluator/GltfDifferences.h"
#include "evaluator/GltfEvaluator.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <Eigen/Geometry>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <stdexcept>

using nlohmann::json;

namespace {

/// A file that can be checked by hand: a strip of three points along +Y with two joints, `low` at the origin and `high`
/// one unit above, below a root that stands at x = 10. Point 0 follows low, point 2 follows high, point 1 both.
class TwoJoints
{
public:
    json tree = {{"asset", {{"version", "2.0"}}}, {"scene", 0}, {"scenes", {{{"nodes", {0, 3}}}}}};
    std::string data;

    TwoJoints()
    {
        tree["nodes"] = {{{"name", "root"}, {"translation", {10, 0, 0}}, {"children", {1}}},
                         {{"name", "low"}, {"children", {2}}},
                         {{"name", "high"}, {"translation", {0, 1, 0}}},
                         {{"name", "strip"}, {"mesh", 0}, {"skin", 0}, {"translation", {100, 100, 100}}}};
        const int position = add<float>({0, 0, 0, 0, 1, 0, 0, 2, 0}, 5126, "VEC3");
        const int joints = add<std::uint8_t>({0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0}, 5121, "VEC4");
        // Not normalised on purpose: 1 and 3 of 4.
        const int weights = add<float>({1, 0, 0, 0, 0.25f, 0.75f, 0, 0, 2, 0, 0, 0}, 5126, "VEC4");
        const int indices = add<std::uint16_t>({0, 1, 2}, 5123, "SCALAR");
        const int binds = add<float>({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0,  0, 1, //
                                      1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1},
                                     5126, "MAT4");
        tree["meshes"] = {{{"name", "strip"},
                           {"primitives",
                            {{{"attributes", {{"POSITION", position}, {"JOINTS_0", joints}, {"WEIGHTS_0", weights}}},
                              {"indices", indices}}}}}};
        tree["skins"] = {{{"joints", {1, 2}}, {"inverseBindMatrices", binds}}};
    }

    template<typename T>
    int add(const std::vector<T> &values, int component, const std::string &type)
    {
        while (data.size() % 4)
            data.push_back('\0');
        const std::size_t begin = data.size();
        data.append(reinterpret_cast<const char *>(values.data()), values.size() * sizeof(T));
        const std::map<std::string, std::size_t> sizes = {{"SCALAR", 1}, {"VEC3", 3}, {"VEC4", 4}, {"MAT4", 16}};
        tree["bufferViews"].push_back({{"buffer", 0}, {"byteOffset", begin}, {"byteLength", data.size() - begin}});
        tree["accessors"].push_back({{"bufferView", tree["bufferViews"].size() - 1},
                                     {"componentType", component},
                                     {"count", values.size() / sizes.at(type)},
                                     {"type", type}});
        return int(tree["accessors"].size()) - 1;
    }

    GltfEvaluator asText() const
    {
        json copy = tree;
        const QByteArray encoded = QByteArray::fromStdString(data).toBase64();
        copy["buffers"] = {
            {{"byteLength", data.size()}, {"uri", "data:application/octet-stream;base64," + encoded.toStdString()}}};
        return open("figure.gltf", copy.dump());
    }

    GltfEvaluator asFiles() const
    {
        json copy = tree;
        copy["buffers"] = {{{"byteLength", data.size()}, {"uri", "its%20data.bin"}}};
        write("its data.bin", data);
        return open("figure.gltf", copy.dump());
    }

    std::string binary() const
    {
        json copy = tree;
        copy["buffers"] = {{{"byteLength", data.size()}}};
        std::string text = copy.dump();
        text.resize((text.size() + 3) / 4 * 4, ' ');
        std::string bin = data;
        bin.resize((bin.size() + 3) / 4 * 4, '\0');
        const auto number = [](std::size_t value) {
            const auto word = std::uint32_t(value);
            return std::string(reinterpret_cast<const char *>(&word), 4);
        };
        return "glTF" + number(2) + number(28 + text.size() + bin.size()) + number(text.size()) + "JSON" + text +
               number(bin.size()) + std::string("BIN\0", 4) + bin;
    }

    GltfEvaluator asBinary() const { return open("figure.glb", binary()); }

    GltfEvaluator open(const QString &name, const std::string &bytes) const
    {
        return GltfEvaluator(write(name, bytes));
    }

private:
    QTemporaryDir m_folder;

    std::string write(const QString &name, const std::string &bytes) const
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes.data(), qint64(bytes.size())) != qint64(bytes.size()))
            throw std::runtime_error("cannot write the file of the test");
        return file.fileName().toStdString();
    }
};

Eigen::Matrix3d quarterTurnAboutZ()
{
    Eigen::Matrix3d m;
    m << 0, -1, 0, 1, 0, 0, 0, 0, 1;
    return m;
}

std::vector<Eigen::Vector3d> only(const GltfEvaluator &file, const GltfPose &pose = {})
{
    return file.positions(file.primitives().front(), pose);
}

} // namespace

class GltfEvaluatorTest : public QObject
{
    Q_OBJECT

private slots:
    void readsAllThreeForms()
    {
        const TwoJoints source;
        for (const GltfEvaluator &file : {source.asText(), source.asFiles(), source.asBinary()}) {
            QCOMPARE(file.nodeCount(), 4);
            QCOMPARE(file.parent(file.node("high")), file.node("low"));
            QCOMPARE(file.parent(file.node("root")), -1);
            QCOMPARE(file.bufferBytes(0), source.data);
            QCOMPARE(file.restPositions(file.primitives().front()).at(2), Eigen::Vector3d(0, 2, 0));
        }
    }

    void counts()
    {
        const GltfCounts counts = TwoJoints().asText().counts();
        QCOMPARE(counts.vertices, std::size_t(3));
        QCOMPARE(counts.triangles, std::size_t(1));
        QCOMPARE(counts.joints, std::size_t(2));
        QCOMPARE(counts.maxInfluences, std::size_t(2));
    }

    /// The joints' world decides; the transform of the mesh's own node does not.
    void skinnedAtThePoseOfTheFile()
    {
        const std::vector<Eigen::Vector3d> expected = {{10, 0, 0}, {10, 1, 0}, {10, 2, 0}};
        QVERIFY(gltfMaxDistance(only(TwoJoints().asText()), expected) < 1e-12);
    }

    /// A quarter turn of the upper joint takes the top point to its left; the middle one lies on the joint and stays.
    void turnOfOneJoint()
    {
        const GltfEvaluator file = TwoJoints().asText();
        GltfPose pose;
        pose.turn[file.node("high")] = quarterTurnAboutZ();
        const std::vector<Eigen::Vector3d> expected = {{10, 0, 0}, {10, 1, 0}, {9, 1, 0}};
        QVERIFY(gltfMaxDistance(only(file, pose), expected) < 1e-12);
    }

    /// Weights 0.25 and 0.75: the middle point is taken along by three quarters of the upper joint's way.
    void replacedLocalMatrixAndNormalisedWeights()
    {
        const GltfEvaluator file = TwoJoints().asText();
        GltfPose pose;
        pose.local[file.node("high")] = Eigen::Affine3d(Eigen::Translation3d(0, 1, 4)).matrix();
        const std::vector<Eigen::Vector3d> expected = {{10, 0, 0}, {10, 1, 3}, {10, 2, 4}};
        QVERIFY(gltfMaxDistance(only(file, pose), expected) < 1e-12);
    }

    void turnIsInTheJointsOwnAxes()
    {
        TwoJoints source;
        // The lower joint stands a quarter turn about Z: its own X points along the world's Y.
        source.tree["nodes"][1]["rotation"] = {0, 0, std::sqrt(0.5), std::sqrt(0.5)};
        const GltfEvaluator file = source.asText();
        GltfPose pose;
        pose.turn[file.node("low")] = Eigen::AngleAxisd(M_PI / 2, Eigen::Vector3d::UnitX()).toRotationMatrix();
        // (0, 2, 0) of the joint turns about its X to (0, 0, 2), and stands so in the world, as Z is common to both.
        QVERIFY((only(file, pose)[2] - Eigen::Vector3d(10, 0, 2)).norm() < 1e-12);
    }

    void scaleRotationTranslationInOrder()
    {
        TwoJoints source;
        source.tree["nodes"][2] = {{"name", "high"},
                                   {"translation", {0, 1, 0}},
                                   {"rotation", {0, 0, std::sqrt(0.5), std::sqrt(0.5)}},
                                   {"scale", {1, 3, 1}}};
        // (0, 1, 0) above the joint: scaled to 3, turned to -X, moved to (0, 1, 0) above the root.
        const GltfEvaluator file = source.asText();
        QVERIFY((only(file)[2] - Eigen::Vector3d(7, 1, 0)).norm() < 1e-12);
        const Eigen::Matrix4d world = file.worldMatrices().at(std::size_t(file.node("high")));
        json matrix = json::array();
        for (int i = 0; i < 16; ++i)
            matrix.push_back(file.localMatrix(file.node("high")).data()[i]);
        source.tree["nodes"][2] = {{"name", "high"}, {"matrix", matrix}};
        const GltfEvaluator again = source.asText();
        QVERIFY((again.worldMatrices().at(std::size_t(again.node("high"))) - world).norm() < 1e-12);
    }

    void secondSetOfInfluences()
    {
        TwoJoints source;
        auto &attributes = source.tree["meshes"][0]["primitives"][0]["attributes"];
        attributes["JOINTS_1"] = source.add<std::uint16_t>({1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 5123, "VEC4");
        attributes["WEIGHTS_1"] = source.add<std::uint16_t>({65535, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 5123, "VEC4");
        source.tree["accessors"].back()["normalized"] = true;
        const GltfEvaluator file = source.asText();
        GltfPose pose;
        pose.local[file.node("high")] = Eigen::Affine3d(Eigen::Translation3d(0, 1, 4)).matrix();
        QVERIFY((only(file, pose)[0] - Eigen::Vector3d(10, 0, 2)).norm() < 1e-12);
    }

    void vertexWithoutWeightsFollowsTheNode()
    {
        TwoJoints source;
        auto &attributes = source.tree["meshes"][0]["primitives"][0]["attributes"];
        attributes["WEIGHTS_0"] = source.add<float>({0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0}, 5126, "VEC4");
        QVERIFY((only(source.asText())[0] - Eigen::Vector3d(100, 100, 100)).norm() < 1e-12);
    }

    void morphTargets()
    {
        TwoJoints source;
        const int lift = source.add<float>({0, 0, 0, 0, 0, 0, 0, 0, 8}, 5126, "VEC3");
        source.tree["meshes"][0]["primitives"][0]["targets"] = {{{"POSITION", lift}}};
        source.tree["meshes"][0]["weights"] = {0.5};
        QVERIFY((only(source.asText())[2] - Eigen::Vector3d(10, 2, 4)).norm() < 1e-12);
        source.tree["nodes"][3]["weights"] = {0.25};
        QVERIFY((only(source.asText())[2] - Eigen::Vector3d(10, 2, 2)).norm() < 1e-12);
        GltfPose pose;
        pose.weights[3] = {1.0};
        QVERIFY((only(source.asText(), pose)[2] - Eigen::Vector3d(10, 2, 8)).norm() < 1e-12);
    }

    void stridesAndSparseValues()
    {
        TwoJoints source;
        // Positions with one more number after each.
        const int wide = source.add<float>({0, 0, 0, 9, 0, 1, 0, 9, 0, 2, 0, 9}, 5126, "VEC4");
        auto &accessor = source.tree["accessors"][std::size_t(wide)];
        accessor["type"] = "VEC3";
        source.tree["bufferViews"].back()["byteStride"] = 16;
        const int place = source.add<std::uint16_t>({1}, 5123, "SCALAR");
        const int value = source.add<float>({0, 1, 5}, 5126, "VEC3");
        source.tree["accessors"][std::size_t(wide)]["sparse"] = {
            {"count", 1},
            {"indices", {{"bufferView", place}, {"componentType", 5123}}},
            {"values", {{"bufferView", value}}}};
        source.tree["meshes"][0]["primitives"][0]["attributes"]["POSITION"] = wide;
        const std::vector<Eigen::Vector3d> expected = {{0, 0, 0}, {0, 1, 5}, {0, 2, 0}};
        const GltfEvaluator file = source.asText();
        QVERIFY(gltfMaxDistance(file.restPositions(file.primitives().front()), expected) < 1e-12);
        QCOMPARE(file.accessorBytes(wide).size(), std::size_t(36));
    }

    void refusesWhatMakesNoSense_data()
    {
        QTest::addColumn<QByteArray>("pointer");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("a circle of nodes") << QByteArray("/nodes/2/children") << QByteArray("[1]");
        QTest::newRow("its own child") << QByteArray("/nodes/1/children") << QByteArray("[1]");
        QTest::newRow("a child that is not there") << QByteArray("/nodes/2/children") << QByteArray("[77]");
        QTest::newRow("a joint that is not there") << QByteArray("/skins/0/joints") << QByteArray("[1,77]");
        QTest::newRow("a skin that is not there") << QByteArray("/nodes/3/skin") << QByteArray("5");
        QTest::newRow("a joint beyond the skin") << QByteArray("/skins/0/joints") << QByteArray("[1]");
        QTest::newRow("more positions than bytes") << QByteArray("/accessors/0/count") << QByteArray("2147483647");
        QTest::newRow("an offset beyond the view") << QByteArray("/accessors/0/byteOffset") << QByteArray("4294967288");
        QTest::newRow("a view beyond the buffer") << QByteArray("/bufferViews/0/byteLength") << QByteArray("999999");
        QTest::newRow("an unknown type") << QByteArray("/accessors/0/type") << QByteArray("\"VEC9\"");
    }

    void refusesWhatMakesNoSense()
    {
        QFETCH(QByteArray, pointer);
        QFETCH(QByteArray, value);
        TwoJoints source;
        QCOMPARE(source.asText().allPositions().size(), std::size_t(3));
        source.tree[json::json_pointer(pointer.toStdString())] = json::parse(value.toStdString());
        QVERIFY_EXCEPTION_THROWN(source.asText().allPositions(), std::runtime_error);
    }

    void refusesTruncatedFiles()
    {
        const TwoJoints source;
        const std::string whole = source.binary();
        QVERIFY(source.open("whole.glb", whole).nodeCount() == 4);
        for (std::size_t length :
             {std::size_t(0), std::size_t(3), std::size_t(11), std::size_t(40), whole.size() / 2, whole.size() - 1})
            QVERIFY_EXCEPTION_THROWN(source.open("cut.glb", whole.substr(0, length)), std::runtime_error);
    }

    void differencesOfTrees()
    {
        const json a = {{"nodes", {{{"name", "a"}, {"rotation", {0, 0, 0, 1}}}, {{"name", "b"}}}},
                        {"extras", {{"k", 1}}}};
        json b = a;
        QVERIFY(gltfDifferences(a, b).empty());
        b["nodes"][0]["rotation"][3] = 1.0;
        QVERIFY(gltfDifferences(a, b).empty());
        b["nodes"][0]["rotation"][3] = 0.5;
        b["extras"]["k"] = 2;
        b["nodes"][1]["scale"] = {1, 1, 2};
        const std::vector<std::string> expected = {"/extras/k", "/nodes/0/rotation/3", "/nodes/1/scale/0",
                                                   "/nodes/1/scale/1", "/nodes/1/scale/2"};
        QCOMPARE(gltfDifferences(a, b), expected);
        QCOMPARE(gltfDifferences(b, a), expected);
        QCOMPARE(gltfDifferences(a, b, {"/nodes/*/scale", "/nodes/*/rotation"}), std::vector<std::string>{"/extras/k"});
        QCOMPARE(gltfDifferences(a, b, {"/nodes", "/extras/other"}), std::vector<std::string>{"/extras/k"});
        b = a;
        b["extras"] = nullptr;
        QCOMPARE(gltfDifferences(a, b).size(), std::size_t(1));
    }

    void largestDistance()
    {
        QCOMPARE(gltfMaxDistance({{0, 0, 0}, {1, 0, 0}}, {{0, 0, 0}, {1, 3, 4}}), 5.0);
        QVERIFY(std::isinf(gltfMaxDistance({{0, 0, 0}}, {})));
        QVERIFY(std::isinf(gltfMaxDistance({{0, 0, std::nan("")}}, {{0, 0, 0}})));
    }

    void realCharacters_data()
    {
        QTest::addColumn<int>("vertices");
        QTest::addColumn<int>("triangles");
        QTest::addColumn<int>("joints");
        QTest::addColumn<int>("influences");
        QTest::newRow("CesiumMan.glb") << 3273 << 4672 << 19 << 4;
        QTest::newRow("RiggedSimple.gltf") << 160 << 188 << 2 << 2;
        QTest::newRow("Fox.glb") << 1728 << 576 << 24 << 4;
        QTest::newRow("kaykit_knight.glb") << 7024 << 6952 << 41 << 4;
        QTest::newRow("mh_default_rig.glb") << 14517 << 26756 << 163 << 9;
        QTest::newRow("quad_10_influences.glb") << 4 << 2 << 10 << 10;
        QTest::newRow("hand_flat_hierarchy.glb") << 1360 << 2314 << 25 << 4;
    }

    void realCharacters()
    {
        const QString path = ryModel(QTest::currentDataTag());
        if (path.isEmpty())
            QSKIP("the characters are not on this machine");
        QFETCH(int, vertices);
        QFETCH(int, triangles);
        QFETCH(int, joints);
        QFETCH(int, influences);
        const GltfEvaluator file(path.toStdString());
        const GltfCounts counts = file.counts();
        QCOMPARE(int(counts.vertices), vertices);
        QCOMPARE(int(counts.triangles), triangles);
        QCOMPARE(int(counts.joints), joints);
        QCOMPARE(int(counts.maxInfluences), influences);
        for (const Eigen::Vector3d &point : file.allPositions())
            QVERIFY(point.allFinite());
    }

    /// The true heads of the bones were written down by another program before the file was exported.
    void jointsStandWhereTheBonesBegan()
    {
        const QString path = ryModel("mh_default_rig.glb");
        QFile truth(ryModel("mh_default_rig.truth.json"));
        if (path.isEmpty() || !truth.open(QIODevice::ReadOnly))
            QSKIP("the characters are not on this machine");
        const GltfEvaluator file(path.toStdString());
        const std::vector<Eigen::Matrix4d> worlds = file.worldMatrices();
        const json bones = json::parse(truth.readAll().toStdString()).at("bones");
        QCOMPARE(int(bones.size()), 163);
        for (const auto &[name, bone] : bones.items()) {
            const auto head = bone.at("head").get<std::vector<double>>();
            const Eigen::Vector3d found = worlds.at(std::size_t(file.node(name))).topRightCorner<3, 1>();
            QVERIFY2((found - Eigen::Vector3d(head[0], head[1], head[2])).norm() < 1e-4, name.c_str());
        }
    }
};

RY_TEST(GltfEvaluatorTest)
#include "tst_evaluator.moc"
