#include "parametric/LegacyEvaluator.h"
#include "parametric/RandomRig.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyDeformer.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "support/RyTest.h"

#include <QObject>

#include <algorithm>
#include <cmath>

/// The deformer beside an evaluator that shares nothing with it.
class LegacyDeformerTest : public QObject
{
    Q_OBJECT

private slots:
    void matchesEvaluator();
    void fractionsNextToWhole();
    void turnsBeyondHalfATurn();
    void pointsAreTheSameWithNormals();
    void partsAreTheFractionsOfAllBones();
    void changesAreWhatMoves();
    void keptIsAsMadeAnew();
};

void LegacyDeformerTest::matchesEvaluator()
{
    RyRandom random;
    const int figures =
        qEnvironmentVariableIntValue("RY_FIGURES") > 0 ? qEnvironmentVariableIntValue("RY_FIGURES") : 10000;
    double worst = 0.0;
    int moved = 0;
    for (int i = 0; i < figures; ++i) {
        RandomRig figure(random);
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        std::vector<RyVec3> out;
        deformer.deform(figure.rest, figure.controls, out);
        const std::vector<RyVec3> &posed = deformer.pose(figure.controls);
        QVERIFY(posed == out);
        for (size_t v = 0; v < out.size(); ++v) {
            const LegacyEvaluator::Vec right = figure.evaluate(v);
            const double apart = std::sqrt(std::pow(out[v].x - right[0], 2) + std::pow(out[v].y - right[1], 2) +
                                           std::pow(out[v].z - right[2], 2));
            if (apart > 1e-5 * figure.size(right))
                QFAIL(qPrintable(
                    QString("figure %1, vertex %2: %3 of %4").arg(i).arg(v).arg(apart).arg(figure.size(right))));
            worst = std::max(worst, apart / figure.size(right));
            moved += !(out[v] == figure.rest[v]);
        }
    }
    qInfo("%d figures, largest difference %g of the size, %d vertices moved", figures, worst, moved);
    QVERIFY(moved > 10 * figures);
}

/// The mean of two bends that is so near to 1 that a float takes it for 1 does not make its neighbours' means whole.
void LegacyDeformerTest::fractionsNextToWhole()
{
    RyLegacyRig rig;
    rig.bones.resize(2);
    rig.bones[1].parent = 0;
    rig.bones[1].end = {10, 0, 0};
    for (const int axis : {1, 2}) {
        RyLegacyRig::Param bend;
        bend.type = RyLegacyJointParam::Bend;
        bend.flags = RyLegacyJointParam::ApplyAngles;
        bend.axis = axis;
        bend.bone = bend.driver = 1;
        bend.values = {90.0f, 45.0f, -45.0f, -90.0f, 0.0f, 0.0f, 0.0f, 0.0f};
        rig.params.push_back(bend);
    }
    // Degrees about Z; the bend about Y has all of them between its dynamic rays.
    const double degrees[] = {45.0063, 60.0, 75.0};
    const double means[] = {1.0, (1.0 + 20.0 / 27.0) / 2.0, (1.0 + 7.0 / 27.0) / 2.0};
    std::vector<RyVec3> rest;
    for (const double each : degrees) {
        const double angle = each * RyFastMath::RadiansPerDegree;
        rest.push_back({float(10.0 * std::cos(angle)), float(10.0 * std::sin(angle)), 0.0f});
    }
    rig.owners.assign(rest.size(), 1);
    std::vector<RyLegacyControls> controls(2);
    controls[1].translation[2] = 10.0;
    RyLegacyDeformer deformer;
    deformer.setRig(rig, rest);
    std::vector<RyVec3> out;
    deformer.deform(rest, controls, out);
    for (size_t i = 0; i < rest.size(); ++i)
        QVERIFY2(std::abs(out[i].z - 10.0 * means[i]) < 1e-4, qPrintable(QString::number(out[i].z)));
}

void LegacyDeformerTest::turnsBeyondHalfATurn()
{
    RyRandom random;
    int partly = 0;
    for (int i = 0; i < 500; ++i) {
        RandomRig figure(random);
        for (size_t b = 0; b < figure.controls.size(); ++b) {
            for (size_t k = 0; k < 3; ++k)
                figure.posed[b].turn[k] = figure.controls[b].turn[k] = random.number(-20, 20);
        }
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        const std::vector<RyVec3> &posed = deformer.pose(figure.controls);
        for (size_t v = 0; v < posed.size(); ++v) {
            const LegacyEvaluator::Vec right = figure.evaluate(v);
            const double apart = std::sqrt(std::pow(posed[v].x - right[0], 2) + std::pow(posed[v].y - right[1], 2) +
                                           std::pow(posed[v].z - right[2], 2));
            QVERIFY2(apart <= 1e-5 * figure.size(right), qPrintable(QString::number(apart)));
            for (int bone = 0; bone < int(figure.rig.bones.size()); ++bone) {
                const double followed = deformer.fractions(bone, int(v)).turn[1];
                partly += followed > 0.0 && followed < 1.0;
            }
        }
    }
    QVERIFY(partly > 1000);
}

