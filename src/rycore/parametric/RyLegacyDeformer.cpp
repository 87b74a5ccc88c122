#include "rycore/parametric/RyLegacyDeformer.h"

#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <cstring>
#include <utility>

using Group = RyLegacyGroups::Group;
using Row = RyLegacyKernels::Row;

void RyLegacyDeformer::setRig(const RyLegacyRig &rig, const std::vector<RyVec3> &rest)
{
    if (!m_weights.update(rig, rest))
        return;
    m_groups.build(m_weights);
    m_groups.setFurtherNormals(m_furtherNormals);
    ++m_groupBuilds;
    m_resultValid = false;
    constexpr int RunSize = 256;
    static_assert(RunSize % RyLegacyKernels::Lanes == 0);
    m_runs.clear();
    for (int g = 0; g < int(m_groups.groups().size()); ++g) {
        const int count = int(m_groups.groups()[size_t(g)].vertices.size());
        for (int first = 0; first < count; first += RunSize)
            m_runs.push_back({g, first, std::min(RunSize, count - first)});
    }
}

void RyLegacyDeformer::setFurtherNormals(const std::vector<int> &vertices)
{
    if (vertices == m_furtherNormals)
        return;
    m_furtherNormals = vertices;
    m_groups.setFurtherNormals(vertices);
    m_resultValid = false;
}

RyLegacyFractions RyLegacyDeformer::fractions(int bone, int vertex) const
{
    const int number = m_groups.groupOf(vertex);
    if (number < 0)
        return {};
    const Group &group = m_groups.groups()[size_t(number)];
    for (int b = group.wholeBelow; b >= 0; b = rig().bones[size_t(b)].parent) {
        if (b == bone)
            return RyLegacyFractions::all();
    }
    const auto found = std::find(group.drivers.begin(), group.drivers.end(), bone);
    if (found == group.drivers.end())
        return {};
    return group.fractionsOf(size_t(found - group.drivers.begin()), size_t(m_groups.numberOf(vertex)));
}

std::vector<RyLegacyPose::Part> RyLegacyDeformer::parts(int vertex) const
{
    std::vector<RyLegacyPose::Part> parts;
    const int number = m_groups.groupOf(vertex);
    if (number < 0)
        return parts;
    const Group &group = m_groups.groups()[size_t(number)];
    for (size_t driver = 0; driver < group.drivers.size(); ++driver)
        parts.push_back({group.drivers[driver], group.fractionsOf(driver, size_t(m_groups.numberOf(vertex)))});
    for (int b = group.wholeBelow; b >= 0; b = rig().bones[size_t(b)].parent)
        parts.push_back({b, RyLegacyFractions::all()});
    return parts;
}

int RyLegacyDeformer::leader(int vertex) const
{
    const int number = m_groups.groupOf(vertex);
    if (number < 0)
        return -1;
    const Group &group = m_groups.groups()[size_t(number)];
    for (size_t driver = 0; driver < group.drivers.size(); ++driver) {
        if (group.fractionsOf(driver, size_t(m_groups.numberOf(vertex))).translation >= 0.5)
            return group.drivers[driver];
    }
    return group.wholeBelow;
}

std::vector<float> RyLegacyDeformer::weights(int index) const
{
    std::vector<float> result(m_weights.positions().size(), 0.0f);
    const RyLegacyRig::Param &param = rig().params[size_t(index)];
    const bool scales = param.type == RyLegacyJointParam::SmoothScale;
    const auto parentOf = [this](int bone) { return bone < 0 ? -1 : rig().bones[size_t(bone)].parent; };
    // A smooth-scale that the parent drives stands on the child's joint: the child's site tells its share.
    const bool isRest = scales && param.driver >= 0 && param.driver == parentOf(param.bone);
    const int driver = isRest ? param.bone : param.driver;
    if (driver < 0 || param.bone < 0 || (scales && !isRest && param.bone != parentOf(driver)))
        return result;
    for (int owner = 0; owner < int(rig().bones.size()); ++owner) {
        for (const RyLegacySite &site : m_weights.reach().sitesOf(owner)) {
            const bool onGroup = !isRest || site.own || !rig().bones[size_t(driver)].hasGroup;
            const bool acts = scales ? onGroup && (isRest || !site.own) : site.acting[std::min(param.axis, 2)] == index;
            if (site.driver != driver || !acts)
                continue;
            const std::vector<int> &vertices = m_weights.verticesOf(owner);
            for (size_t i = 0; i < vertices.size(); ++i) {
                const RyLegacyFractions f = m_weights.fractions(site, owner, i);
                result[size_t(vertices[i])] = float(!scales ? f.turn[param.axis] : isRest ? 1.0 - f.scale : f.scale);
            }
        }
    }
    return result;
}

