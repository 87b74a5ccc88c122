#pragma once

#include "rycore/parametric/RyLegacyKernels.h"

#include <cmath>

// The loop over the elements of a task. Included by each file that compiles it for its processor; what is here stays
// local to that file. All inner loops have a fixed length, so that compilers make them one instruction each.
namespace {

using RyLegacyKernels::Bulge;
using RyLegacyKernels::Lanes;
using RyLegacyKernels::Step;
using RyLegacyKernels::Task;

struct Lane
{
    double x[3][Lanes];
};

/// Both to 1e-11, for angles up to a million.
inline void sineAndCosine(const double *angle, double *sine, double *cosine)
{
    constexpr double ByQuarter = 0.63661977236758134308;
    constexpr double QuarterHigh = 1.57079632673412561417;
    constexpr double QuarterLow = 6.07710050650619224932e-11;
    constexpr double ToWhole = 6755399441055744.0; // adding it rounds to a whole number
    for (int l = 0; l < Lanes; ++l) {
        const double quarters = (angle[l] * ByQuarter + ToWhole) - ToWhole;
        const double r = (angle[l] - quarters * QuarterHigh) - quarters * QuarterLow;
        const double z = r * r;
        const double s =
            r + r * z *
                    (-1.0 / 6 + z * (1.0 / 120 + z * (-1.0 / 5040 +
                                                      z * (1.0 / 362880 + z * (-1.0 / 39916800 + z / 6227020800.0)))));
        const double c =
            1.0 + z * (-0.5 + z * (1.0 / 24 + z * (-1.0 / 720 +
                                                   z * (1.0 / 40320 + z * (-1.0 / 3628800 + z * (1.0 / 479001600))))));
        // Quarters modulo 4 as -2 to 2: an odd one exchanges the two.
        const double rest = quarters - 4.0 * ((quarters * 0.25 + ToWhole) - ToWhole);
        const double odd = std::fabs(rest) == 1.0 ? 1.0 : 0.0;
        const double swappedS = odd * c + (1.0 - odd) * s;
        const double swappedC = odd * s + (1.0 - odd) * c;
        const double signS = rest == -1.0 || std::fabs(rest) == 2.0 ? -1.0 : 1.0;
        const double signC = rest == 1.0 || std::fabs(rest) == 2.0 ? -1.0 : 1.0;
        sine[l] = signS * swappedS;
        cosine[l] = signC * swappedC;
    }
}

struct Elements
{
    const Task &task;
    int first;
    int count;
    int numbers[Lanes];

    Elements(const Task &itsTask, int itsFirst) : task(itsTask), first(itsFirst)
    {
        count = task.count - first < Lanes ? task.count - first : Lanes;
        for (int l = 0; l < Lanes; ++l) {
            const int element = first + (l < count ? l : count - 1);
            numbers[l] = task.numbers ? task.numbers[element] : task.firstNumber + element;
        }
    }

    void read(const float *from, double *to) const
    {
        if (!task.numbers && count == Lanes) {
            const float *row = from + numbers[0];
            for (int l = 0; l < Lanes; ++l)
                to[l] = row[l];
        } else {
            for (int l = 0; l < Lanes; ++l)
                to[l] = from[numbers[l]];
        }
    }

