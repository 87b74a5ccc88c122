#include "evaluator/GltfClipEvaluator.h"
#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyNear.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

namespace {

/// A leg and a spine, 160 high where Y points up; the knee bends in three frames.
QByteArray skeleton(bool isZUp = false, double scale = 1.0)
{
    const auto offset = [&](double x, double y, double z) {
        const double numbers[3] = {x * scale, (isZUp ? -z : y) * scale, (isZUp ? y : z) * scale};
        return QStringLiteral("OFFSET %1 %2 %3\n").arg(numbers[0]).arg(numbers[1]).arg(numbers[2]);
    };
    const QString height = QString::number(90 * scale);
    return (QStringLiteral("HIERARCHY\nROOT Hip:Bone\n{\n") + offset(0, 90, 0) +
            QStringLiteral("CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\nJOINT Spine\n{\n") +
            offset(0, 10, 0) + QStringLiteral("CHANNELS 3 Zrotation Xrotation Yrotation\nEnd Site\n{\n") +
            offset(0, 60, 5) + QStringLiteral("}\n}\nJOINT Knee\n{\n") + offset(10, -45, 0) +
            QStringLiteral("CHANNELS 3 Zrotation Xrotation Yrotation\nEnd Site\n{\n") + offset(0, -45, 3) +
            QStringLiteral("}\n}\n}\nMOTION\nFrames: 3\nFrame Time: 0.5\n") +
            QStringLiteral("0 %1 0 0 0 0 0 0 0 0 0 0\n0 %1 0 0 0 0 0 0 0 0 30 0\n0 %1 0 0 0 0 0 0 0 0 60 0\n")
                .arg(height))
        .toUtf8();
}

} // namespace

/// Skeletons without a mesh, from a format that knows neither unit nor axes.
class BvhFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void skeletonIsFigure();
    void endSitesAreEndPoints();
    void unitByHeight_data();
    void unitByHeight();
    void unitOfRequest();
    void zUpIsTold();
    void clip();
    void jointsOfOneNameKeepTheirMotions();
    void timesThatNoFileHolds();
};

void BvhFilesTest::skeletonIsFigure()
{
    const TextFile text(QStringLiteral("Walker.bvh"), skeleton());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.boneNames(),
             (QStringList{QStringLiteral("Hip:Bone"), QStringLiteral("Spine"), QStringLiteral("Knee")}));
    const RyNode *figure = file.bone(QStringLiteral("Spine"))->getSkeleton();
    QVERIFY(figure);
    QCOMPARE(figure->getName(), QStringLiteral("Walker"));
    QCOMPARE(file.bone(QStringLiteral("Knee"))->getNodeParent()->getName(), QStringLiteral("Hip:Bone"));
    QCOMPARE(file.notes, QStringList());
    const RyValidation validation = ryValidate(file.glb);
    QCOMPARE(validation.errors, 0);
}

void BvhFilesTest::endSitesAreEndPoints()
{
    const TextFile text(QStringLiteral("a.bvh"), skeleton());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const auto isAt = [](const RyVec3 &a, const RyVec3 &b) { return (a - b).length() < 1e-3f; };
    QVERIFY(isAt(file.bone(QStringLiteral("Spine"))->getOrigin(), {0, 100, 0}));
    QVERIFY(isAt(file.bone(QStringLiteral("Spine"))->getEndPoint(), {0, 160, 5}));
    QVERIFY(isAt(file.bone(QStringLiteral("Knee"))->getEndPoint(), {10, 0, 3}));
}

void BvhFilesTest::unitByHeight_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("centimetres") << 1.0 << false;
    QTest::newRow("metres") << 0.01 << true;
    QTest::newRow("millimetres") << 10.0 << true;
}

void BvhFilesTest::unitByHeight()
{
    QFETCH(double, scale);
    QFETCH(bool, isTold);
    const TextFile text(QStringLiteral("a.bvh"), skeleton(false, scale));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QVERIFY(std::abs(file.bone(QStringLiteral("Spine"))->getEndPoint().y - 160.0f) < 1e-3f);
    QCOMPARE(file.character->unit(), 100.0);
    QCOMPARE(file.notes.filter(QStringLiteral("160 cm")).size(), isTold ? 1 : 0);
}