void RyLegacyDeformer::moveGroups(const RyLegacyFrame &frame, const std::vector<char> &moved, const Row &points,
                                  const Row &normals) const
{
    std::vector<const Run *> runs;
    qint64 count = 0;
    for (const Run &run : m_runs) {
        if (moved[size_t(run.group)]) {
            runs.push_back(&run);
            count += run.count;
        }
    }
    const auto range = [&](size_t begin, size_t end) {
        RyLegacyMover mover(frame);
        for (size_t i = begin; i < end; ++i) {
            mover.move(runs[i]->group, runs[i]->first, runs[i]->count, points, normals);
            if (normals.in && runs[i]->first == 0)
                mover.moveFurtherNormals(runs[i]->group, normals);
        }
    };
    if (count > ThreadedAbove)
        RyParallel::forRanges(runs.size(), 4, range);
    else
        range(0, runs.size());
}

void RyLegacyDeformer::deform(const std::vector<RyVec3> &rest, const std::vector<RyLegacyControls> &controls,
                              std::vector<RyVec3> &out) const
{
    out = rest;
    if (rest.size() != m_weights.positions().size())
        return;
    const RyLegacyFrame frame(m_weights, m_groups, controls, false);
    if (frame.pose().isAtRest())
        return;
    std::vector<char> moved(m_groups.groups().size());
    for (int g = 0; g < int(moved.size()); ++g)
        moved[size_t(g)] = !frame.isAtRest(g);
    moveGroups(frame, moved, {rest.data(), out.data()}, {});
}

void RyLegacyDeformer::mapPoint(const RyLegacyPose &pose, int owner, const double rest[3], double out[3]) const
{
    std::vector<RyLegacyPose::Part> parts;
    double start[3] = {rest[0], rest[1], rest[2]};
    const std::vector<RyLegacySite> &sites = m_weights.reach().sitesOf(owner);
    for (auto site = sites.rbegin(); site != sites.rend(); ++site) {
        parts.push_back({site->driver, m_weights.fractions(*site, rest)});
        for (const int param : site->acting) {
            if (param >= 0 && m_weights.zones(param).bulges())
                pose.bulgeOf(rig().params[size_t(param)]).push(m_weights.zones(param).bulge(rest), rest, start);
        }
    }
    for (int b = rig().bones[size_t(owner)].parent; b >= 0; b = rig().bones[size_t(b)].parent)
        parts.push_back({b, RyLegacyFractions::all()});
    pose.mapPoint(parts, start, out);
}

std::vector<char> RyLegacyDeformer::movedGroups(const std::vector<RyLegacyControls> &controls) const
{
    const std::vector<RyLegacyRig::Bone> &bones = rig().bones;
    std::vector<char> changed(bones.size(), 0);
    std::vector<char> changedAbove(bones.size(), 0);
    for (size_t b = 0; b < bones.size(); ++b) {
        changed[b] = controls[b] != m_controls[b];
        changedAbove[b] = changed[b] || (bones[b].parent >= 0 && changedAbove[size_t(bones[b].parent)]);
    }
    std::vector<char> moved;
    for (const Group &group : m_groups.groups()) {
        const auto isChanged = [&](int bone) { return changed[size_t(bone)]; };
        moved.push_back((group.wholeBelow >= 0 && changedAbove[size_t(group.wholeBelow)]) ||
                        std::any_of(group.drivers.begin(), group.drivers.end(), isChanged) ||
                        std::any_of(group.bulges.begin(), group.bulges.end(),
                                    [&](const RyLegacyGroups::Bulge &bulge) { return isChanged(bulge.driver); }));
    }
    return moved;
}

