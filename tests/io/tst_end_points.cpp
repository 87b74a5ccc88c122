#include "CharacterScene.h"

#include "rycore/io/RyEndPointGuess.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "support/RyTest.h"

#include <Eigen/Geometry>

#include <nlohmann/json.hpp>

#include <cmath>

namespace {

struct Bone
{
    Eigen::Vector3d head, tail;
};

double angle(const Eigen::Vector3d &a, const Eigen::Vector3d &b)
{
    return std::atan2(a.cross(b).norm(), a.dot(b)) * 180.0 / M_PI;
}

Eigen::Vector3d vec(const RyVec3 &v)
{
    return {double(v.x), double(v.y), double(v.z)};
}

double percentile(std::vector<double> values, double share)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, size_t(share * double(values.size())))];
}

RyEndPointBone bone(int parent, const RyVec3 &origin)
{
    RyEndPointBone result;
    result.parent = parent;
    result.origin = origin;
    return result;
}

} // namespace

class EndPointsTest : public QObject
{
    Q_OBJECT

private slots:
    /// Against the true tails of a rig that lost them on its way through a file.
    void againstTheTruth()
    {
        const QString path = ryModel(QStringLiteral("mh_default_rig.glb"));
        const QString truthPath = ryModel(QStringLiteral("mh_default_rig.truth.json"));
        if (path.isEmpty() || truthPath.isEmpty())
            QSKIP("the character is not here");
        const CharacterScene character(path);
        const nlohmann::json truth = nlohmann::json::parse(bytesOf(truthPath).toStdString())["bones"];
        std::map<std::string, Bone> bones;
        for (const auto &[name, value] : truth.items()) {
            const auto point = [&](const char *key) -> Eigen::Vector3d {
                return Eigen::Vector3d(value[key][0], value[key][1], value[key][2]) * character.unit();
            };
            bones[name] = {point("head"), point("tail")};
        }
        QCOMPARE(bones.size(), character.bones().size());

        std::vector<double> single, several, severalLengths, leaves, leafLengths;
        for (const RyBone *each : character.bones()) {
            const auto found = bones.find(each->getName().toStdString());
            QVERIFY2(found != bones.end(), qUtf8Printable(each->getName()));
            const Bone &own = found->second;
            const double length = (own.tail - own.head).norm();
            QVERIFY((vec(each->getOrigin()) - own.head).norm() < 0.01);
            const Eigen::Vector3d guessed = vec(each->getEndPoint()) - own.head;
            const double off = angle(guessed, own.tail - own.head);
            if (each->getNumNodeChildren() == 1) {
                single.push_back((vec(each->getEndPoint()) - own.tail).norm());
            } else if (each->getNumNodeChildren() > 1) {
                several.push_back(off);
                severalLengths.push_back((vec(each->getEndPoint()) - own.tail).norm() / length);
            } else {
                leaves.push_back(off);
                leafLengths.push_back(std::fabs(guessed.norm() / length - 1.0));
            }
        }
        qInfo("one child: %zu bones within %.3g cm; several: %zu bones, median %.3g, 90 %% %.3g degrees, median %.3g, "
              "90 %% "
              "%.3g lengths off; leaves: %zu bones, median %.3g, 90 %% %.3g degrees, lengths off by %.3g, 90 %% %.3g",
              single.size(), percentile(single, 1.0), several.size(), percentile(several, 0.5),
              percentile(several, 0.9), percentile(severalLengths, 0.5), percentile(severalLengths, 0.9), leaves.size(),
              percentile(leaves, 0.5), percentile(leaves, 0.9), percentile(leafLengths, 0.5),
              percentile(leafLengths, 0.9));
        QVERIFY(single.size() > 40 && several.size() > 5 && leaves.size() > 40);
        QVERIFY(percentile(single, 1.0) < 0.001);
        QVERIFY(percentile(several, 0.5) <= 20.0);
        QVERIFY(percentile(several, 0.9) <= 25.0);
        QVERIFY(percentile(severalLengths, 0.9) <= 1.3);
        QVERIFY(percentile(leaves, 0.5) < 0.1);
        QVERIFY(percentile(leafLengths, 0.5) <= 0.1);
    }

    /// The neck ends the spine of this character; its own axis points backwards, its vertices are the head above it.
    void neckPointsUp()
    {
        const QString path = ryModel(QStringLiteral("CesiumMan.glb"));
        if (path.isEmpty())
            QSKIP("the character is not here");
        const CharacterScene character(path);
        int leaves = 0;
        for (const RyBone *each : character.bones()) {
            if (each->getNumNodeChildren() > 0)
                continue;
            ++leaves;
            const Eigen::Vector3d along = vec(each->getEndPoint()) - vec(each->getOrigin());
            qInfo("%s: %.3g cm, (%.2f %.2f %.2f)", qUtf8Printable(each->getName()), along.norm(),
                  along.x() / along.norm(), along.y() / along.norm(), along.z() / along.norm());
            if (each->getName().contains(QStringLiteral("neck"))) {
                QVERIFY(angle(along, Eigen::Vector3d::UnitY()) < 30.0);
                QVERIFY(along.norm() > 10.0 && along.norm() < 45.0);
            }
        }
        QVERIFY(leaves >= 4);
    }

