#include "rycore/parametric/RyLegacyFrame.h"

#include "rycore/skin/RySkinKernels.h"

#include <algorithm>
#include <cmath>

using RyLegacyKernels::Lanes;
using RyLegacyKernels::Task;
using Part = RyLegacyPose::Part;

namespace {

void moveAlike(const RyAffine &map, bool direction, const int *places, int count, const RyVec3 *in, RyVec3 *out)
{
    const double shift[3] = {direction ? 0.0 : map.m[3][0], direction ? 0.0 : map.m[3][1],
                             direction ? 0.0 : map.m[3][2]};
    for (int i = 0; i < count; ++i) {
        const RyVec3 &p = in[places[i]];
        const double x = p.x;
        const double y = p.y;
        const double z = p.z;
        out[places[i]] = {float(x * map.m[0][0] + y * map.m[1][0] + z * map.m[2][0] + shift[0]),
                          float(x * map.m[0][1] + y * map.m[1][1] + z * map.m[2][1] + shift[1]),
                          float(x * map.m[0][2] + y * map.m[1][2] + z * map.m[2][2] + shift[2])};
    }
}

} // namespace

RyLegacyFrame::RyLegacyFrame(const RyLegacyWeights &weights, const RyLegacyGroups &groups,
                             const std::vector<RyLegacyControls> &controls, bool normals)
    : m_weights(weights), m_groups(groups), m_pose(weights.rig(), controls), m_normals(normals),
      m_plans(groups.groups().size())
{
    const std::vector<RyLegacyRig::Bone> &bones = weights.rig().bones;
    const RyAffine identity;
    for (int b = 0; b < int(bones.size()); ++b) {
        const int parent = bones[size_t(b)].parent;
        const bool rests = m_pose.motion(b).isAtRest();
        const std::vector<Part> alone{{b, RyLegacyFractions::all()}};
        const RyAffine &above = parent < 0 ? identity : m_wholeMaps[size_t(parent)];
        m_wholeAtRest.push_back(rests && (parent < 0 || m_wholeAtRest[size_t(parent)]));
        m_wholeMaps.push_back(rests ? above : m_pose.mapOf(alone) * above);
        if (normals) {
            const RyAffine &normalsAbove = parent < 0 ? identity : m_wholeNormalMaps[size_t(parent)];
            m_wholeNormalMaps.push_back(rests ? normalsAbove : m_pose.normalMapOf(alone) * normalsAbove);
        }
        m_anyApart = m_anyApart || m_pose.isScaledForItself(b);
    }
}

std::vector<Part> RyLegacyFrame::partsOf(const Group &group) const
{
    std::vector<Part> parts;
    for (size_t d = 0; d < group.drivers.size(); ++d)
        parts.push_back({group.drivers[d], group.uniform ? group.fixed[d] : RyLegacyFractions::all()});
    for (int b = group.wholeBelow; b >= 0; b = m_weights.rig().bones[size_t(b)].parent)
        parts.push_back({b, RyLegacyFractions::all()});
    return parts;
}

void RyLegacyFrame::prepare(int number)
{
    const Group &group = m_groups.groups()[size_t(number)];
    Plan &plan = m_plans[size_t(number)];
    addBulges(group, plan);
    const int whole = group.wholeBelow;
    const bool wholeRests = whole < 0 || m_wholeAtRest[size_t(whole)];
    const bool driversRest = std::all_of(group.drivers.begin(), group.drivers.end(),
                                         [this](int driver) { return m_pose.motion(driver).isAtRest(); });
    if (wholeRests && driversRest && plan.bulges.empty())
        return;
    if (m_anyApart) {
        std::vector<Part> parts = partsOf(group);
        if (m_pose.keepsScaleApart(parts)) {
            plan.how = group.uniform ? Plan::Map : Plan::OneByOne;
            if (group.uniform)
                plan.map = m_pose.mapOf(parts);
            if (group.uniform && m_normals)
                plan.normalMap = m_pose.normalMapOf(parts);
            plan.parts = std::move(parts);
            return;
        }
    }
    if (whole >= 0) {
        plan.map = m_wholeMaps[size_t(whole)];
        if (m_normals)
            plan.normalMap = m_wholeNormalMaps[size_t(whole)];
    }
    if (group.uniform) {
        plan.how = Plan::Map;
        std::vector<Part> parts = partsOf(group);
        parts.resize(group.drivers.size());
        if (!driversRest) {
            plan.map = m_pose.mapOf(parts) * plan.map;
            if (m_normals)
                plan.normalMap = m_pose.normalMapOf(parts) * plan.normalMap;
        }
        return;
    }
    plan.how = driversRest && plan.bulges.empty() ? Plan::Map : Plan::Steps;
    addSteps(group, plan);
}

void RyLegacyFrame::addBulges(const Group &group, Plan &plan) const
{
    for (const RyLegacyGroups::Bulge &bulge : group.bulges) {
        const RyLegacyPose::Bulge its = m_pose.bulgeOf(m_weights.rig().params[size_t(bulge.param)]);
        if (its.isNone())
            continue;
        RyLegacyKernels::Bulge &each = plan.bulges.emplace_back();
        std::copy(its.origin, its.origin + 3, each.origin);
        std::copy(its.line, its.line + 3, each.line);
        std::copy(its.factor, its.factor + 2, each.factor);
        each.shares = bulge.shares.data();
    }
}