void RyLegacyDeformer::markChanges(const std::vector<char> &moved)
{
    if (std::find(moved.begin(), moved.end(), 0) == moved.end())
        return m_changes.markAll(int(std::max(m_positions.size(), m_normals.size())));
    m_changes.begin();
    for (size_t g = 0; g < moved.size(); ++g) {
        if (!moved[g])
            continue;
        for (const int vertex : m_groups.groups()[g].vertices)
            m_changes.mark(vertex, 1);
        for (const int place : m_groups.groups()[g].furtherNormals)
            m_changes.mark(place, 1);
    }
}

void RyLegacyDeformer::markDifferences(const std::vector<RyVec3> &positions, const std::vector<RyVec3> &normals)
{
    const int count = int(std::max(m_positions.size(), m_normals.size()));
    if (m_changes.revision() == 0 || positions.size() != m_positions.size() || normals.size() != m_normals.size())
        return m_changes.markAll(count);
    const auto differ = [](const std::vector<RyVec3> &a, const std::vector<RyVec3> &b, size_t first) {
        const size_t last = std::min(first + size_t(RyPointChanges::GroupSize), a.size());
        return first < last && std::memcmp(&a[first], &b[first], (last - first) * sizeof(RyVec3)) != 0;
    };
    bool isOpen = false;
    for (int first = 0; first < count; first += RyPointChanges::GroupSize) {
        if (!differ(m_positions, positions, size_t(first)) && !differ(m_normals, normals, size_t(first)))
            continue;
        if (!std::exchange(isOpen, true))
            m_changes.begin();
        m_changes.mark(first, std::min(RyPointChanges::GroupSize, count - first));
    }
}

const std::vector<RyVec3> &RyLegacyDeformer::pose(const std::vector<RyLegacyControls> &controls,
                                                  const std::vector<RyVec3> *restNormals, quint64 normalsRevision)
{
    m_lastTouched = 0;
    std::vector<RyLegacyControls> all = controls;
    all.resize(rig().bones.size());
    const std::vector<RyVec3> &rest = m_weights.positions();
    const size_t normalCount = restNormals ? restNormals->size() : 0;
    const bool normalsFit = !restNormals || normalCount == rest.size() + m_furtherNormals.size();
    const bool partly = m_resultValid && normalsRevision == m_normalsRevision && normalCount == m_normals.size() &&
                        m_controls.size() == all.size();
    if (partly && all == m_controls)
        return m_positions;
    std::vector<char> moved = partly ? movedGroups(all) : std::vector<char>(m_groups.groups().size(), 1);
    std::vector<RyVec3> positionsBefore, normalsBefore; // where all is made anew
    if (!partly) {
        positionsBefore = std::exchange(m_positions, rest);
        normalsBefore = std::exchange(m_normals, restNormals ? *restNormals : std::vector<RyVec3>());
    } else if (std::find(moved.begin(), moved.end(), 1) != moved.end()) {
        markChanges(moved);
    }
    m_controls = std::move(all);
    m_normalsRevision = normalsRevision;
    m_resultValid = normalsFit;
    const bool withNormals = restNormals && normalsFit;
    const RyLegacyFrame frame(m_weights, m_groups, m_controls, withNormals);
    for (int g = 0; g < int(moved.size()); ++g) {
        if (!moved[size_t(g)])
            continue;
        if (!partly && frame.isAtRest(g))
            moved[size_t(g)] = 0; // the rest is there already
        else
            m_lastTouched += qint64(m_groups.groups()[size_t(g)].vertices.size());
    }
    const Row normals = withNormals ? Row{restNormals->data(), m_normals.data()} : Row();
    moveGroups(frame, moved, {rest.data(), m_positions.data()}, normals);
    // Other weights or another rest need not move anything: at rest no weights do.
    if (!partly)
        markDifferences(positionsBefore, normalsBefore);
    return m_positions;
}
