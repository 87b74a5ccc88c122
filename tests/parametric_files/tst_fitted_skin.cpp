#include "LegacyArm.h"

#include "evaluator/GltfEvaluator.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/fit/RyLegacyFitter.h"
#include "rycore/scene/RyObject.h"
#include "support/RyTest.h"

#include <Eigen/Geometry>
#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <cmath>

/// What other programs show of a parametric figure: the ordinary skin in its file, read and moved by somebody else,
/// beside what the joints make of the same pose.
class FittedSkinTest : public QObject
{
    Q_OBJECT

private slots:
    void comesNear_data();
    void comesNear();
    void isExactAtRest();
    void saysHowNear();
    void bulgesStandApart();
    void untidyFigure();

private:
    /// Root of the mean square over the vertices between, of all poses, and the farthest, in per cent of the height.
    struct Distance
    {
        double rmsPartly = 0.0;
        double max = 0.0;
    };
    using Poses = std::vector<std::array<std::array<float, 3>, 2>>; // of elbow and wrist, degrees
    static Poses fitPoses();
    Distance measure(LegacyArm &arm, const QString &file, const Poses &poses) const;
    std::vector<double> distances(LegacyArm &arm, const GltfEvaluator &file) const;
    static Eigen::Matrix3d turnOf(const RyBone &bone);
    static std::vector<bool> partlyOf(const LegacyArm &arm);
    QString saved(LegacyArm &arm, const char *name, bool isPlain = false) const;

    QTemporaryDir m_folder;
};

/// Where the axes of a bone are those of its joint: the turns of the pose, for column vectors, the first axis first.
Eigen::Matrix3d FittedSkinTest::turnOf(const RyBone &bone)
{
    const RyFloatProperty *controls[3] = {bone.getXRotControl(), bone.getYRotControl(), bone.getZRotControl()};
    Eigen::Matrix3d turn = Eigen::Matrix3d::Identity();
    for (int place = 0; place < 3; ++place) {
        const int axis = bone.getRotationOrder()[place];
        const double angle = double(controls[axis]->getValue()) * M_PI / 180.0;
        turn = Eigen::AngleAxisd(angle, Eigen::Vector3d::Unit(axis)).toRotationMatrix() * turn;
    }
    return turn;
}

QString FittedSkinTest::saved(LegacyArm &arm, const char *name, bool isPlain) const
{
    const QString path = m_folder.filePath(QLatin1String(name));
    QString error;
    RySceneFile::SaveOptions options;
    if (isPlain) {
        arm.binding->keepFit(nullptr);
        options.progress = [](const QString &, double) { return false; };
    }
    for (RyBone *bone : {arm.upper, arm.fore, arm.hand})
        arm.pose(*bone, {0, 0, 0});
    if (!RySceneFile::save(&arm.scene, path, options, &error))
        QTest::qFail(qPrintable(error), __FILE__, __LINE__);
    return path;
}

/// How far the skin of a file is from the figure as it is posed, at each vertex, in centimetres. The arm stands in the
/// file as it is posed; the file holds it at rest.
std::vector<double> FittedSkinTest::distances(LegacyArm &arm, const GltfEvaluator &file) const
{
    GltfPose pose;
    for (const RyBone *bone : {arm.fore, arm.hand})
        pose.turn[file.node(bone->getName().toStdString())] = turnOf(*bone);
    const std::vector<Eigen::Vector3d> blended = file.positions(file.primitives().front(), pose);
    const std::vector<RyVec3> &wanted = arm.figure->getObject()->getDeformedPositions();
    std::vector<double> result;
    for (size_t v = 0; v < wanted.size() && wanted.size() == blended.size(); ++v)
        result.push_back((100.0 * blended[v] - Eigen::Vector3d(wanted[v].x, wanted[v].y, wanted[v].z)).norm());
    return result;
}

std::vector<bool> FittedSkinTest::partlyOf(const LegacyArm &arm)
{
    RyLegacyDeformer deformer;
    deformer.setRig(RyLegacyRig::of(*arm.binding, *arm.figure), arm.mesh->getPositions());
    std::vector<bool> partly;
    for (int vertex = 0; vertex < arm.mesh->getNumVertices(); ++vertex) {
        bool isPartly = false;
        for (int bone = 0; bone < 4; ++bone) {
            const RyLegacyFractions by = deformer.fractions(bone, vertex);
            isPartly = isPartly || !(by.isNone() || by == RyLegacyFractions::all());
        }
        partly.push_back(isPartly);
    }
    return partly;
}

