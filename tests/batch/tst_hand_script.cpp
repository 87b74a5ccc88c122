#include "evaluator/GltfEvaluator.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <QProcess>
#include <QTemporaryDir>

#include <Eigen/Geometry>

#include <algorithm>
#include <map>
#include <set>

namespace {

const char *const fingers[] = {"index", "mid", "ring", "pinky", "thumb"};

std::string boneName(const std::string &finger, int number)
{
    return finger + std::to_string(number);
}

} // namespace

/// The example script that rigs a bare hand with actions alone, and the file it leaves, as a reader of its own sees it.
class HandScriptTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("hand.glb"));
    std::unique_ptr<GltfEvaluator> m_file;

    int run(const QStringList &arguments, QByteArray *output = nullptr)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        environment.insert(QStringLiteral("RYHOST_SETTINGS_DIR"), m_folder.filePath(QStringLiteral("settings")));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(RY_BINARY_DIR "/bin/ryhost"), QStringList{QStringLiteral("--batch")} + arguments);
        if (!process.waitForFinished(120000)) {
            process.kill();
            return -1;
        }
        if (output)
            *output = process.readAll();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    }

    const GltfPrimitive &mesh() const { return m_file->primitives().front(); }

    /// Vertices that move when a bone turns by half a radian about an axis across it.
    std::set<std::size_t> movedBy(const std::string &bone) const
    {
        GltfPose pose;
        pose.turn[m_file->node(bone)] = Eigen::AngleAxisd(0.5, Eigen::Vector3d::UnitZ()).toRotationMatrix();
        const auto rest = m_file->positions(mesh());
        const auto posed = m_file->positions(mesh(), pose);
        std::set<std::size_t> moved;
        for (std::size_t v = 0; v < rest.size(); ++v) {
            if ((posed[v] - rest[v]).norm() > 1e-6)
                moved.insert(v);
        }
        return moved;
    }

private slots:
    void initTestCase()
    {
        QByteArray output;
        const int code =
            run({QStringLiteral(RY_SOURCE_DIR "/resources/samples/hand.obj"), QStringLiteral("--script"),
                 QStringLiteral(RY_SOURCE_DIR "/docs/examples/rig_hand.rsx"), QStringLiteral("--save"), m_path},
                &output);
        QVERIFY2(code == 0, output.constData());
        QVERIFY2(output.contains("17 bones, 1906 vertices"), output.constData());
        m_file = std::make_unique<GltfEvaluator>(m_path.toStdString());
    }

    void isValid()
    {
        const RyValidation validation = ryValidate(m_path);
        if (!validation.available)
            QSKIP("the glTF validator is not installed");
        QVERIFY2(validation.errors == 0 && validation.warnings == 0, qPrintable(validation.report));
    }

    void bonesInTheirPlaces()
    {
        QCOMPARE(int(m_file->counts().joints), 17);
        QCOMPARE(m_file->parent(m_file->node("palm")), m_file->node("forearm"));
        for (const std::string finger : fingers) {
            QCOMPARE(m_file->parent(m_file->node(boneName(finger, 1))), m_file->node("palm"));
            for (int number = 2; number <= 3; ++number)
                QCOMPARE(m_file->parent(m_file->node(boneName(finger, number))),
                         m_file->node(boneName(finger, number - 1)));
        }
        // In metres, as the format has it: the hand is 18 centimetres long, not 18 metres.
        const Eigen::Vector3d wrist = m_file->worldPosition(m_file->node("palm"));
        QVERIFY((wrist - Eigen::Vector3d(0.06, 0.0204, 0.06)).norm() < 1e-4);
        const Eigen::Vector3d knuckle = m_file->worldPosition(m_file->node("index2"));
        QVERIFY((knuckle - Eigen::Vector3d(0.1895, 0.0199, 0.0925)).norm() < 1e-4);
    }

    /// The first axis of each bone points at its child.
    void axesAlongTheBones()
    {
        const auto matrices = m_file->worldMatrices();
        for (const std::string finger : fingers) {
            for (int number = 1; number <= 2; ++number) {
                const int bone = m_file->node(boneName(finger, number));
                const Eigen::Vector3d axis = matrices[std::size_t(bone)].block<3, 1>(0, 0).normalized();
                const Eigen::Vector3d along =
                    m_file->worldPosition(m_file->node(boneName(finger, number + 1))) - m_file->worldPosition(bone);
                QVERIFY(axis.dot(along.normalized()) > 0.9999);
            }
        }
    }

    void meshIsWhereItWas()
    {
        QCOMPARE(int(m_file->counts().vertices), 1906);
        const auto points = m_file->positions(mesh());
        Eigen::AlignedBox3d box;
        for (const Eigen::Vector3d &point : points)
            box.extend(point);
        QVERIFY(std::abs(box.min().y()) < 1e-6);
        QVERIFY(box.max().x() > 0.24 && box.max().x() < 0.25);
        QVERIFY(gltfMaxDistance(points, m_file->restPositions(mesh())) < 1e-6);
    }

    void weightsAreWhole()
    {
        for (const auto &vertex : m_file->influences(mesh())) {
            double sum = 0.0;
            for (const GltfInfluence &influence : vertex)
                sum += influence.weight;
            QVERIFY(std::abs(sum - 1.0) < 1e-9);
            QVERIFY(vertex.size() <= 4);
        }
    }

    /// Each bone of a finger moves vertices of that finger and of no other, the further out the fewer.
    void bonesMoveWhatIsTheirs()
    {
        std::map<std::size_t, std::string> owners;
        for (const std::string finger : fingers) {
            std::set<std::size_t> before = movedBy(boneName(finger, 1));
            QVERIFY(before.size() > 120 && before.size() < 600);
            for (int number = 2; number <= 3; ++number) {
                const std::set<std::size_t> moved = movedBy(boneName(finger, number));
                QVERIFY(moved.size() > 40 && moved.size() < before.size());
                QVERIFY(std::includes(before.begin(), before.end(), moved.begin(), moved.end()));
                if (number == 2) {
                    for (std::size_t v : moved)
                        QVERIFY(owners.emplace(v, finger).second);
                }
                before = moved;
            }
        }
        // The tip of the middle finger is the furthest point, and its last bone has it to itself.
        const auto points = m_file->restPositions(mesh());
        const auto tip =
            std::max_element(points.begin(), points.end(),
                             [](const Eigen::Vector3d &a, const Eigen::Vector3d &b) { return a.x() < b.x(); });
        const auto shares = m_file->influences(mesh())[std::size_t(tip - points.begin())];
        QVERIFY(shares.size() <= 2);
        QVERIFY(std::any_of(shares.begin(), shares.end(), [&](const GltfInfluence &influence) {
            return influence.joint == m_file->node("mid3") && influence.weight > 0.9;
        }));
    }

    /// What was saved opens as the same hand, at its size.
    void opensAgain()
    {
        QByteArray first, second;
        QCOMPARE(run({m_path, QStringLiteral("--dump")}, &first), 0);
        const QString again = m_folder.filePath(QStringLiteral("again.glb"));
        QCOMPARE(run({m_path, QStringLiteral("--save"), again}), 0);
        QCOMPARE(run({again, QStringLiteral("--dump")}, &second), 0);
        QVERIFY(first.contains("index3"));
        QCOMPARE(second, first);
    }
};

RY_TEST(HandScriptTest)
#include "tst_hand_script.moc"