void LegacyDeformerTest::pointsAreTheSameWithNormals()
{
    RyRandom random;
    for (int i = 0; i < 300; ++i) {
        RandomRig figure(random);
        std::vector<RyVec3> normals;
        for (size_t v = 0; v < figure.rest.size(); ++v)
            normals.push_back(random.vector(1).normalized());
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        std::vector<RyVec3> alone;
        deformer.deform(figure.rest, figure.controls, alone);
        QVERIFY(deformer.pose(figure.controls, &normals, 1) == alone);
        // Those of a vertex by itself, by the linear parts.
        const RyLegacyPose pose(figure.rig, figure.controls);
        for (size_t v = 0; v < normals.size(); ++v) {
            const double n[3] = {normals[v].x, normals[v].y, normals[v].z};
            double image[3];
            pose.mapNormal(deformer.parts(int(v)), n, image);
            const RyVec3 right{float(image[0]), float(image[1]), float(image[2])};
            QVERIFY((deformer.normals()[v] - right).length() <= 1e-5f * (1 + right.length()));
        }
    }
}

void LegacyDeformerTest::partsAreTheFractionsOfAllBones()
{
    RyRandom random;
    int count = 0;
    for (int i = 0; i < 200; ++i) {
        const RandomRig figure(random);
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        for (int v = 0; v < int(figure.rest.size()); ++v) {
            const std::vector<RyLegacyPose::Part> parts = deformer.parts(v);
            std::vector<char> said(figure.rig.bones.size(), 0);
            for (const RyLegacyPose::Part &part : parts) {
                const int parent = figure.rig.bones[size_t(part.bone)].parent;
                QVERIFY(!said[size_t(part.bone)] && (parent < 0 || !said[size_t(parent)]));
                QVERIFY(!part.by.isNone() && part.by == deformer.fractions(part.bone, v));
                said[size_t(part.bone)] = 1;
            }
            for (int bone = 0; bone < int(said.size()); ++bone)
                QVERIFY(said[size_t(bone)] || deformer.fractions(bone, v).isNone());
            count += int(parts.size());
        }
    }
    QVERIFY(count > 5000);
}