/// Every axis of elbow and wrist at the usual limits and half of them, and both bent.
FittedSkinTest::Poses FittedSkinTest::fitPoses()
{
    Poses poses;
    constexpr float Limits[3] = {60, 90, 120};
    for (size_t bone = 0; bone < 2; ++bone) {
        for (size_t axis = 0; axis < 3; ++axis) {
            for (const float share : {-1.0f, -0.5f, 0.5f, 1.0f}) {
                poses.push_back({});
                poses.back()[bone][axis] = share * Limits[axis];
            }
        }
    }
    poses.push_back({{{30, 45, 60}, {30, 45, 60}}});
    return poses;
}

FittedSkinTest::Distance FittedSkinTest::measure(LegacyArm &arm, const QString &path, const Poses &poses) const
{
    const GltfEvaluator file(path.toStdString());
    const std::vector<bool> partly = partlyOf(arm);
    Distance result;
    double squares = 0.0;
    size_t count = 0;
    for (const auto &[fore, hand] : poses) {
        arm.pose(*arm.fore, fore);
        arm.pose(*arm.hand, hand);
        const std::vector<double> all = distances(arm, file);
        if (all.size() != partly.size())
            return {1e9, 1e9};
        for (size_t v = 0; v < all.size(); ++v) {
            result.max = std::max(result.max, 100.0 * all[v] / LegacyArm::Height);
            squares += partly[v] ? all[v] * all[v] : 0.0;
            count += partly[v];
        }
    }
    result.rmsPartly = 100.0 * std::sqrt(squares / double(count)) / LegacyArm::Height;
    return result;
}

void FittedSkinTest::comesNear_data()
{
    QTest::addColumn<bool>("hasTwistZone");
    QTest::addColumn<double>("bound");
    QTest::newRow("angles") << false << 1.0;
    QTest::newRow("twist zone") << true << 2.0;
}

void FittedSkinTest::comesNear()
{
    QFETCH(bool, hasTwistZone);
    QFETCH(double, bound);
    LegacyArm arm(hasTwistZone);
    const QString fitted = saved(arm, "fitted.gltf");
    const QString plain = saved(arm, "plain.gltf", true);
    std::mt19937 random(7);
    Poses others;
    constexpr float Most[3] = {60, 45, 110};
    for (int i = 0; i < 20; ++i) {
        others.push_back({});
        for (std::array<float, 3> &bone : others.back()) {
            for (size_t axis = 0; axis < 3; ++axis)
                bone[axis] = Most[axis] * (2.0f * float(random()) / float(std::mt19937::max()) - 1.0f);
        }
    }
    for (const Poses &poses : {fitPoses(), others}) {
        const Distance ours = measure(arm, fitted, poses);
        const Distance average = measure(arm, plain, poses);
        qInfo("%zu poses: fitted %.3f %% and %.3f %% at most, plain averages %.3f %% and %.3f %%", poses.size(),
              ours.rmsPartly, ours.max, average.rmsPartly, average.max);
        QVERIFY(ours.rmsPartly <= bound);
        QVERIFY(ours.max <= 4.0);
        QVERIFY(ours.rmsPartly < average.rmsPartly);
        QVERIFY(ours.rmsPartly > 0.01); // the joints do something that no skin can
    }
}

void FittedSkinTest::isExactAtRest()
{
    LegacyArm arm(true);
    const GltfEvaluator file(saved(arm, "rest.gltf").toStdString());
    for (const double distance : distances(arm, file))
        QVERIFY(distance < 1e-4);
    // A vertex that nothing moves partly follows one bone, and every vertex has its full weight.
    const std::vector<bool> partly = partlyOf(arm);
    const auto influences = file.influences(file.primitives().front());
    QCOMPARE(influences.size(), partly.size());
    size_t shared = 0;
    for (size_t v = 0; v < influences.size(); ++v) {
        size_t bones = 0;
        for (const GltfInfluence &influence : influences[v])
            bones += influence.weight > 0.0;
        QVERIFY(partly[v] || bones == 1);
        shared += bones > 1;
    }
    QVERIFY(shared > influences.size() / 4);
    QCOMPARE(file.joints(0).size(), size_t(4));
}

