#include "rycore/parametric/fit/RyLegacyFitPoses.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyJointParam.h"

#include <algorithm>
#include <random>

namespace {

constexpr int RandomPoses = 20;

class Poses
{
public:
    Poses(const RyLegacyFitInput &input, const std::vector<int> &drivers) : m_input(input), m_drivers(drivers) {}

    std::vector<RyLegacyFitPose> make()
    {
        for (const int driver : m_drivers)
            addTurns(driver);
        for (const int driver : m_drivers) {
            const int above = m_input.rig.bones[size_t(driver)].parent;
            if (isDriver(above))
                addPair(above, driver);
        }
        for (const int driver : m_drivers) {
            if (sharesScale(driver))
                addScales(driver);
        }
        std::mt19937 random(20240229); // the same everywhere, unlike the distributions of the library
        for (int i = 0; i < RandomPoses && !m_drivers.empty(); ++i)
            addRandom(i, random);
        return std::move(m_poses);
    }

private:
    bool isDriver(int bone) const { return std::binary_search(m_drivers.begin(), m_drivers.end(), bone); }

    bool sharesScale(int driver) const
    {
        const std::vector<RyLegacyRig::Param> &params = m_input.rig.params;
        return std::any_of(params.begin(), params.end(), [driver](const RyLegacyRig::Param &param) {
            return param.type == RyLegacyJointParam::SmoothScale && (param.driver == driver || param.bone == driver) &&
                   (param.flags & (RyLegacyJointParam::ApplyZones | RyLegacyJointParam::ApplyMatrices));
        });
    }

    RyLegacyFitPose &add(const QString &name, std::vector<int> moved)
    {
        m_poses.emplace_back();
        m_poses.back().controls.resize(m_input.rig.bones.size());
        m_poses.back().moved = std::move(moved);
        m_poses.back().name = name;
        return m_poses.back();
    }

    const std::pair<double, double> &limit(int bone, int axis) const
    {
        return m_input.limits[size_t(bone)][size_t(axis)];
    }

    QString nameOf(int bone) const { return QString::fromStdString(m_input.names[size_t(bone)]); }

    void addTurns(int driver)
    {
        for (int axis = 0; axis < 3; ++axis) {
            const auto [low, high] = limit(driver, axis);
            for (const double turn : {low, 0.5 * low, 0.5 * high, high}) {
                if (turn == 0.0)
                    continue;
                const QString name = QStringLiteral("%1 %2 %3")
                                         .arg(nameOf(driver), QString(QLatin1Char(char('X' + axis))))
                                         .arg(turn * RyFastMath::DegreesPerRadian, 0, 'f', 0);
                add(name, {driver}).controls[size_t(driver)].turn[size_t(axis)] = turn;
            }
        }
    }

    void addPair(int above, int below)
    {
        RyLegacyFitPose &pose = add(nameOf(above) + QStringLiteral(" and ") + nameOf(below), {above, below});
        for (const int bone : {above, below}) {
            for (int axis = 0; axis < 3; ++axis)
                pose.controls[size_t(bone)].turn[size_t(axis)] = 0.5 * limit(bone, axis).second;
        }
    }

    /// Where scale is shared, the bones on both sides of a joint are not moved alike.
    void addScales(int driver)
    {
        std::vector<int> moved{driver};
        for (int bone = 0; bone < int(m_input.rig.bones.size()); ++bone) {
            if (m_input.rig.bones[size_t(bone)].parent == driver)
                moved.push_back(bone);
        }
        for (const double scale : {0.8, 1.25}) {
            const QString name = QStringLiteral("%1 scaled by %2").arg(nameOf(driver)).arg(scale);
            add(name, moved).controls[size_t(driver)].scale = {scale, scale, scale};
        }
    }

    void addRandom(int number, std::mt19937 &random)
    {
        RyLegacyFitPose &pose = add(QStringLiteral("random %1").arg(number + 1), m_drivers);
        pose.isRandom = true;
        for (const int driver : m_drivers) {
            for (int axis = 0; axis < 3; ++axis) {
                const auto [low, high] = limit(driver, axis);
                pose.controls[size_t(driver)].turn[size_t(axis)] =
                    low + (high - low) * double(random()) / double(std::mt19937::max());
            }
        }
    }

    const RyLegacyFitInput &m_input;
    const std::vector<int> &m_drivers;
    std::vector<RyLegacyFitPose> m_poses;
};

} // namespace

std::vector<RyLegacyFitPose> ryLegacyFitPoses(const RyLegacyFitInput &input, const std::vector<int> &drivers)
{
    return Poses(input, drivers).make();
}
