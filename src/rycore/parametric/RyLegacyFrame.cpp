#include "rycore/parametric/RyLegacyFrame.h"

#include "rycore/skin/RySkinKernels.h"

#include <algorithm>
#include <cmath>

using RyLegacyKernels::Lanes;
using RyLegacyKernels::Task;
using Part = RyLegacyPose::Part;

namespace {

/// By a turn about a bone axis, right-handed (see RyLegacyMotion).
void appendTurn(double matrix[3][3], int axis, double angle)
{
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    for (int i = 0; i < 3; ++i) {
        double &next = matrix[i][(axis + 1) % 3];
        double &last = matrix[i][(axis + 2) % 3];
        const double turned = next * c - last * s;
        last = next * s + last * c;
        next = turned;
    }
}

void setIdentity(double matrix[3][3])
{
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            matrix[i][j] = i == j ? 1.0 : 0.0;
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
    addSteps(group, plan, false);
    if (m_normals)
        addSteps(group, plan, true);
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

RyLegacyKernels::Step RyLegacyFrame::makeStep(const Group &group, size_t driver, bool normals) const
{
    const RyLegacyMotion &motion = m_pose.motion(group.drivers[driver]);
    const RyLegacyFractions alike = group.fractionsOf(driver, 0); // where they are
    RyLegacyKernels::Step step{};
    std::copy(&motion.toAxes[0][0], &motion.toAxes[0][0] + 9, &step.first[0][0]);
    std::copy(motion.origin, motion.origin + 3, step.origin);
    std::copy(motion.origin, motion.origin + 3, step.moved);
    if (motion.isScaled && !group.isAlike(driver, 4)) {
        std::copy(motion.controls.scale.begin(), motion.controls.scale.end(), step.scale);
        step.scaleFractions = group.component(driver, 4);
    } else if (motion.isScaled && alike.scale == 1.0) {
        double factors[3] = {motion.controls.scale[0], motion.controls.scale[1], motion.controls.scale[2]};
        if (normals)
            RyLegacyMotion::carryNormals(factors);
        for (auto &row : step.first) {
            for (int k = 0; k < 3; ++k)
                row[k] *= factors[k];
        }
    }
    double(*matrix)[3] = step.first; // of what stands before the next turn
    for (const int axis : motion.order) {
        const double angle = motion.controls.turn[size_t(axis)];
        if (angle == 0.0)
            continue;
        if (group.isAlike(driver, size_t(axis)) && matrix == step.first && step.scaleFractions) {
            // The scale in part stands between.
            RyLegacyKernels::Step::Turn &none = step.turns[step.turnCount++];
            none = {axis, 0.0, group.component(driver, size_t(axis)), true, {}};
            matrix = none.next;
            setIdentity(matrix);
        }
        if (group.isAlike(driver, size_t(axis))) {
            appendTurn(matrix, axis, angle * alike.turn[axis]);
            if (matrix != step.first)
                step.turns[step.turnCount - 1].isFollowed = true;
            continue;
        }
        RyLegacyKernels::Step::Turn &turn = step.turns[step.turnCount++];
        turn = {axis, angle, group.component(driver, size_t(axis)), false, {}};
        matrix = turn.next;
        setIdentity(matrix);
    }
    double last[3][3];
    const bool scaleLast = matrix == step.first && step.scaleFractions;
    std::copy(&matrix[0][0], &matrix[0][0] + 9, &last[0][0]);
    if (scaleLast) {
        RyLegacyKernels::Step::Turn &none = step.turns[step.turnCount++];
        none = {0, 0.0, group.component(driver, 0), true, {}};
        matrix = none.next;
        setIdentity(last);
    } else if (matrix != step.first) {
        step.turns[step.turnCount - 1].isFollowed = true;
    }
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            matrix[i][j] = 0.0;
            for (int k = 0; k < 3; ++k)
                matrix[i][j] += last[i][k] * motion.toAxes[j][k];
        }
    }
    if (!motion.isMoved)
        return step;
    if (group.isAlike(driver, 3)) {
        for (size_t k = 0; k < 3; ++k)
            step.moved[k] += alike.translation * motion.controls.translation[k];
    } else {
        std::copy(motion.controls.translation.begin(), motion.controls.translation.end(), step.translation);
        step.translationFractions = group.component(driver, 3);
    }
    return step;
}

void RyLegacyFrame::addSteps(const Group &group, Plan &plan, bool normals) const
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
        RyLegacyKernels::Step step = makeStep(group, d, normals);
        step.target = count;
        const std::vector<RyLegacyRig::Bone> &bones = m_weights.rig().bones;
        for (int b = bones[size_t(group.drivers[d])].parent; b >= 0 && step.target == count;
             b = bones[size_t(b)].parent) {
            const auto above = std::find(group.drivers.begin(), group.drivers.end(), b);
            if (above != group.drivers.end() && stepOf[size_t(above - group.drivers.begin())] >= 0)
                step.target = stepOf[size_t(above - group.drivers.begin())];
        }
        (normals ? plan.normalSteps : plan.steps).push_back(step);
    }
}

Task RyLegacyFrame::taskFor(const Plan &plan, const Elements &elements, bool normals, const RyVec3 *in,
                            RyVec3 *out) const
{
    Task task{};
    const std::vector<RyLegacyKernels::Step> &steps = normals ? plan.normalSteps : plan.steps;
    task.steps = steps.data();
    task.stepCount = int(steps.size());
    task.bulges = plan.bulges.data();
    task.bulgeCount = normals ? 0 : int(plan.bulges.size());
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