void BvhFilesTest::unitOfRequest()
{
    const TextFile text(QStringLiteral("a.bvh"), skeleton());
    const ConvertedFile file(text.path, 2.54);
    QVERIFY2(file.character, qPrintable(file.reason));
    QVERIFY(std::abs(file.bone(QStringLiteral("Spine"))->getEndPoint().y - 160.0f * 2.54f) < 1e-2f);
}

void BvhFilesTest::zUpIsTold()
{
    const TextFile text(QStringLiteral("a.bvh"), skeleton(true));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QVERIFY((file.bone(QStringLiteral("Spine"))->getEndPoint() - RyVec3(0, 160, 5)).length() < 1e-3f);
    QCOMPARE(file.notes.size(), 1);
    QVERIFY(file.notes.front().contains(QStringLiteral("Z was taken to point up")));
}

void BvhFilesTest::clip()
{
    const TextFile text(QStringLiteral("a.bvh"), skeleton());
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    const GltfEvaluator &judged = file.character->file;
    const GltfClipEvaluator clip(judged, 0);
    QCOMPARE(clip.keyTimes(), (std::vector<double>{0.0, 0.5, 1.0}));
    // The knee bends by 60 degrees about X: what lies 45 below and 3 in front of it.
    const Eigen::Vector3d end =
        judged
            .worldMatrices(clip.pose(1.0))[size_t([&] {
                for (int node = 0; node < judged.nodeCount(); ++node) {
                    if (judged.nodeName(node) == "End Site" && judged.nodeName(judged.parent(node)) == "Knee")
                        return node;
                }
                return 0;
            }())]
            .block<3, 1>(0, 3);
    const double c = 0.5, s = std::sqrt(0.75);
    const Eigen::Vector3d expected(0.10, 0.45 - 0.45 * c - 0.03 * s, 0.03 * c - 0.45 * s);
    QVERIFY2((end - expected).norm() < 1e-6, qPrintable(QString::number((end - expected).norm())));
}

void BvhFilesTest::jointsOfOneNameKeepTheirMotions()
{
    const TextFile text(QStringLiteral("a.bvh"), skeleton().replace("Knee", "Spine"));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(file.notes, QStringList());
    const GltfEvaluator &judged = file.character->file;
    const GltfClipEvaluator clip(judged, 0);
    const auto angleOf = [&](double height) {
        for (int node = 0; node < judged.nodeCount(); ++node) {
            const Eigen::Matrix4d rest = judged.worldMatrices()[size_t(node)];
            if (judged.nodeName(node) == "Spine" && std::abs(rest(1, 3) - height) < 1e-6) {
                const Eigen::Matrix4d moved = judged.worldMatrices(clip.pose(1.0))[size_t(node)];
                const Eigen::Matrix3d turn = moved.block<3, 3>(0, 0) * rest.block<3, 3>(0, 0).inverse();
                return std::acos((turn.trace() - 1.0) / 2.0) * 180.0 / M_PI;
            }
        }
        return -1.0;
    };
    QVERIFY(std::abs(angleOf(1.00)) < 1e-3);
    QVERIFY2(std::abs(angleOf(0.45) - 60.0) < 1e-3, qPrintable(QString::number(angleOf(0.45))));
}

/// Keys at times that grow beyond what a number of the file can say are none.
void BvhFilesTest::timesThatNoFileHolds()
{
    const TextFile text(QStringLiteral("a.bvh"), skeleton().replace("Frame Time: 0.5", "Frame Time: 3e38"));
    const ConvertedFile file(text.path);
    QVERIFY2(file.character, qPrintable(file.reason));
    QCOMPARE(ryValidate(file.glb).errors, 0);
    const GltfClipEvaluator clip(file.character->file, 0);
    QCOMPARE(clip.keyTimes().size(), size_t(2));
    QVERIFY(std::abs(clip.keyTimes().back() / 3e38 - 1.0) < 1e-3);
}

RY_TEST(BvhFilesTest)
#include "tst_bvh_files.moc"
