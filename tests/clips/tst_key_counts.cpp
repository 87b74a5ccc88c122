#include "rycore/io/gltf/clips/RyGltfMotionChange.h"
#include "support/RyTest.h"

#include <algorithm>
#include <cmath>

/// How many keys a moved origin takes, and that it is where it has to be between them.
class KeyCountsTest : public QObject
{
    Q_OBJECT

private slots:
    /// An arc takes as many equal pieces as its angle and radius say, and no more.
    void arc_data()
    {
        QTest::addColumn<double>("angle");
        QTest::addColumn<double>("growth");
        QTest::newRow("a little") << 0.01 << 0.0;
        QTest::newRow("some degrees") << 0.2 << 0.0;
        QTest::newRow("nearly half a turn") << 3.0 << 0.0;
        QTest::newRow("a scale that differs in its last digit") << 0.7 << 1e-7;
    }
    void arc()
    {
        QFETCH(double, angle);
        QFETCH(double, growth);
        RyGltfMotion motion = turning({0.5f, 1.25f}, angle);
        if (growth > 0.0)
            motion.curves[size_t(RyGltfPath::Scale)] = linear({0.5f, 1.25f}, {1.7, 1.7, 1.7, 1.7 + growth, 1.7, 1.7});
        const RyGltfMotionChange change = moved();
        const RyGltfMotion result = changed(motion, change);
        const Eigen::Vector3d arm = 1.7 * change.before.translation();
        const double radius = (arm - arm.dot(axis()) * axis()).norm();
        const double pieces = std::max(1.0, std::ceil(angle * std::sqrt(radius / (8.0 * change.tolerance))));
        QCOMPARE(double(keysOf(result)), pieces + 1.0);
        QVERIFY(farthest(motion, change, result) <= change.tolerance);
        // What may be off is made use of.
        QVERIFY(pieces < 3.0 || farthest(motion, change, result) > 0.2 * change.tolerance);
    }

    /// Where the scale changes as well, the way is no arc.
    void growing()
    {
        RyGltfMotion motion = turning({0.0f, 0.5f}, 0.8);
        motion.curves[size_t(RyGltfPath::Scale)] = linear({0.0f, 0.5f}, {1.7, 1.7, 1.7, 0.4, 0.6, 2.9});
        const RyGltfMotionChange change = moved();
        const RyGltfMotion result = changed(motion, change);
        QVERIFY(farthest(motion, change, result) <= change.tolerance);
        QVERIFY(farthest(motion, change, result) > 0.2 * change.tolerance);
    }

    /// Keys of the file are left out where nobody misses them, and never more is off than may be.
    void slow()
    {
        std::vector<float> times;
        std::vector<double> numbers;
        constexpr size_t Keys = 200;
        for (size_t i = 0; i < Keys; ++i) {
            times.push_back(float(i) / 30.0f);
            const double angle = 0.05 * std::sin(0.05 * double(i));
            const Eigen::Quaterniond turn(Eigen::AngleAxisd(angle, axis()));
            numbers.insert(numbers.end(), turn.coeffs().data(), turn.coeffs().data() + 4);
        }
        RyGltfMotion motion = turning({0.0f}, 0.0);
        motion.curves[size_t(RyGltfPath::Rotation)] = linear(times, numbers, 4);
        const RyGltfMotionChange change = moved();
        const RyGltfMotion result = changed(motion, change);
        QVERIFY(keysOf(result) < Keys / 2);
        QVERIFY(farthest(motion, change, result) <= change.tolerance);
    }