void RyLegacyFrame::addSteps(const Group &group, Plan &plan) const
{
    std::vector<int> stepOf(group.drivers.size(), -1);
    int count = 0;
    for (size_t d = 0; d < group.drivers.size(); ++d) {
        if (!m_pose.motion(group.drivers[d]).isAtRest())
            stepOf[d] = count++;
    }
    for (size_t d = 0; d < group.drivers.size(); ++d) {
        if (stepOf[d] < 0)
            continue;
        const RyLegacyMotion &motion = m_pose.motion(group.drivers[d]);
        RyLegacyKernels::Step step{};
        for (int k = 0; k < 3; ++k) {
            step.origin[k] = motion.origin[k];
            step.order[k] = motion.order[k];
            step.turn[k] = motion.controls.turn[size_t(k)];
            step.translation[k] = motion.controls.translation[size_t(k)];
            step.scale[k] = motion.controls.scale[size_t(k)];
            std::copy(motion.toAxes[k], motion.toAxes[k] + 3, step.toAxes[k]);
        }
        step.isScaled = motion.isScaled;
        step.target = count;
        const std::vector<RyLegacyRig::Bone> &bones = m_weights.rig().bones;
        for (int b = bones[size_t(group.drivers[d])].parent; b >= 0 && step.target == count;
             b = bones[size_t(b)].parent) {
            const auto above = std::find(group.drivers.begin(), group.drivers.end(), b);
            if (above != group.drivers.end() && stepOf[size_t(above - group.drivers.begin())] >= 0)
                step.target = stepOf[size_t(above - group.drivers.begin())];
        }
        for (size_t c = 0; c < Group::Components; ++c)
            step.fractions[c] = group.component(d, c);
        plan.steps.push_back(step);
    }
}

Task RyLegacyFrame::taskFor(const Plan &plan, const Elements &elements, bool normals, const RyVec3 *in,
                            RyVec3 *out) const
{
    Task task{};
    task.steps = plan.steps.data();
    task.stepCount = int(plan.steps.size());
    task.bulges = plan.bulges.data();
    task.bulgeCount = int(plan.bulges.size());
    task.normals = normals;
    const RyAffine &last = normals ? plan.normalMap : plan.map;
    std::copy(&last.m[0][0], &last.m[0][0] + 12, &task.last[0][0]);
    task.in = in;
    task.out = out;
    task.places = elements.places;
    task.numbers = elements.numbers;
    task.firstNumber = elements.firstNumber;
    task.count = elements.count;
    return task;
}

void RyLegacyFrame::run(Task task) const
{
    thread_local std::vector<double> room;
    room.resize(std::max(room.size(), size_t(task.stepCount + 1) * 3 * Lanes));
    task.room = room.data();
    if (RySkinKernels::hasAvx2())
        RyLegacyKernels::moveAvx2(task);
    else
        RyLegacyKernels::movePlain(task);
}

void RyLegacyFrame::moveOneByOne(const Group &group, const Plan &plan, const Elements &elements, bool normals,
                                 const RyVec3 *in, RyVec3 *out) const
{
    const RyVec3 *from = in;
    if (!normals && !plan.bulges.empty()) {
        run(taskFor(plan, elements, false, in, out)); // there are no steps and no map
        from = out;
    }
    std::vector<Part> parts = plan.parts;
    for (int i = 0; i < elements.count; ++i) {
        const auto number = size_t(elements.numbers ? elements.numbers[i] : elements.firstNumber + i);
        for (size_t d = 0; d < group.drivers.size(); ++d)
            parts[d].by = group.fractionsOf(d, number);
        const RyVec3 &at = from[elements.places[i]];
        const double p[3] = {at.x, at.y, at.z};
        double image[3];
        if (normals)
            m_pose.mapNormal(parts, p, image);
        else
            m_pose.mapPoint(parts, p, image);
        out[elements.places[i]] = {float(image[0]), float(image[1]), float(image[2])};
    }
}

void RyLegacyFrame::move(int number, const Elements &elements, bool normals, const RyVec3 *in, RyVec3 *out) const
{
    const Group &group = m_groups.groups()[size_t(number)];
    const Plan &plan = m_plans[size_t(number)];
    switch (plan.how) {
    case Plan::Stay:
        for (int i = 0; i < elements.count; ++i)
            out[elements.places[i]] = in[elements.places[i]];
        break;
    case Plan::Map:
        moveAlike(normals ? plan.normalMap : plan.map, normals, elements.places, elements.count, in, out);
        break;
    case Plan::Steps:
        run(taskFor(plan, elements, normals, in, out));
        break;
    case Plan::OneByOne:
        moveOneByOne(group, plan, elements, normals, in, out);
        break;
    }
}

void RyLegacyFrame::movePoints(int group, int first, int count, const RyVec3 *in, RyVec3 *out) const
{
    move(group, {m_groups.groups()[size_t(group)].vertices.data() + first, nullptr, first, count}, false, in, out);
}

void RyLegacyFrame::moveNormals(int group, int first, int count, const RyVec3 *in, RyVec3 *out) const
{
    move(group, {m_groups.groups()[size_t(group)].vertices.data() + first, nullptr, first, count}, true, in, out);
}

void RyLegacyFrame::moveFurtherNormals(int group, const RyVec3 *in, RyVec3 *out) const
{
    const Group &its = m_groups.groups()[size_t(group)];
    move(group, {its.furtherNormals.data(), its.furtherVertices.data(), 0, int(its.furtherNormals.size())}, true, in,
         out);
}