    int place(int l) const { return task.places[first + (l < count ? l : count - 1)]; }
};

void applyBulge(const Bulge &bulge, const Elements &elements, const Lane &rest, Lane &points)
{
    double share[Lanes];
    elements.read(bulge.shares, share);
    for (int l = 0; l < Lanes; ++l) {
        double off[3];
        for (int k = 0; k < 3; ++k)
            off[k] = rest.x[k][l] - bulge.origin[k];
        const double along = off[0] * bulge.line[0] + off[1] * bulge.line[1] + off[2] * bulge.line[2];
        const double by = share[l] >= 0.0 ? share[l] * bulge.factor[0] : -share[l] * bulge.factor[1];
        for (int k = 0; k < 3; ++k)
            points.x[k][l] += by * (off[k] - along * bulge.line[k]);
    }
}

void scaleBy(const Step &step, const double *share, bool normals, Lane &y)
{
    for (int l = 0; l < Lanes; ++l) {
        double s[3];
        for (int k = 0; k < 3; ++k)
            s[k] = 1.0 + share[l] * (step.scale[k] - 1.0);
        if (normals) {
            const double inverse[3] = {s[1] * s[2], s[0] * s[2], s[0] * s[1]};
            const double size = std::sqrt(s[0] * s[0] + s[1] * s[1] + s[2] * s[2]);
            const double other = std::sqrt(inverse[0] * inverse[0] + inverse[1] * inverse[1] + inverse[2] * inverse[2]);
            const double factor = std::copysign(size / (other > 0.0 ? other : 1.0), s[0] * s[1] * s[2]);
            for (int k = 0; k < 3; ++k)
                s[k] = other > 0.0 ? factor * inverse[k] : s[k];
        }
        for (int k = 0; k < 3; ++k)
            y.x[k][l] *= s[k];
    }
}

void turnAbout(int axis, double turn, const double *share, Lane &y)
{
    double angle[Lanes];
    double sine[Lanes];
    double cosine[Lanes];
    for (int l = 0; l < Lanes; ++l)
        angle[l] = share[l] * turn;
    sineAndCosine(angle, sine, cosine);
    double *next = y.x[(axis + 1) % 3];
    double *last = y.x[(axis + 2) % 3];
    for (int l = 0; l < Lanes; ++l) {
        const double n = next[l];
        const double t = last[l];
        next[l] = n * cosine[l] - t * sine[l];
        last[l] = n * sine[l] + t * cosine[l];
    }
}

/// What the step adds to where a point is.
void applyStep(const Step &step, const Elements &elements, bool normals, const Lane &point, Lane &push)
{
    Lane off;
    Lane y;
    double share[Lanes];
    for (int k = 0; k < 3; ++k) {
        const double origin = normals ? 0.0 : step.origin[k];
        for (int l = 0; l < Lanes; ++l)
            off.x[k][l] = point.x[k][l] - origin;
    }
    for (int k = 0; k < 3; ++k) {
        for (int l = 0; l < Lanes; ++l)
            y.x[k][l] =
                off.x[0][l] * step.toAxes[0][k] + off.x[1][l] * step.toAxes[1][k] + off.x[2][l] * step.toAxes[2][k];
    }
    if (step.isScaled) {
        elements.read(step.fractions[4], share);
        scaleBy(step, share, normals, y);
    }
    for (const int axis : step.order) {
        if (step.turn[axis] == 0.0)
            continue;
        elements.read(step.fractions[axis], share);
        turnAbout(axis, step.turn[axis], share, y);
    }
    elements.read(step.fractions[3], share);
    for (int k = 0; k < 3; ++k) {
        const double moved = normals ? 0.0 : step.translation[k];
        for (int l = 0; l < Lanes; ++l)
            push.x[k][l] = y.x[0][l] * step.toAxes[k][0] + y.x[1][l] * step.toAxes[k][1] +
                           y.x[2][l] * step.toAxes[k][2] - off.x[k][l] + share[l] * moved;
    }
}

void moveLanes(const Task &task, int first)
{
    const Elements elements(task, first);
    Lane rest;
    for (int l = 0; l < Lanes; ++l) {
        const RyVec3 &in = task.in[elements.place(l)];
        rest.x[0][l] = in.x;
        rest.x[1][l] = in.y;
        rest.x[2][l] = in.z;
    }
    Lane start = rest;
    for (int b = 0; b < task.bulgeCount && !task.normals; ++b)
        applyBulge(task.bulges[b], elements, rest, start);
    // Where the point is for each step, from what lies below it; the last one is the result.
    Lane *points = reinterpret_cast<Lane *>(task.room);
    for (int s = 0; s <= task.stepCount; ++s)
        points[s] = start;
    for (int s = 0; s < task.stepCount; ++s) {
        Lane push;
        const Lane &point = points[s];
        applyStep(task.steps[s], elements, task.normals, point, push);
        Lane &target = points[task.steps[s].target];
        for (int k = 0; k < 3; ++k) {
            for (int l = 0; l < Lanes; ++l)
                target.x[k][l] += push.x[k][l] + (point.x[k][l] - start.x[k][l]);
        }
    }
    const Lane &moved = points[task.stepCount];
    Lane result;
    for (int k = 0; k < 3; ++k) {
        const double translation = task.normals ? 0.0 : task.last[3][k];
        for (int l = 0; l < Lanes; ++l)
            result.x[k][l] = moved.x[0][l] * task.last[0][k] + moved.x[1][l] * task.last[1][k] +
                             moved.x[2][l] * task.last[2][k] + translation;
    }
    for (int l = 0; l < elements.count; ++l) {
        RyVec3 &out = task.out[elements.place(l)];
        out.x = float(result.x[0][l]);
        out.y = float(result.x[1][l]);
        out.z = float(result.x[2][l]);
    }
}

void moveTask(const Task &task)
{
    for (int first = 0; first < task.count; first += Lanes)
        moveLanes(task, first);
}

} // namespace