void FittedSkinTest::saysHowNear()
{
    LegacyArm arm(true);
    QString error;
    QStringList messages;
    std::vector<RyFigureFits::Fit> fits;
    RySceneFile::SaveOptions options;
    options.fits = &fits;
    QVERIFY2(RySceneFile::save(&arm.scene, m_folder.filePath("said.gltf"), options, &error, &messages),
             qPrintable(error));
    QCOMPARE(fits.size(), size_t(1));
    const RyLegacyFitReport &report = fits[0].report;
    QVERIFY2(messages.join('\n').contains(QString::number(report.rmsPartly, 'f', 2)), qPrintable(messages.join('\n')));
    QVERIFY(report.rms > 0.0 && report.rms < report.rmsPartly && report.rmsPartly < report.max);
    QVERIFY(report.bone == QStringLiteral("fore") || report.bone == QStringLiteral("hand"));
    QVERIFY(!report.pose.isEmpty());
    QCOMPARE(report.bulges, 0.0);
    const GltfEvaluator file(m_folder.filePath("said.gltf").toStdString());
    const auto &stored = file.tree()["extras"]["RYHOST_rigging"]["figures"][0]["parametric"]["fit"];
    QVERIFY(std::abs(stored["rms"].get<double>() - report.rms) < 1e-4);
    QVERIFY(std::abs(stored["max"].get<double>() - report.max) < 1e-4);
    QCOMPARE(stored["poses"].get<int>(), report.poses);

    // The plain averages are worse, by the same measure.
    RyLegacyFitter fitter(RyLegacyFitInput::of(*arm.binding, *arm.figure));
    const RyLegacyFitReport plain = fitter.plain()->report;
    QVERIFY(plain.rms > report.rms && plain.rmsPartly > report.rmsPartly);
}

/// No weights can say them: they are told beside what weights could do better.
void FittedSkinTest::bulgesStandApart()
{
    LegacyArm arm;
    const auto reportOf = [&arm] {
        return RyLegacyFitter(RyLegacyFitInput::of(*arm.binding, *arm.figure)).fit()->report;
    };
    const RyLegacyFitReport without = reportOf();
    for (RyLegacyJoint *joint : arm.binding->joints()) {
        for (RyLegacyJointParam *param : joint->params()) {
            if (auto *bend = qobject_cast<RyLegacyBendParam *>(param); bend && bend->getDriver() == arm.fore) {
                bend->setApplyBulges(true);
                bend->getPosLeftBulgeController()->setValue(0.4f);
            }
        }
    }
    const RyLegacyFitReport with = reportOf();
    QCOMPARE(with.rms, without.rms);
    QCOMPARE(with.max, without.max);
    QCOMPARE(without.bulges, 0.0);
    QVERIFY2(with.bulges > 0.001, qPrintable(QString::number(with.bulges)));
}

/// With turned axes, scales that are not inherited, smooth zones and a figure that stands elsewhere: as it is posed in
/// the file, the skin is where the joints have the figure.
void FittedSkinTest::untidyFigure()
{
    LegacyArm arm(true);
    arm.makeUntidy();
    QString error;
    const QString path = m_folder.filePath("untidy.gltf");
    QVERIFY2(RySceneFile::save(&arm.scene, path, &error), qPrintable(error));
    const GltfEvaluator file(path.toStdString());
    const std::vector<Eigen::Vector3d> blended = file.positions(file.primitives().front());
    const std::vector<RyVec3> &wanted = arm.figure->getObject()->getDeformedPositions();
    QCOMPARE(blended.size(), wanted.size());
    const RyAffine toWorld = arm.figure->worldMap();
    const std::vector<bool> partly = partlyOf(arm);
    double squares = 0.0;
    for (size_t v = 0; v < wanted.size(); ++v) {
        const RyVec3 at = toWorld.mapPoint(wanted[v]);
        const double distance = (100.0 * blended[v] - Eigen::Vector3d(at.x, at.y, at.z)).norm();
        QVERIFY2(partly[v] || distance < 1e-3, qPrintable(QStringLiteral("vertex %1: %2").arg(v).arg(distance)));
        squares += distance * distance;
    }
    const double rms = 100.0 * std::sqrt(squares / double(wanted.size())) / LegacyArm::Height;
    qInfo("untidy: %.3f %%", rms);
    QVERIFY(rms < 2.0);
}

RY_TEST(FittedSkinTest)
#include "tst_fitted_skin.moc"