/// Whatever changes, what is told of it is where points differ, by groups of 16; at rest no weights move anything.
void LegacyDeformerTest::changesAreWhatMoves()
{
    RyLegacyRig rig;
    rig.bones.resize(2);
    rig.bones[1].parent = 0;
    rig.bones[1].end = {10, 0, 0};
    RyLegacyRig::Param bend;
    bend.type = RyLegacyJointParam::Bend;
    bend.flags = RyLegacyJointParam::ApplyAngles;
    bend.axis = 2;
    bend.bone = bend.driver = 1;
    bend.values = {90.0f, 45.0f, -45.0f, -90.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    rig.params.push_back(bend);
    // 16 vertices at 60 degrees, 16 at 20, 16 of the parent; normals beside them and for five more corners.
    std::vector<RyVec3> rest, normals;
    for (int i = 0; i < 48; ++i) {
        const double angle = (i < 16 ? 60.0 : 20.0) * RyFastMath::RadiansPerDegree;
        rest.push_back({float((5.0 + i) * std::cos(angle)), float((5.0 + i) * std::sin(angle)), 1.0f});
        normals.push_back({0, 0.6f, 0.8f});
        rig.owners.push_back(i < 32 ? 1 : 0);
    }
    const std::vector<int> further = {20, 0, 1, 20, 20};
    normals.resize(rest.size() + further.size(), {0, 0.8f, 0.6f});
    RyLegacyDeformer deformer;
    deformer.setRig(rig, rest);
    deformer.setFurtherNormals(further);
    std::vector<RyLegacyControls> controls(2);
    const auto changed = [&](bool withNormals = true) {
        const quint64 before = deformer.changes().revision();
        deformer.setRig(rig, rest);
        const std::vector<RyVec3> out = deformer.pose(controls, withNormals ? &normals : nullptr, 1);
        std::vector<RyVec3> expected;
        deformer.deform(rest, controls, expected);
        QTest::qCompare(out == expected, true, "positions", "expected", __FILE__, __LINE__);
        if (deformer.changes().revision() == before)
            return std::vector<RyPointChanges::Range>();
        return deformer.changes().since(before);
    };
    using Ranges = std::vector<RyPointChanges::Range>;
    QVERIFY(changed() == (Ranges{{0, 53}}));
    QVERIFY(changed() == Ranges());
    rig.params[0].values[0] = 80.0f;
    QVERIFY(changed() == Ranges()); // at rest
    controls[1].turn[2] = 0.5;
    QVERIFY(changed() == (Ranges{{0, 32}, {48, 5}}));
    rig.params[0].values[0] = 85.0f; // of the two zones only the first ends at A
    QVERIFY(changed() == (Ranges{{0, 16}, {48, 5}}));
    rig.params[0].values[3] = -95.0f; // on the side where no vertex is
    QVERIFY(changed() == Ranges());
    rest[40].z = 2.0f;
    QVERIFY(changed() == (Ranges{{32, 16}}));
    QVERIFY(changed(false) == (Ranges{{0, 48}})); // other places than before
}

static bool arePartsEqual(const RyLegacyDeformer &a, const RyLegacyDeformer &b)
{
    const auto isSame = [](const RyLegacyPose::Part &p, const RyLegacyPose::Part &q) {
        return p.bone == q.bone && p.by == q.by;
    };
    for (int vertex = 0; vertex < a.getNumVertices(); ++vertex) {
        const auto parts = a.parts(vertex);
        const auto others = b.parts(vertex);
        if (!std::equal(parts.begin(), parts.end(), others.begin(), others.end(), isSame))
            return false;
    }
    return true;
}

/// After any change what was kept is what a new deformer makes.
void LegacyDeformerTest::keptIsAsMadeAnew()
{
    RyRandom random;
    int moved = 0;
    for (int i = 0; i < 300; ++i) {
        RandomRig figure(random);
        RyLegacyRig rig = figure.rig;
        RyLegacyDeformer kept;
        const int last = int(figure.rest.size()) - 1;
        const std::vector<int> further = {random.integer(0, last), last, random.integer(0, last), 0};
        std::vector<RyVec3> normals;
        for (size_t n = 0; n < figure.rest.size() + further.size(); ++n)
            normals.push_back(random.vector(1).normalized());
        const auto vertex = size_t(random.integer(0, last));
        int otherOwner = random.integer(0, int(rig.bones.size()) - 1); // of the vertex, which goes to and fro
        for (int step = 0; step < 15; ++step) {
            RyLegacyDeformer fresh;
            for (RyLegacyDeformer *deformer : {&kept, &fresh}) {
                deformer->setRig(rig, figure.rest);
                deformer->setFurtherNormals(further);
                deformer->pose(figure.controls, &normals, 1);
            }
            const std::vector<RyVec3> right = fresh.pose(figure.controls, &normals, 1);
            const QString where = QStringLiteral("figure %1, step %2").arg(i).arg(step);
            QVERIFY2(kept.pose(figure.controls, &normals, 1) == right, qPrintable(where));
            QVERIFY2(kept.normals() == fresh.normals(), qPrintable(where));
            QCOMPARE(kept.normals().size(), normals.size());
            QVERIFY2(arePartsEqual(kept, fresh), qPrintable(where));
            moved += right != figure.rest;
            const int count = int(rig.params.size());
            RyLegacyRig::Param *param = count > 0 ? &rig.params[size_t(random.integer(0, count - 1))] : nullptr;
            switch (param ? random.integer(0, 10) : 10) {
            case 0:
                param->flags ^= 1u << random.integer(0, 7);
                break;
            case 1:
                param->axis = random.integer(0, 2);
                break;
            case 2:
                std::swap(*param, rig.params.back());
                break;
            case 3:
                rig.params.pop_back();
                break;
            case 4:
                rig.bones[size_t(random.integer(0, int(rig.bones.size()) - 1))].origin = random.vector(10);
                break;
            case 5:
                param->staticMatrix.translate(random.vector(4));
                break;
            case 6:
                for (float &value : param->values)
                    value += float(random.number(-3, 3));
                break;
            case 7: {
                RyLegacyRig::Param another = *param;
                another.axis = random.integer(0, 2);
                rig.params.insert(rig.params.begin() + count / 2, another);
                break;
            }
            case 8:
            case 9:
                std::swap(otherOwner, rig.owners[vertex]);
                break;
            default:
                figure.rest[size_t(random.integer(0, last))] = random.vector(15);
            }
        }
    }
    QVERIFY(moved > 2000);
}

RY_TEST(LegacyDeformerTest)
#include "tst_RyLegacyDeformer.moc"
