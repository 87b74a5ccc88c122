#include "ClipComparison.h"
#include "FigureSketch.h"

#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <cmath>

using nlohmann::json;

/// The judge of clips sees what it should, on files that no product wrote.
class ClipComparisonTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_sketch = FigureSketch();
        m_sketch.addTurningClip(2);
        m_sketch.tree["nodes"].push_back({{"name", "eye"}, {"translation", {0.5, 0.5, 0}}});
        m_sketch.tree["nodes"][2]["children"] = {4};
        m_before = std::make_unique<GltfEvaluator>(write("before"));
    }

    void sameFiles()
    {
        QCOMPARE(compared().distance, 0.0);
        // A label, a name, extras.
        m_sketch.tree["nodes"][2]["name"] = "higher";
        m_sketch.tree["nodes"][2]["extras"] = {{"label", "High"}};
        QCOMPARE(compared().distance, 0.0);
    }

    /// The centre 2 cm aside and the clip as it was: half a turn takes the vertices above 4 cm aside, of 2 m.
    void movedCentre()
    {
        m_sketch.tree["nodes"][2]["translation"] = {0.02, 1, 0};
        moveBind();
        const ClipDifference found = compared();
        QVERIFY2(std::abs(found.distance - 0.02) < 1e-6, qPrintable(found.text()));
        QCOMPARE(found.clip, 0);
        QCOMPARE(found.time, 1.0);
        QCOMPARE(found.point.node, 3);
        QVERIFY(found.point.vertex >= 10);
    }

    /// The same with an arc on which the centre keeps the vertices in place, key by key: what is left stands between
    /// the keys, a quarter turn apart.
    void arcs()
    {
        m_sketch.tree["nodes"][2]["translation"] = {0.02, 1, 0};
        m_sketch.tree["nodes"][4]["translation"] = {0.48, 0.5, 0};
        moveBind();
        std::vector<float> times, places;
        for (int i = 0; i <= 8; ++i) {
            const double angle = M_PI * i / 8.0; // about y
            times.push_back(float(i) / 8.0f);
            places.insert(places.end(), {float(0.02 * std::cos(angle)), 1.0f, float(-0.02 * std::sin(angle))});
        }
        json &clip = m_sketch.tree["animations"][0];
        const int input = m_sketch.add<float>(times, 5126, "SCALAR");
        clip["samplers"].push_back({{"input", input}, {"output", m_sketch.add<float>(places, 5126, "VEC3")}});
        clip["channels"].push_back({{"sampler", 1}, {"target", {{"node", 2}, {"path", "translation"}}}});
        // A chord of an eighth of a half turn is off by r (1 - cos(pi / 16)).
        const ClipDifference found = compared({4});
        const double expected = 0.02 * (1 - std::cos(M_PI / 16)) / 2.0;
        QVERIFY2(std::abs(found.distance - expected) < 1e-7, qPrintable(found.text()));
    }

    /// A node that shows nothing is seen when it is asked for.
    void steadyNodes()
    {
        m_sketch.tree["nodes"][4]["translation"] = {0.5, 0.5, 0.1};
        QCOMPARE(compared().distance, 0.0);
        QVERIFY(std::abs(compared({4}).distance - 0.05) < 1e-6);
        m_sketch.tree["nodes"][4]["translation"] = {0.5, 0.5, 0.0};
        m_sketch.tree["nodes"][4]["scale"] = {1, 1.5, 1};
        QVERIFY(std::abs(compared({4}).distance - 0.1) < 1e-6);
        QCOMPARE(compared({4}).point.vertex, size_t(2));
    }

    void goneNodes()
    {
        m_sketch.tree["nodes"][2]["translation"] = {0.02, 1, 0};
        moveBind();
        ClipChoice choice;
        choice.goneNodes = {2};
        m_sketch.tree.erase("animations"); // which drove nothing else
        QCOMPARE(largestClipDifference(*m_before, GltfEvaluator(write("after")), choice).distance, 0.0);
        QVERIFY(std::isinf(compared().distance));
    }

    void whatCannotBeCompared()
    {
        const FigureSketch sketch = m_sketch;
        m_sketch.tree["animations"][0]["samplers"][0]["output"] = 77;
        QVERIFY(std::isinf(compared().distance));
        m_sketch = sketch;
        m_sketch.tree["animations"].push_back(m_sketch.tree["animations"][0]);
        QVERIFY(std::isinf(compared().distance));
        m_sketch = sketch;
        m_sketch.tree["nodes"][3].erase("mesh");
        QVERIFY(std::isinf(compared().distance));
        QVERIFY(compared().text().contains(QStringLiteral("gone")));
        m_sketch = sketch;
        m_sketch.set(m_sketch.tree["skins"][0]["inverseBindMatrices"], 12, std::nanf(""));
        QVERIFY(std::isinf(compared().distance));
    }

private:
    std::string write(const char *name) const
    {
        return m_sketch.write(m_folder.filePath(QString::fromLatin1(name) + QStringLiteral(".gltf"))).toStdString();
    }
    void moveBind()
    {
        Eigen::Matrix4d high = Eigen::Matrix4d::Identity();
        high.topRightCorner<3, 1>() = Eigen::Vector3d(0.02, 1, 0);
        m_sketch.tree["skins"][0]["inverseBindMatrices"] = m_sketch.addBinds({Eigen::Matrix4d::Identity(), high});
    }
    ClipDifference compared(const std::set<int> &steadyNodes = {}) const
    {
        ClipChoice choice;
        choice.steadyNodes = steadyNodes;
        choice.frames = 1000;
        return largestClipDifference(*m_before, GltfEvaluator(write("after")), choice);
    }

    QTemporaryDir m_folder;
    FigureSketch m_sketch;
    std::unique_ptr<GltfEvaluator> m_before;
};

RY_TEST(ClipComparisonTest)
#include "tst_comparison.moc"
