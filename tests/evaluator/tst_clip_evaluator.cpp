#include "FigureSketch.h"
#include "evaluator/GltfClipEvaluator.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

using nlohmann::json;

namespace {

constexpr int High = 2;

} // namespace

/// Clips played, against values worked out by hand.
class GltfClipEvaluatorTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_sketch = FigureSketch();
        m_sketch.tree["animations"] = {{{"samplers", json::array()}, {"channels", json::array()}}};
    }

    void steps()
    {
        drive("translation", "STEP", {1, 2, 4}, {1, 2, 3, 4, 5, 6, 7, 8, 9}, "VEC3");
        compare(0, {1, 2, 3});
        compare(1, {1, 2, 3});
        compare(1.999, {1, 2, 3});
        compare(2, {4, 5, 6});
        compare(3.9, {4, 5, 6});
        compare(4, {7, 8, 9});
        compare(99, {7, 8, 9});
    }

    void straightLines()
    {
        drive("translation", "", {1, 2, 4}, {0, 0, 0, 4, 8, -4, 4, 8, 4}, "VEC3");
        compare(0.5, {0, 0, 0});
        compare(1.25, {1, 2, -1});
        compare(3, {4, 8, 0});
        compare(5, {4, 8, 4});
    }

    /// A quarter turn about z; the second key names its turn by the other sign, and the way stays the short one.
    void arcs()
    {
        const float h = float(std::sqrt(0.5));
        drive("rotation", "LINEAR", {0, 1}, {0, 0, 0, 1, 0, 0, -h, -h}, "VEC4");
        for (const double part : {0.0, 0.25, 0.5, 1.0}) {
            const double angle = part * M_PI / 2;
            const Eigen::Vector3d x = rotationAt(part) * Eigen::Vector3d::UnitX();
            QVERIFY((x - Eigen::Vector3d(std::cos(angle), std::sin(angle), 0)).norm() < 1e-6);
        }
    }

    /// From 0 with tangent 1 to 8 with tangent -2 in two seconds: 8 (3 p^2 - 2 p^3) + 2 (p^3 - 2 p^2 + p) * 1 +
    /// 2 (p^3 - p^2) * -2. The outer tangents play no part.
    void cubicSplines()
    {
        drive("translation", "CUBICSPLINE", {1, 3}, {9, 9, 9, 0, 0, 0, 1, 0, 0, -2, 0, 0, 8, 0, 0, 9, 9, 9}, "VEC3");
        compare(0, {0, 0, 0});
        compare(1, {0, 0, 0});
        compare(2, {4 + 0.25 + 0.5, 0, 0});
        compare(1.5, {8 * (3.0 / 16 - 2.0 / 64) + 2 * (1.0 / 64 - 2.0 / 16 + 0.25) - 4 * (1.0 / 64 - 1.0 / 16), 0, 0});
        compare(3, {8, 0, 0});
        compare(4, {8, 0, 0});
    }

    /// Half way between no turn and a half turn about z, with tangents of zero: the numbers are (0, 0, 1/2, 1/2), which
    /// is a quarter turn once it has unit length.
    void cubicTurns()
    {
        drive("rotation", "CUBICSPLINE", {0, 1},
              {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0}, "VEC4");
        QVERIFY((rotationAt(0.5) * Eigen::Vector3d::UnitX() - Eigen::Vector3d::UnitY()).norm() < 1e-12);
        // A quarter of the way: 3/16 - 2/64 = 0.15625 of z, the rest of w.
        const double angle = 2.0 * std::atan2(0.15625, 0.84375);
        const Eigen::Vector3d x = rotationAt(0.25) * Eigen::Vector3d::UnitX();
        QVERIFY((x - Eigen::Vector3d(std::cos(angle), std::sin(angle), 0)).norm() < 1e-12);
    }

    void wholeNumbers()
    {
        const int times = addTimes({0, 1});
        const int bytes = m_sketch.add<std::int8_t>({0, 0, 0, 127, 0, 127, 0, 0}, 5120, "VEC4");
        m_sketch.tree["accessors"].back()["normalized"] = true;
        addChannel(times, bytes, "LINEAR", "rotation");
        // A half turn about y: half way, x points along -z.
        QVERIFY((rotationAt(0.5) * Eigen::Vector3d::UnitX() + Eigen::Vector3d::UnitZ()).norm() < 1e-12);
        init();
        const int shorts = m_sketch.add<std::int16_t>({0, 0, 23170, 23170, 32767, 0, 0, -32768}, 5122, "VEC4");
        m_sketch.tree["accessors"].back()["normalized"] = true;
        addChannel(addTimes({0, 1}), shorts, "STEP", "rotation");
        QVERIFY((rotationAt(0) * Eigen::Vector3d::UnitX() - Eigen::Vector3d::UnitY()).norm() < 1e-12);
        // -32768 says -1 as well, and (1, 0, 0, -1) is a quarter turn about -x.
        QVERIFY((rotationAt(1) * Eigen::Vector3d::UnitY() + Eigen::Vector3d::UnitZ()).norm() < 1e-12);
    }

    void sparseValues()
    {
        const int places = m_sketch.add<std::uint8_t>({1}, 5121, "SCALAR");
        const int values = m_sketch.add<float>({2, 4, 6}, 5126, "VEC3");
        const json &accessors = m_sketch.tree["accessors"];
        const json sparse = {
            {"count", 1},
            {"indices", {{"bufferView", accessors[size_t(places)]["bufferView"]}, {"componentType", 5121}}},
            {"values", {{"bufferView", accessors[size_t(values)]["bufferView"]}}}};
        m_sketch.tree["accessors"].push_back(
            {{"componentType", 5126}, {"count", 3}, {"type", "VEC3"}, {"sparse", sparse}});
        const int output = int(m_sketch.tree["accessors"].size()) - 1;
        addChannel(addTimes({0, 1, 2}), output, "LINEAR", "translation");
        compare(0, {0, 0, 0});
        compare(0.5, {1, 2, 3});
        compare(1, {2, 4, 6});
        compare(1.75, {0.5, 1, 1.5});
    }

    /// What no channel drives is the node's own.
    void ownValues()
    {
        m_sketch.tree["nodes"][High]["scale"] = {2, 3, 4};
        m_sketch.tree["nodes"][High]["rotation"] = {0, 0, std::sqrt(0.5), std::sqrt(0.5)};
        drive("translation", "LINEAR", {0, 1}, {0, 0, 0, 2, 0, 0}, "VEC3");
        Eigen::Matrix4d expected;
        expected << 0, -3, 0, 1, 2, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1;
        QVERIFY((matrixAt(0.5) - expected).cwiseAbs().maxCoeff() < 1e-12);
        // The one above moves what it carries, and a channel of its scale takes the place of the node's.
        drive("scale", "LINEAR", {0, 1}, {1, 1, 1, 5, 3, 1}, "VEC3");
        expected << 0, -2, 0, 1, 3, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1;
        QVERIFY((matrixAt(0.5) - expected).cwiseAbs().maxCoeff() < 1e-12);
        const GltfEvaluator file = written();
        QVERIFY((file.worldPosition(High, GltfClipEvaluator(file, 0).pose(0.25)) - Eigen::Vector3d(0.5, 0, 0)).norm() <
                1e-12);
    }

    void laterOfTwo()
    {
        drive("translation", "STEP", {0}, {1, 1, 1}, "VEC3");
        drive("translation", "STEP", {0}, {2, 2, 2}, "VEC3");
        compare(0, {2, 2, 2});
    }

    void leavesOutWhatMakesNoSense_data()
    {
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("falling times") << QByteArray("rise");
        QTest::newRow("equal times") << QByteArray("rise");
        QTest::newRow("no number") << QByteArray("no number");
        QTest::newRow("endless time") << QByteArray("rise");
        QTest::newRow("too few values") << QByteArray("counts");
        QTest::newRow("wrong kind") << QByteArray("counts");
        QTest::newRow("unknown interpolation") << QByteArray("interpolation");
        QTest::newRow("no sampler") << QByteArray("");
        QTest::newRow("no node") << QByteArray("no node");
        QTest::newRow("a matrix") << QByteArray("matrix");
    }
    void leavesOutWhatMakesNoSense()
    {
        QFETCH(QByteArray, reason);
        const std::string tag = QTest::currentDataTag();
        drive("translation", "LINEAR", {0, 1, 2}, {1, 0, 0, 2, 0, 0, 3, 0, 0}, "VEC3");
        QCOMPARE(GltfClipEvaluator(written(), 0).leftOut().size(), size_t(0));
        json &clip = m_sketch.tree["animations"][0];
        const int times = clip["samplers"][0]["input"];
        const int values = clip["samplers"][0]["output"];
        if (tag == "falling times")
            m_sketch.set(times, 2, 0.5f);
        else if (tag == "equal times")
            m_sketch.set(times, 2, 1.0f);
        else if (tag == "no number")
            m_sketch.set(values, 4, std::nanf(""));
        else if (tag == "endless time")
            m_sketch.set(times, 2, std::numeric_limits<float>::infinity());
        else if (tag == "too few values")
            m_sketch.tree["accessors"][size_t(values)]["count"] = 2;
        else if (tag == "wrong kind")
            m_sketch.tree["accessors"][size_t(values)]["type"] = "SCALAR";
        else if (tag == "unknown interpolation")
            clip["samplers"][0]["interpolation"] = "ROUND";
        else if (tag == "no sampler")
            clip["channels"][0]["sampler"] = 7;
        else if (tag == "no node")
            clip["channels"][0]["target"]["node"] = 70;
        else
            m_sketch.tree["nodes"][High] = {{"matrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}}};
        const GltfEvaluator file = written();
        const GltfClipEvaluator played(file, 0);
        QCOMPARE(played.leftOut().size(), size_t(1));
        QVERIFY2(QByteArray::fromStdString(played.leftOut()[0]).contains(reason), played.leftOut()[0].c_str());
        QVERIFY(played.pose(0.5).local.empty());
        QVERIFY(played.keyTimes().empty());
    }

    void otherTargets()
    {
        drive("translation", "LINEAR", {0, 1}, {1, 0, 0, 2, 0, 0}, "VEC3");
        json &target = m_sketch.tree["animations"][0]["channels"][0]["target"];
        target = {{"path", "pointer"}, {"extensions", {{"KHR_animation_pointer", {{"pointer", "/nodes/2/scale"}}}}}};
        QVERIFY(GltfClipEvaluator(written(), 0).pose(0.5).local.empty());
        QVERIFY(GltfClipEvaluator(written(), 0).leftOut().empty());
        QVERIFY_EXCEPTION_THROWN(GltfClipEvaluator(written(), 1), std::runtime_error);
    }

    void frames()
    {
        drive("translation", "LINEAR", {0, 4}, {1, 0, 0, 2, 0, 0}, "VEC3");
        drive("scale", "LINEAR", {1, 4}, {1, 1, 1, 2, 2, 2}, "VEC3");
        const GltfEvaluator file = written();
        const std::vector<double> keys = GltfClipEvaluator(file, 0).keyTimes();
        QCOMPARE(keys, (std::vector<double>{0, 1, 4}));
        QCOMPARE(gltfFrameTimes(keys, 9), (std::vector<double>{0, 0.25, 0.5, 0.75, 1, 1.75, 2.5, 3.25, 4}));
        const double soon = 1 + std::ldexp(1.0, -20);
        const double part = (2 - soon) / 4;
        QCOMPARE(gltfFrameTimes({1, soon, 2}, 99),
                 (std::vector<double>{1, soon, soon + part, soon + 2 * part, soon + 3 * part, 2}));
        // Thinned, frames between keys are still among them.
        std::vector<double> many;
        for (int i = 0; i < 101; ++i)
            many.push_back(i);
        const std::vector<double> some = gltfFrameTimes(many, 100);
        QCOMPARE(some.size(), size_t(100));
        int atKeys = 0;
        for (size_t i = 0; i < some.size(); ++i) {
            atKeys += some[i] == std::floor(some[i]);
            QVERIFY(some[i] >= double(i) && some[i] < double(i) + 1.1);
        }
        QVERIFY2(atKeys > 15 && atKeys < 35, qPrintable(QString::number(atKeys)));
    }

private:
    int addTimes(const std::vector<float> &times) { return m_sketch.add<float>(times, 5126, "SCALAR"); }
    void addChannel(int input, int output, const std::string &interpolation, const std::string &path)
    {
        json &clip = m_sketch.tree["animations"][0];
        clip["samplers"].push_back({{"input", input}, {"output", output}});
        if (!interpolation.empty())
            clip["samplers"].back()["interpolation"] = interpolation;
        clip["channels"].push_back(
            {{"sampler", clip["samplers"].size() - 1}, {"target", {{"node", High}, {"path", path}}}});
    }
    void drive(const std::string &path, const std::string &interpolation, const std::vector<float> &times,
               const std::vector<float> &values, const std::string &type)
    {
        const int input = addTimes(times);
        addChannel(input, m_sketch.add<float>(values, 5126, type), interpolation, path);
    }
    GltfEvaluator written() { return GltfEvaluator(m_sketch.write(m_folder.filePath("clip.gltf")).toStdString()); }
    Eigen::Matrix4d matrixAt(double time)
    {
        const GltfEvaluator file = written();
        const GltfClipEvaluator played(file, 0);
        return file.localMatrix(High, played.pose(time));
    }
    Eigen::Matrix3d rotationAt(double time) { return matrixAt(time).topLeftCorner<3, 3>(); }
    void compare(double time, const Eigen::Vector3d &expected)
    {
        const Eigen::Vector3d found = matrixAt(time).topRightCorner<3, 1>();
        QVERIFY2((found - expected).norm() < 1e-12,
                 qPrintable(QStringLiteral("%1 %2 %3").arg(found.x()).arg(found.y()).arg(found.z())));
    }

    QTemporaryDir m_folder;
    FigureSketch m_sketch;
};

RY_TEST(GltfClipEvaluatorTest)
#include "tst_clip_evaluator.moc"