    void everyEndIsSomewhere()
    {
        for (const QString &name : characterNames()) {
            const QString path = ryModel(name);
            if (path.isEmpty())
                QSKIP("the characters are not here");
            const CharacterScene character(path);
            for (const RyBone *each : character.bones()) {
                const double length = (vec(each->getEndPoint()) - vec(each->getOrigin())).norm();
                QVERIFY2(std::isfinite(length) && length > 1e-4 * character.height && length < 3.0 * character.height,
                         qUtf8Printable(QStringLiteral("%1: %2 %3").arg(name, each->getName()).arg(length)));
                // The first axis of the order runs along the bone.
                const RyVec3 inBone = each->getOrientation().inverse().multVec(each->getEndPoint() - each->getOrigin());
                const int first = each->getRotationOrder()[0];
                for (int axis = 0; axis < 3; ++axis)
                    QVERIFY(std::fabs(inBone[axis]) <= std::fabs(inBone[first]) * 1.0001f + 1e-4f);
            }
        }
    }

    void singleChild()
    {
        const auto ends = ryGuessEndPoints({bone(-1, {0, 0, 0}), bone(0, {0, 10, 0}), bone(1, {0, 10, 5})}, {}, 20.0f);
        QVERIFY(ends[0] == RyVec3(0, 10, 0));
        QVERIFY(ends[1] == RyVec3(0, 10, 5));
        QVERIFY(ends[2] != RyVec3(0, 10, 5));
    }

    void severalChildren()
    {
        // Equal ones: their mean. One with a subtree half as large again as the next: that one.
        std::vector<RyEndPointBone> bones = {bone(-1, {0, 0, 0}), bone(0, {4, 10, 0}), bone(0, {-4, 10, 0}),
                                             bone(1, {4, 20, 0}), bone(2, {-4, 20, 0})};
        QVERIFY(ryGuessEndPoints(bones, {}, 20.0f)[0] == RyVec3(0, 10, 0));
        bones.push_back(bone(3, {4, 25, 0})); // three against two: not more than one and a half times
        QVERIFY(ryGuessEndPoints(bones, {}, 20.0f)[0] == RyVec3(0, 10, 0));
        bones.push_back(bone(5, {4, 28, 0}));
        QVERIFY(ryGuessEndPoints(bones, {}, 20.0f)[0] == RyVec3(4, 10, 0));
    }

    void markedEnd()
    {
        std::vector<RyEndPointBone> bones = {bone(-1, {0, 0, 0}), bone(0, {0, 10, 0})};
        bones[1].hasEndMarker = true;
        bones[1].endMarker = {1, 2, 3};
        QVERIFY(ryGuessEndPoints(bones, {}, 20.0f)[1] == RyVec3(1, 2, 3));
    }

    /// A leaf goes on along the parent's own axis, as far as its vertices reach, and turns to where they lie.
    void leaves()
    {
        std::vector<RyEndPointBone> bones = {bone(-1, {0, 0, 0}), bone(0, {0, 10, 0})};
        std::vector<RyVec3> positions;
        for (int i = 0; i <= 100; ++i) {
            positions.emplace_back(0.0f, 10.0f + 0.07f * float(i), 0.0f);
            bones[1].vertices.push_back(i);
        }
        RyVec3 end = ryGuessEndPoints(bones, positions, 20.0f)[1];
        QVERIFY(end.x == 0.0f && end.z == 0.0f && end.y > 16.5f && end.y <= 17.0f);
        for (RyVec3 &p : positions)
            p.y = 20.0f - p.y; // below
        end = ryGuessEndPoints(bones, positions, 20.0f)[1];
        QVERIFY(end.x == 0.0f && end.z == 0.0f && end.y < 3.5f && end.y >= 3.0f);
        // Reach is limited: three times the distance to the parent, and not less than a tenth.
        for (RyVec3 &p : positions)
            p = RyVec3(0, 10.0f + 100.0f * (10.0f - p.y), 0);
        end = ryGuessEndPoints(bones, positions, 20.0f)[1];
        QCOMPARE(end.y, 40.0f);
        for (RyVec3 &p : positions)
            p = RyVec3(0, 10.01f, 0);
        end = ryGuessEndPoints(bones, positions, 20.0f)[1];
        QCOMPARE(end.y, 11.0f);
    }

    void nothingToGoBy()
    {
        for (const RyVec3 &end : ryGuessEndPoints({bone(-1, {1, 2, 3}), bone(0, {1, 2, 3})}, {}, 100.0f)) {
            QVERIFY(std::isfinite(end.x) && std::isfinite(end.y) && std::isfinite(end.z));
            QVERIFY(end != RyVec3(1, 2, 3));
        }
        QVERIFY(ryGuessEndPoints({}, {}, 0.0f).empty());
    }
};

RY_TEST(EndPointsTest)
#include "tst_end_points.moc"
