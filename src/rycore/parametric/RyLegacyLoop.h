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

/// Both to 1e-8, for angles up to a half turn: of a quarter of the angle, doubled twice.
inline void sineAndCosineOfHalfTurn(const double *angle, double *sine, double *cosine)
{
    for (int l = 0; l < Lanes; ++l) {
        const double r = 0.25 * angle[l];
        const double z = r * r;
        const double s = r + r * z * (-1.0 / 6 + z * (1.0 / 120 + z * (-1.0 / 5040 + z * (1.0 / 362880))));
        const double c =
            1.0 + z * (-0.5 + z * (1.0 / 24 + z * (-1.0 / 720 + z * (1.0 / 40320 + z * (-1.0 / 3628800)))));
        const double s2 = 2.0 * s * c;
        const double c2 = 1.0 - 2.0 * s * s;
        sine[l] = 2.0 * s2 * c2;
        cosine[l] = 1.0 - 2.0 * s2 * s2;
    }
}

/// Both to 2e-9, for angles up to a million.
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
        const double s = r + r * z * (-1.0 / 6 + z * (1.0 / 120 + z * (-1.0 / 5040 + z * (1.0 / 362880))));
        const double c =
            1.0 + z * (-0.5 + z * (1.0 / 24 + z * (-1.0 / 720 + z * (1.0 / 40320 + z * (-1.0 / 3628800)))));
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
    if (std::fabs(turn) <= 3.141592653589793)
        sineAndCosineOfHalfTurn(angle, sine, cosine);
    else
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

void multiply(const double matrix[3][3], const Lane &in, Lane &out)
{
    for (int l = 0; l < Lanes; ++l) {
        const double x = in.x[0][l];
        const double y = in.x[1][l];
        const double z = in.x[2][l];
        out.x[0][l] = x * matrix[0][0] + y * matrix[1][0] + z * matrix[2][0];
        out.x[1][l] = x * matrix[0][1] + y * matrix[1][1] + z * matrix[2][1];
        out.x[2][l] = x * matrix[0][2] + y * matrix[1][2] + z * matrix[2][2];
    }
}

/// Where the step takes a point.
void applyStep(const Step &step, const Elements &elements, bool normals, const Lane &point, Lane &image)
{
    double share[Lanes];
    Lane off = point;
    if (!normals) {
        for (int k = 0; k < 3; ++k) {
            for (int l = 0; l < Lanes; ++l)
                off.x[k][l] -= step.origin[k];
        }
    }
    Lane y;
    multiply(step.first, off, y);
    if (step.scaleFractions) {
        elements.read(step.scaleFractions, share);
        scaleBy(step, share, normals, y);
    }
    for (int t = 0; t < step.turnCount; ++t) {
        const Step::Turn &turn = step.turns[t];
        elements.read(turn.fractions, share);
        turnAbout(turn.axis, turn.angle, share, y);
        if (turn.isFollowed) {
            off = y;
            multiply(turn.next, off, y);
        }
    }
    image = y;
    if (normals)
        return;
    for (int k = 0; k < 3; ++k) {
        for (int l = 0; l < Lanes; ++l)
            image.x[k][l] += step.moved[k];
    }
    if (!step.translationFractions)
        return;
    elements.read(step.translationFractions, share);
    for (int k = 0; k < 3; ++k) {
        for (int l = 0; l < Lanes; ++l)
            image.x[k][l] += share[l] * step.translation[k];
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
        Lane image;
        applyStep(task.steps[s], elements, task.normals, points[s], image);
        Lane &target = points[task.steps[s].target];
        for (int k = 0; k < 3; ++k) {
            for (int l = 0; l < Lanes; ++l)
                target.x[k][l] += image.x[k][l] - start.x[k][l];
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

/// One map for all, without steps.
void moveAlike(const Task &task)
{
    typedef double Four __attribute__((vector_size(32)));
    typedef float FourFloats __attribute__((vector_size(16)));
    Four rows[4];
    for (int i = 0; i < 4; ++i)
        rows[i] = Four{task.last[i][0], task.last[i][1], task.last[i][2], 0.0};
    if (task.normals)
        rows[3] = Four{};
    for (int i = 0; i < task.count; ++i) {
        const RyVec3 &in = task.in[task.places[i]];
        const Four image = rows[3] + double(in.x) * rows[0] + double(in.y) * rows[1] + double(in.z) * rows[2];
        const FourFloats rounded = __builtin_convertvector(image, FourFloats);
        RyVec3 &out = task.out[task.places[i]];
        out.x = rounded[0];
        out.y = rounded[1];
        out.z = rounded[2];
    }
}

void moveTask(const Task &task)
{
    if (task.stepCount == 0 && task.bulgeCount == 0)
        return moveAlike(task);
    for (int first = 0; first < task.count; first += Lanes)
        moveLanes(task, first);
}

} // namespace
