#pragma once

#include "rycore/parametric/RyLegacyPlan.h"

/// Moves vertices of a frame, group after group. One for each thread.
class RyLegacyMover
{
public:
    using Row = RyLegacyKernels::Row;

    explicit RyLegacyMover(const RyLegacyFrame &frame) : m_frame(frame) {}

    /// `first` and `count` of the vertices of the group. A row without input stays what it is.
    void move(int group, int first, int count, const Row &points, const Row &normals);
    /// Normals that stand behind those of the vertices, of all the group.
    void moveFurtherNormals(int group, const Row &normals);

private:
    /// Places of points, and which vertices of their group these are: listed, or in a row.
    struct Elements
    {
        const int *places;
        const int *numbers;
        int firstNumber;
        int count;
    };
    struct alignas(64) Room
    {
        double numbers[6 * RyLegacyKernels::Lanes];
    };
    void move(int group, const Elements &elements, const Row &points, const Row &normals);
    void run(const Elements &elements, const Row &points, const Row &normals);
    void moveOneByOne(const Elements &elements, Row row, bool isNormals);

    const RyLegacyFrame &m_frame;
    int m_group = -1; // that the plan is of
    RyLegacyPlan m_plan;
    std::vector<Room> m_room;
    std::vector<RyLegacyPose::Part> m_parts;
};
