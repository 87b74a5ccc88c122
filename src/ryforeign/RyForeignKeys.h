#pragma once

#include <array>
#include <initializer_list>
#include <vector>

struct RyForeignPivot;

/// Keys of one channel of a clip: seconds and so many numbers each, four of a rotation (x, y, z, w).
struct RyForeignKeys
{
    using Numbers = std::array<double, 4>;

    int components;
    std::vector<float> times;
    std::vector<float> values;

    void add(double time, std::initializer_list<double> numbers);
    /// One at the start, of what is not driven.
    void addIfNone(std::initializer_list<double> numbers);
    bool isConstant() const;
    /// On the straight line between two keys, of rotations on the shorter arc; before the first and after the last
    /// theirs. There is a key.
    Numbers at(float time) const;
};

/// Keys of the translation of a node that turns about points of its own, `pivot`, and is scaled about others. At all
/// times of the three and between them wherever the node turns farther than a straight line
/// can follow.
RyForeignKeys ryPivotedKeys(const RyForeignPivot &pivot, const RyForeignKeys &positions, const RyForeignKeys &rotations,
                            const RyForeignKeys &scales);