    /// The short way to take a map apart gives what the long one does, reflected or not.
    void straightMaps()
    {
        for (int signs = 0; signs < 8; ++signs) {
            const Eigen::Vector3d sign(signs & 1 ? -1 : 1, signs & 2 ? -1 : 1, signs & 4 ? -1 : 1);
            RyGltfParts parts;
            parts.translation = {0.3, -2.0, 5.0};
            parts.rotation = Eigen::Quaterniond(0.4, -0.3, 0.7, 0.2).normalized();
            parts.scale = sign.cwiseProduct(Eigen::Vector3d(0.5, 1.7, 1.1));
            for (const Eigen::Vector3d &wanted : {sign, Eigen::Vector3d(-sign), Eigen::Vector3d(1.0, 1.0, 1.0)}) {
                const RyGltfParts fast = RyGltfParts::straight(parts.map(), wanted);
                const RyGltfParts slow = RyGltfParts::nearest(parts.map(), wanted);
                QVERIFY(ryGltfDistance(fast.map(), parts.map(), 1.0) < 1e-12);
                QVERIFY((fast.scale - slow.scale).norm() < 1e-12);
                QVERIFY(std::abs(fast.rotation.dot(slow.rotation)) > 1.0 - 1e-12);
            }
        }
    }

private:
    static Eigen::Vector3d axis() { return Eigen::Vector3d(0.2, 1.0, -0.4).normalized(); }

    static std::shared_ptr<const RyGltfCurve> linear(const std::vector<float> &times,
                                                     const std::vector<double> &numbers, int components = 3)
    {
        auto curve = std::make_shared<RyGltfCurve>();
        curve->components = components;
        curve->times = times;
        curve->values = numbers;
        return curve;
    }

    /// From a turn of its own, at one speed.
    static RyGltfMotion turning(const std::vector<float> &times, double angle)
    {
        RyGltfMotion motion;
        motion.rest.translation = {4.0, -1.0, 0.5};
        motion.rest.scale = Eigen::Vector3d::Constant(1.7);
        std::vector<double> numbers;
        for (size_t i = 0; i < times.size(); ++i) {
            const Eigen::Quaterniond turn(Eigen::AngleAxisd(0.3 + angle * double(i), axis()));
            numbers.insert(numbers.end(), turn.coeffs().data(), turn.coeffs().data() + 4);
        }
        motion.curves[size_t(RyGltfPath::Rotation)] = linear(times, numbers, 4);
        return motion;
    }

    static RyGltfMotionChange moved()
    {
        RyGltfMotionChange change;
        change.before.translation() = Eigen::Vector3d(0.3, -0.2, 0.5);
        change.after.rotate(Eigen::AngleAxisd(0.9, Eigen::Vector3d(1.0, 2.0, 0.3).normalized()));
        change.after.translation() = Eigen::Vector3d(0.0, 3.0, -0.7);
        change.tolerance = 3e-4;
        return change;
    }

    static RyGltfMotion changed(const RyGltfMotion &motion, const RyGltfMotionChange &change)
    {
        double missed = 0.0;
        const RyGltfMotion result = ryGltfChanged(motion, change, &missed);
        QTest::qVerify(missed < 1e-9, "missed", "", __FILE__, __LINE__);
        return result;
    }

    static size_t keysOf(const RyGltfMotion &motion) { return motion.curve(RyGltfPath::Translation)->keyCount(); }

    /// How far the new origin is off its place, at a hundred times between any two keys.
    static double farthest(const RyGltfMotion &motion, const RyGltfMotionChange &change, const RyGltfMotion &result)
    {
        const std::vector<float> &before = motion.curve(RyGltfPath::Rotation)->times;
        const RyGltfCurve &after = *result.curve(RyGltfPath::Translation);
        std::vector<float> times = before;
        times.insert(times.end(), after.times.begin(), after.times.end());
        std::sort(times.begin(), times.end());
        double worst = 0.0;
        for (size_t i = 0; i + 1 < times.size(); ++i) {
            const RyGltfMotionPiece old(motion, times[i], times[i + 1]);
            const RyGltfCurvePiece now(after, times[i], times[i + 1]);
            for (int step = 0; step <= 100 && times[i] < times[i + 1]; ++step) {
                const double time = double(times[i]) + 0.01 * step * (double(times[i + 1]) - double(times[i]));
                const Eigen::Vector3d wanted = change.after * (old.map(time) * change.before.translation());
                worst = std::max(worst, (now.vector(time) - wanted).norm());
            }
        }
        return worst;
    }
};

RY_TEST(KeyCountsTest)
#include "tst_key_counts.moc"
