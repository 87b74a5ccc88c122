#include "rycore/parametric/RyLegacyPlan.h"

#include <algorithm>

using RyLegacyKernels::Step;

namespace {

void copyMatrix(const double from[3][3], double to[3][3])
{
    std::copy(&from[0][0], &from[0][0] + 9, &to[0][0]);
}

void scaleColumns(double matrix[3][3], const double factors[3])
{
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            matrix[i][j] *= factors[j];
    }
}

/// By the inverse of a turn.
void appendInverse(double matrix[3][3], const double turn[3][3])
{
    for (int i = 0; i < 3; ++i) {
        const double row[3] = {matrix[i][0], matrix[i][1], matrix[i][2]};
        for (int j = 0; j < 3; ++j)
            matrix[i][j] = row[0] * turn[j][0] + row[1] * turn[j][1] + row[2] * turn[j][2];
    }
}

/// A turn in part, or by nothing: then its matrix is what stands behind a scale in part.
void addTurn(Step &step, int axis, double angle, const RyLegacyKernels::Fractions &fractions)
{
    Step::Turn &turn = step.turns[step.turnCount++];
    turn.axis = axis;
    turn.angle = angle;
    turn.fractions = fractions;
    for (int k = 0; k < 3; ++k)
        turn.next[k][k] = 1.0;
}

} // namespace

void RyLegacyPlan::make(const RyLegacyFrame &frame, int number)
{
    const Group &group = frame.group(number);
    m_steps.clear();
    m_bulges.clear();
    m_parts.clear();
    m_how = How::Stay;
    if (frame.isAtRest(number))
        return;
    addBulges(frame, group);
    m_how = How::Together;
    if (frame.isAnyApart()) {
        addParts(frame, group, true);
        if (frame.pose().keepsScaleApart(m_parts)) {
            m_map = m_normalMap = RyAffine();
            if (group.uniform)
                setMaps(frame);
            else
                m_how = How::OneByOne;
            return;
        }
    }
    m_map = frame.wholeMap(group.wholeBelow);
    if (frame.hasNormals())
        m_normalMap = frame.wholeNormalMap(group.wholeBelow);
    if (!group.uniform)
        return addSteps(frame, group);
    addParts(frame, group, false);
    setMaps(frame);
}

void RyLegacyPlan::addParts(const RyLegacyFrame &frame, const Group &group, bool withWhole)
{
    m_parts.clear();
    for (size_t d = 0; d < group.drivers.size(); ++d)
        m_parts.push_back({group.drivers[d], group.uniform ? group.fixed[d] : RyLegacyFractions::all()});
    for (int b = group.wholeBelow; b >= 0 && withWhole; b = frame.rig().bones[size_t(b)].parent)
        m_parts.push_back({b, RyLegacyFractions::all()});
}

/// Puts what the parts do to all vertices before the maps.
void RyLegacyPlan::setMaps(const RyLegacyFrame &frame)
{
    if (m_parts.empty())
        return;
    m_map = frame.pose().mapOf(m_parts) * m_map;
    if (frame.hasNormals())
        m_normalMap = frame.pose().normalMapOf(m_parts) * m_normalMap;
}

void RyLegacyPlan::addBulges(const RyLegacyFrame &frame, const Group &group)
{
    for (const RyLegacyGroups::Bulge &bulge : group.bulges) {
        const RyLegacyPose::Bulge its = frame.pose().bulgeOf(frame.rig().params[size_t(bulge.param)]);
        if (its.isNone())
            continue;
        RyLegacyKernels::Bulge &each = m_bulges.emplace_back();
        std::copy(its.origin, its.origin + 3, each.origin);
        std::copy(its.line, its.line + 3, each.line);
        std::copy(its.factor, its.factor + 2, each.factor);
        each.shares = bulge.all();
    }
}

void RyLegacyPlan::addSteps(const RyLegacyFrame &frame, const Group &group)
{
    m_stepOf.assign(group.drivers.size(), -1);
    int count = 0;
    for (size_t d = 0; d < group.drivers.size(); ++d) {
        if (!frame.pose().motion(group.drivers[d]).isAtRest())
            m_stepOf[d] = count++;
    }
    for (size_t d = 0; d < group.drivers.size(); ++d) {
        if (m_stepOf[d] < 0)
            continue;
        int target = count;
        const std::vector<RyLegacyRig::Bone> &bones = frame.rig().bones;
        for (int b = bones[size_t(group.drivers[d])].parent; b >= 0 && target == count; b = bones[size_t(b)].parent) {
            const auto above = std::find(group.drivers.begin(), group.drivers.end(), b);
            if (above != group.drivers.end() && m_stepOf[size_t(above - group.drivers.begin())] >= 0)
                target = m_stepOf[size_t(above - group.drivers.begin())];
        }
        const int number = int(m_steps.size());
        const auto goesTo = [&](int place) {
            return std::any_of(m_steps.begin(), m_steps.end(), [&](const Step &each) { return each.target == place; });
        };
        const bool isPushed = goesTo(number);
        const bool pushesFirst = !goesTo(target);
        Step &step = m_steps.emplace_back();
        step.target = target;
        step.isPushed = isPushed;
        step.pushesFirst = pushesFirst;
        fillStep(frame.pose().motion(group.drivers[d]), group, d, step);
    }
}

/// Multiplies together what all vertices take alike.
void RyLegacyPlan::fillStep(const RyLegacyMotion &motion, const Group &group, size_t driver, Step &step) const
{
    const RyLegacyFractions &alike = group.fixed[driver]; // where they are
    std::copy(motion.origin, motion.origin + 3, step.origin);
    std::copy(motion.origin, motion.origin + 3, step.moved);
    copyMatrix(motion.toAxes, step.first);
    copyMatrix(motion.toAxes, step.firstOfNormals);
    const bool scalesAlike = motion.isScaled && group.isAlike(driver, 4);
    if (scalesAlike && alike.scale == 1.0) {
        double factors[3] = {motion.controls.scale[0], motion.controls.scale[1], motion.controls.scale[2]};
        scaleColumns(step.first, factors);
        RyLegacyMotion::carryNormals(factors);
        scaleColumns(step.firstOfNormals, factors);
    } else if (motion.isScaled && !scalesAlike) {
        std::copy(motion.controls.scale.begin(), motion.controls.scale.end(), step.scale);
        step.scaleFractions = group.component(driver, 4);
        addTurn(step, 0, 0.0, {});
    }
    const auto behind = [&](auto append) {
        if (step.turnCount > 0) {
            append(step.turns[step.turnCount - 1].next);
            step.turns[step.turnCount - 1].isFollowed = true;
        } else {
            append(step.first);
            append(step.firstOfNormals);
        }
    };
    for (const int axis : motion.order) {
        const double angle = motion.controls.turn[size_t(axis)];
        if (angle == 0.0)
            continue;
        if (!group.isAlike(driver, size_t(axis)))
            addTurn(step, axis, angle, group.component(driver, size_t(axis)));
        else if (alike.turn[axis] == 1.0)
            behind([&](double(*matrix)[3]) { RyLegacyMotion::appendTurn(matrix, axis, angle); });
    }
    behind([&](double(*matrix)[3]) { appendInverse(matrix, motion.toAxes); });
    if (motion.isMoved && group.isAlike(driver, 3)) {
        for (size_t k = 0; k < 3; ++k)
            step.moved[k] += alike.translation * motion.controls.translation[k];
    } else if (motion.isMoved) {
        std::copy(motion.controls.translation.begin(), motion.controls.translation.end(), step.translation);
        step.translationFractions = group.component(driver, 3);
    }
}
