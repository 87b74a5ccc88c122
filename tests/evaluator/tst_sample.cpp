#include "evaluator/GltfDifferences.h"
#include "evaluator/GltfEvaluator.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <QProcess>
#include <QTemporaryDir>

#include <Eigen/Geometry>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <set>
#include <tuple>

namespace {

const char *const samplePath = RY_SOURCE_DIR "/resources/samples/mannequin.glb";

} // namespace

/// The sample figure that the program opens at its first start, and that many tests work on.
class SampleFigureTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_file = std::make_unique<GltfEvaluator>(samplePath); }

    void counts()
    {
        const GltfCounts counts = m_file->counts();
        QCOMPARE(int(counts.joints), 51);
        QCOMPARE(int(counts.vertices), 20578);
        QCOMPARE(int(counts.triangles), 41152);
        QCOMPARE(int(counts.maxInfluences), 4);
    }

    void standsOnTheGroundFacingForward()
    {
        Eigen::AlignedBox3d box;
        for (const Eigen::Vector3d &point : m_file->allPositions())
            box.extend(point);
        QVERIFY(std::abs(box.min().y()) < 1e-6);
        QVERIFY(box.max().y() > 1.7 && box.max().y() < 1.8);
        QVERIFY(std::abs(box.max().x() + box.min().x()) < 1e-6);
        QVERIFY(m_file->worldPosition(m_file->node("lHand")).x() > 0.5);
        QVERIFY(m_file->worldPosition(m_file->node("lToe")).z() > m_file->worldPosition(m_file->node("lFoot")).z());
    }

    /// The file's pose is its bind pose.
    void opensAtBind()
    {
        const GltfPrimitive &primitive = m_file->primitives().front();
        QVERIFY(gltfMaxDistance(m_file->positions(primitive), m_file->restPositions(primitive)) < 1e-6);
    }

    void jointsHaveNoRotationAndMirrorEachOther()
    {
        for (int joint : m_file->joints(0)) {
            QVERIFY(!m_file->tree()["nodes"][std::size_t(joint)].contains("rotation"));
            const std::string name = m_file->nodeName(joint);
            if (name[0] != 'l')
                continue;
            Eigen::Vector3d other = m_file->worldPosition(m_file->node("r" + name.substr(1)));
            other.x() = -other.x();
            QVERIFY((other - m_file->worldPosition(joint)).norm() < 1e-6);
        }
    }

    void oneClosedSkinTurnedOutwards()
    {
        const GltfPrimitive &primitive = m_file->primitives().front();
        const auto points = m_file->restPositions(primitive);
        std::map<std::pair<int, int>, int> edges;
        double volume = 0.0;
        for (const auto &[a, b, c] : m_file->triangles(primitive)) {
            ++edges[{a, b}];
            ++edges[{b, c}];
            ++edges[{c, a}];
            volume += points[std::size_t(a)].dot(points[std::size_t(b)].cross(points[std::size_t(c)])) / 6.0;
        }
        for (const auto &[edge, count] : edges) {
            QCOMPARE(count, 1);
            QCOMPARE(edges.count({edge.second, edge.first}), std::size_t(1));
        }
        QVERIFY(volume > 0.04 && volume < 0.09);
    }

    void halvesAreMirrored()
    {
        const auto points = m_file->restPositions(m_file->primitives().front());
        std::set<std::tuple<double, double, double>> all;
        for (const Eigen::Vector3d &point : points)
            all.insert({point.x(), point.y(), point.z()});
        for (const Eigen::Vector3d &point : points)
            QVERIFY(all.count({-point.x() + 0.0, point.y(), point.z()}) == 1);
    }

    /// No finger takes its neighbour along, no leg the other one.
    void jointsMoveWhatIsTheirs()
    {
        const GltfPrimitive &primitive = m_file->primitives().front();
        const auto shares = m_file->influences(primitive);
        for (const auto &vertex : shares) {
            QVERIFY(!vertex.empty());
            std::set<std::string> limbs;
            for (const GltfInfluence &influence : vertex) {
                const std::string name = m_file->nodeName(influence.joint);
                if (std::isdigit(static_cast<unsigned char>(name.back())) && influence.weight > 0.5)
                    limbs.insert(name.substr(0, name.size() - 1));
            }
            QVERIFY(limbs.size() <= 1);
        }
        GltfPose pose;
        pose.turn[m_file->node("lForearm")] = Eigen::AngleAxisd(1.0, Eigen::Vector3d::UnitY()).toRotationMatrix();
        const auto rest = m_file->positions(primitive);
        const auto posed = m_file->positions(primitive, pose);
        const Eigen::Vector3d elbow = m_file->worldPosition(m_file->node("lForearm"));
        int moved = 0;
        for (std::size_t v = 0; v < rest.size(); ++v) {
            const bool moves = (posed[v] - rest[v]).norm() > 1e-6;
            moved += moves;
            QVERIFY(!moves || rest[v].x() > elbow.x() - 0.15);
            QVERIFY(moves || rest[v].x() < elbow.x() + 0.15);
        }
        QVERIFY(moved > 1000);
    }

    /// One group for each joint, and every triangle in one group.
    void faceGroups()
    {
        const auto &figure = m_file->tree()["extras"]["RYHOST_rigging"]["figures"][0];
        std::set<std::string> names;
        std::vector<int> owners(m_file->triangles(m_file->primitives().front()).size());
        for (const auto &group : figure["faceGroups"]) {
            names.insert(group["name"].get<std::string>());
            QVERIFY(m_file->node(group["name"].get<std::string>()) >= 0);
            for (const auto &run : group["runs"]) {
                for (int i = 0; i < run[1].get<int>(); ++i)
                    ++owners.at(std::size_t(run[0].get<int>() + i));
            }
        }
        QCOMPARE(int(names.size()), 51);
        QVERIFY(std::all_of(owners.begin(), owners.end(), [](int count) { return count == 1; }));
    }

    void isValid()
    {
        const RyValidation validation = ryValidate(samplePath);
        if (!validation.available)
            QSKIP("the glTF validator is not installed");
        QVERIFY2(validation.errors == 0 && validation.warnings == 0, qPrintable(validation.report));
    }

    /// What is committed is what its maker makes, up to the last bits of another machine's sines.
    void isWhatItsMakerMakes()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath("mannequin.glb");
        QProcess maker;
        maker.start("python3", {RY_SOURCE_DIR "/tools/make_sample.py", path});
        QVERIFY(maker.waitForFinished(120000));
        QCOMPARE(maker.exitCode(), 0);
        const GltfEvaluator made(path.toStdString());
        const std::vector<std::string> none;
        QCOMPARE(gltfDifferences(made.tree(), m_file->tree(), {"/accessors/*/min", "/accessors/*/max"}), none);
        const GltfPrimitive &primitive = m_file->primitives().front();
        QVERIFY(made.triangles(primitive) == m_file->triangles(primitive));
        QVERIFY(gltfMaxDistance(made.restPositions(primitive), m_file->restPositions(primitive)) < 1e-6);
        GltfPose pose;
        for (const char *name : {"lShldr", "rThigh", "lIndex2", "neck"})
            pose.turn[m_file->node(name)] =
                Eigen::AngleAxisd(0.7, Eigen::Vector3d(1, 2, 3).normalized()).toRotationMatrix();
        QVERIFY(gltfMaxDistance(made.allPositions(pose), m_file->allPositions(pose)) < 1e-4);
    }

private:
    std::unique_ptr<GltfEvaluator> m_file;
};

RY_TEST(SampleFigureTest)
#include "tst_sample.moc"
