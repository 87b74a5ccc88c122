#include "rycore/parametric/RyLegacyPose.h"

#include "rycore/math/RyFastMath.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

using Point = std::array<double, 3>;
using Part = RyLegacyPose::Part;

size_t placeOf(const std::vector<Part> &parts, int bone, size_t from = 0)
{
    while (from < parts.size() && parts[from].bone != bone)
        ++from;
    return from;
}

/// Some points for each part; those of few parts lie within.
class Points
{
public:
    explicit Points(size_t count)
    {
        if (count <= Few)
            std::fill_n(m_few, count, Point{});
        else
            m_many.resize(count);
        m_points = count <= Few ? m_few : m_many.data();
    }
    Points(const Points &) = delete;
    Points &operator=(const Points &) = delete;
    Point &operator[](size_t number) { return m_points[number]; }

private:
    static constexpr size_t Few = 16;
    Point m_few[Few];
    std::vector<Point> m_many;
    Point *m_points;
};

} // namespace

RyLegacyPose::RyLegacyPose(const RyLegacyRig &rig, const std::vector<RyLegacyControls> &controls)
    : m_rig(&rig), m_keptApart(rig.bones.size())
{
    for (size_t i = 0; i < rig.bones.size(); ++i) {
        m_motions.emplace_back(rig.bones[i], i < controls.size() ? controls[i] : RyLegacyControls());
        m_isAtRest = m_isAtRest && m_motions.back().isAtRest();
        if (rig.bones[i].inheritsScale)
            continue;
        for (int above = rig.bones[i].parent; above >= 0; above = rig.bones[size_t(above)].parent) {
            m_keptApart[size_t(above)].push_back(int(i));
            if (!rig.bones[size_t(above)].inheritsScale)
                break;
        }
    }
}

RyLegacyPose::Bulge RyLegacyPose::bulgeOf(const RyLegacyRig::Param &bend) const
{
    const RyLegacyRig::Bone &bone = m_rig->bones[size_t(bend.driver)];
    const double turn = motion(bend.driver).controls.turn[size_t(bend.axis)];
    const double quarters = std::fabs(turn) / (RyFastMath::Pi / 2.0);
    const size_t first = turn > 0.0 ? 4 : 6; // of the controllers
    Bulge bulge;
    bulge.factor[0] = quarters * bend.values[first];
    bulge.factor[1] = quarters * bend.values[first + 1];
    double length = 0.0;
    for (int k = 0; k < 3; ++k) {
        bulge.origin[k] = bone.origin[k];
        bulge.line[k] = double(bone.end[k]) - bone.origin[k];
        length += bulge.line[k] * bulge.line[k];
    }
    for (double &component : bulge.line)
        component = length > 0.0 ? component / std::sqrt(length) : 0.0;
    return bulge;
}

void RyLegacyPose::Bulge::push(double share, const double rest[3], double point[3]) const
{
    double off[3];
    for (int k = 0; k < 3; ++k)
        off[k] = rest[k] - origin[k];
    const double along = off[0] * line[0] + off[1] * line[1] + off[2] * line[2];
    const double by = share >= 0.0 ? share * factor[0] : -share * factor[1];
    for (int k = 0; k < 3; ++k)
        point[k] += by * (off[k] - along * line[k]);
}

bool RyLegacyPose::isScaledForItself(int bone) const
{
    return motion(bone).isScaled && !m_keptApart[size_t(bone)].empty();
}

bool RyLegacyPose::keepsScaleApart(const std::vector<Part> &parts) const
{
    return std::any_of(parts.begin(), parts.end(), [&](const Part &part) {
        const std::vector<int> &kept = m_keptApart[size_t(part.bone)];
        return motion(part.bone).isScaled &&
               std::any_of(kept.begin(), kept.end(), [&](int bone) { return placeOf(parts, bone) < parts.size(); });
    });
}

template<bool Normals>
void RyLegacyPose::map(const std::vector<Part> &parts, const double in[3], double out[3]) const
{
    constexpr auto Scaled = Normals ? RyLegacyMotion::Scale::Normals : RyLegacyMotion::Scale::Points;
    Points pushed(parts.size());  // by what lies below
    Points origins(parts.size()); // of bones that do not inherit scale, where they have come to
    Point all{in[0], in[1], in[2]};
    for (size_t i = 0; i < parts.size(); ++i) {
        const Part &part = parts[i];
        const RyLegacyMotion &its = motion(part.bone);
        const Point x{in[0] + pushed[i][0], in[1] + pushed[i][1], in[2] + pushed[i][2]};
        const bool rests = its.isAtRest();
        Point y = x;
        if (!rests && Normals)
            its.mapLinear(part.by, Scaled, x.data(), y.data());
        else if (!rests)
            its.mapPoint(part.by, x.data(), y.data());
        std::span<const int> keptApart;
        if (!rests)
            keptApart = m_keptApart[size_t(part.bone)];
        for (const int kept : keptApart) {
            const size_t place = placeOf(parts, kept);
            if (place == parts.size())
                continue;
            Point &origin = origins[place];
            Point off = x;
            if constexpr (!Normals) {
                for (size_t k = 0; k < 3; ++k)
                    off[k] -= origin[k];
            }
            Point scaled;
            Point unscaled;
            its.mapLinear(part.by, Scaled, off.data(), scaled.data());
            its.mapLinear(part.by, RyLegacyMotion::Scale::None, off.data(), unscaled.data());
            for (size_t k = 0; k < 3; ++k)
                y[k] -= parts[place].by.scale * (scaled[k] - unscaled[k]);
            if constexpr (!Normals)
                its.mapPoint(part.by, Point(origin).data(), origin.data());
        }
        if (!Normals && !m_rig->bones[size_t(part.bone)].inheritsScale)
            its.mapPoint(part.by, its.origin, origins[i].data());
        size_t above = parts.size();
        for (int b = m_rig->bones[size_t(part.bone)].parent; b >= 0 && above == parts.size();
             b = m_rig->bones[size_t(b)].parent)
            above = placeOf(parts, b, i + 1);
        Point &target = above < parts.size() ? pushed[above] : all;
        for (size_t k = 0; k < 3; ++k)
            target[k] += y[k] - in[k];
    }
    std::copy(all.begin(), all.end(), out);
}

void RyLegacyPose::mapPoint(const std::vector<Part> &parts, const double in[3], double out[3]) const
{
    map<false>(parts, in, out);
}

void RyLegacyPose::mapNormal(const std::vector<Part> &parts, const double in[3], double out[3]) const
{
    map<true>(parts, in, out);
}

RyAffine RyLegacyPose::mapOf(const std::vector<Part> &parts) const
{
    RyAffine result;
    const double corners[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
    mapPoint(parts, corners[3], result.m[3]);
    for (int i = 0; i < 3; ++i) {
        mapPoint(parts, corners[i], result.m[i]);
        for (int j = 0; j < 3; ++j)
            result.m[i][j] -= result.m[3][j];
    }
    return result;
}

RyAffine RyLegacyPose::normalMapOf(const std::vector<Part> &parts) const
{
    RyAffine result;
    const double axes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i)
        mapNormal(parts, axes[i], result.m[i]);
    return result;
}
