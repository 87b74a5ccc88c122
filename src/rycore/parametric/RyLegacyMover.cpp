#include "rycore/parametric/RyLegacyMover.h"

#include "rycore/skin/RySkinKernels.h"

#include <algorithm>

using Group = RyLegacyGroups::Group;

void RyLegacyMover::move(int group, int first, int count, const Row &points, const Row &normals)
{
    move(group, {m_frame.group(group).vertices.data() + first, nullptr, first, count}, points, normals);
}

void RyLegacyMover::moveFurtherNormals(int group, const Row &normals)
{
    const Group &its = m_frame.group(group);
    const Elements elements{its.furtherNormals.data(), its.furtherVertices.data(), 0, int(its.furtherNormals.size())};
    move(group, elements, {}, normals);
}

void RyLegacyMover::move(int group, const Elements &elements, const Row &points, const Row &normals)
{
    if (elements.count == 0)
        return;
    if (group != m_group)
        m_plan.make(m_frame, group);
    m_group = group;
    switch (m_plan.how()) {
    case RyLegacyPlan::How::Stay:
        for (const Row *row : {&points, &normals}) {
            for (int i = 0; row->in && i < elements.count; ++i)
                row->out[elements.places[i]] = row->in[elements.places[i]];
        }
        break;
    case RyLegacyPlan::How::Together:
        run(elements, points, normals);
        break;
    case RyLegacyPlan::How::OneByOne:
        moveOneByOne(elements, points, false);
        moveOneByOne(elements, normals, true);
        break;
    }
}

void RyLegacyMover::run(const Elements &elements, const Row &points, const Row &normals)
{
    RyLegacyKernels::Task task{};
    task.steps = m_plan.steps().data();
    task.stepCount = int(m_plan.steps().size());
    task.bulges = m_plan.bulges().data();
    task.bulgeCount = int(m_plan.bulges().size());
    task.last = m_plan.map().m;
    task.lastOfNormals = m_plan.normalMap().m;
    task.points = points;
    task.normals = normals;
    task.places = elements.places;
    task.numbers = elements.numbers;
    task.firstNumber = elements.firstNumber;
    task.count = elements.count;
    m_room.resize(std::max(m_room.size(), m_plan.steps().size() + 1));
    task.room = m_room.front().numbers;
    if (RySkinKernels::hasAvx2())
        RyLegacyKernels::moveAvx2(task);
    else
        RyLegacyKernels::movePlain(task);
}

void RyLegacyMover::moveOneByOne(const Elements &elements, Row row, bool isNormals)
{
    if (!row.in)
        return;
    if (!isNormals && !m_plan.bulges().empty()) {
        run(elements, row, {}); // there are no steps and no map
        row.in = row.out;
    }
    const Group &group = m_frame.group(m_group);
    m_parts = m_plan.parts();
    for (int i = 0; i < elements.count; ++i) {
        const auto number = size_t(elements.numbers ? elements.numbers[i] : elements.firstNumber + i);
        for (size_t d = 0; d < group.drivers.size(); ++d)
            m_parts[d].by = group.fractionsOf(d, number);
        const RyVec3 &at = row.in[elements.places[i]];
        const double p[3] = {at.x, at.y, at.z};
        double image[3];
        if (isNormals)
            m_frame.pose().mapNormal(m_parts, p, image);
        else
            m_frame.pose().mapPoint(m_parts, p, image);
        row.out[elements.places[i]] = {float(image[0]), float(image[1]), float(image[2])};
    }
}
