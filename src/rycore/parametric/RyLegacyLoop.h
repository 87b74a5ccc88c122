#pragma once

#include "rycore/parametric/RyLegacyKernels.h"

#define RY_ALWAYS_INLINE inline __attribute__((always_inline))

// The loop over the elements of a task for one kind of registers, of four doubles. Included by each file that compiles
// it for its processor; what is here stays local to that file. Sums of products of the steps are written by `timesPlus`
// alone, so that no compiler may round them in another way here and there.
namespace {

using RyLegacyKernels::Bulge;
using RyLegacyKernels::Fractions;
using RyLegacyKernels::Lanes;
using RyLegacyKernels::Row;
using RyLegacyKernels::Step;
using RyLegacyKernels::Task;

/// A number of each lane.
template<class Registers>
struct RyLegacyLanes
{
    using Vector = typename Registers::Vector;
    static constexpr int Half = Lanes / 2;
    Vector low, high;

    static RY_ALWAYS_INLINE RyLegacyLanes of(double number)
    {
        const Vector all = Registers::spread(number);
        return {all, all};
    }
    static RY_ALWAYS_INLINE RyLegacyLanes read(const float *from)
    {
        return {Registers::read(from), Registers::read(from + Half)};
    }
    /// Numbers that stand so far behind `from`.
    static RY_ALWAYS_INLINE RyLegacyLanes gather(const float *from, const int *offsets)
    {
        return {Registers::gather(from, offsets), Registers::gather(from, offsets + Half)};
    }
    RY_ALWAYS_INLINE void write(float *to) const
    {
        Registers::write(low, to);
        Registers::write(high, to + Half);
    }
    static RY_ALWAYS_INLINE RyLegacyLanes load(const double *from)
    {
        return {Registers::load(from), Registers::load(from + Half)};
    }
    RY_ALWAYS_INLINE void store(double *to) const
    {
        Registers::store(low, to);
        Registers::store(high, to + Half);
    }
    RY_ALWAYS_INLINE RyLegacyLanes operator*(const RyLegacyLanes &o) const
    {
        return {Registers::times(low, o.low), Registers::times(high, o.high)};
    }
    RY_ALWAYS_INLINE RyLegacyLanes operator+(const RyLegacyLanes &o) const
    {
        return {Registers::plus(low, o.low), Registers::plus(high, o.high)};
    }
    RY_ALWAYS_INLINE RyLegacyLanes operator-(const RyLegacyLanes &o) const
    {
        return {Registers::minus(low, o.low), Registers::minus(high, o.high)};
    }
    /// This times a number, plus another one.
    RY_ALWAYS_INLINE RyLegacyLanes timesPlus(const RyLegacyLanes &by, const RyLegacyLanes &more) const
    {
        return {Registers::timesPlus(low, by.low, more.low), Registers::timesPlus(high, by.high, more.high)};
    }
    /// Another number, less this times one.
    RY_ALWAYS_INLINE RyLegacyLanes timesFrom(const RyLegacyLanes &by, const RyLegacyLanes &whole) const
    {
        return {Registers::timesFrom(low, by.low, whole.low), Registers::timesFrom(high, by.high, whole.high)};
    }
    RY_ALWAYS_INLINE RyLegacyLanes timesPlus(double by, const RyLegacyLanes &more) const
    {
        return timesPlus(of(by), more);
    }
    RY_ALWAYS_INLINE RyLegacyLanes timesFrom(double by, const RyLegacyLanes &whole) const
    {
        return timesFrom(of(by), whole);
    }
    /// 0 where it is below.
    RY_ALWAYS_INLINE RyLegacyLanes positive() const { return {Registers::positive(low), Registers::positive(high)}; }
};

/// `WithPoints`, `WithNormals`: what the task moves.
template<class Registers, bool WithPoints, bool WithNormals>
struct RyLegacyLoop
{
    using Number = RyLegacyLanes<Registers>;
    struct Vectors
    {
        Number x, y, z;

        static RY_ALWAYS_INLINE Vectors of(const double *vector)
        {
            return {Number::of(vector[0]), Number::of(vector[1]), Number::of(vector[2])};
        }
        RY_ALWAYS_INLINE Vectors operator+(const Vectors &o) const { return {x + o.x, y + o.y, z + o.z}; }
        RY_ALWAYS_INLINE Vectors operator-(const Vectors &o) const { return {x - o.x, y - o.y, z - o.z}; }
        RY_ALWAYS_INLINE Vectors timesPlus(const Number &by, const Vectors &more) const
        {
            return {x.timesPlus(by, more.x), y.timesPlus(by, more.y), z.timesPlus(by, more.z)};
        }
        RY_ALWAYS_INLINE Vectors by(const double (*matrix)[3]) const
        {
            return {z.timesPlus(matrix[2][0], y.timesPlus(matrix[1][0], x * Number::of(matrix[0][0]))),
                    z.timesPlus(matrix[2][1], y.timesPlus(matrix[1][1], x * Number::of(matrix[0][1]))),
                    z.timesPlus(matrix[2][2], y.timesPlus(matrix[1][2], x * Number::of(matrix[0][2])))};
        }
        RY_ALWAYS_INLINE void store(double *to) const
        {
            x.store(to);
            y.store(to + Lanes);
            z.store(to + 2 * Lanes);
        }
        static RY_ALWAYS_INLINE Vectors load(const double *from)
        {
            return {Number::load(from), Number::load(from + Lanes), Number::load(from + 2 * Lanes)};
        }
    };
    /// What is moved of a vertex; without points or normals these stay what they are and cost nothing.
    struct Both
    {
        Vectors point, normal;
    };

    const Task task;

    RY_ALWAYS_INLINE void run() const
    {
        for (int first = 0; first < task.count; first += Lanes)
            moveFrom(first);
    }

    RY_ALWAYS_INLINE void moveFrom(int first) const
    {
        const Elements elements(task, first);
        const Both rest{WithPoints ? elements.gather(task.points.in) : Vectors{},
                        WithNormals ? elements.gather(task.normals.in) : Vectors{}};
        Both start = rest;
        if constexpr (WithPoints) {
            for (int b = 0; b < task.bulgeCount; ++b)
                start.point = pushed(task.bulges[b], elements, rest.point, start.point);
        }
        Both image = start;
        for (int s = 0; s < task.stepCount; ++s) {
            const Step &step = task.steps[s];
            image = apply(step, elements, step.isPushed ? load(s) : start);
            if (s + 1 == task.stepCount && step.pushesFirst)
                break;
            if (!step.pushesFirst)
                image = pushedFurther(load(step.target), image, start);
            store(step.target, image);
        }
        if constexpr (WithPoints)
            elements.write(image.point.by(task.last) + Vectors::of(task.last[3]), task.points.out);
        if constexpr (WithNormals)
            elements.write(image.normal.by(task.lastOfNormals), task.normals.out);
    }

private:
    struct Elements
    {
        int count;
        int block;
        const int *places;
        const int *numbers;

        RY_ALWAYS_INLINE Elements(const Task &of, int first)
            : count(of.count - first < Lanes ? of.count - first : Lanes), block((of.firstNumber + first) / Lanes),
              places(of.places + first), numbers(of.numbers ? of.numbers + first : nullptr)
        {}
        RY_ALWAYS_INLINE Number read(const Fractions &fractions) const
        {
            if (!numbers)
                return Number::read(fractions.first + block * fractions.stride);
            int offsets[Lanes];
            for (int l = 0; l < Lanes; ++l) {
                const int number = numbers[l < count ? l : count - 1];
                offsets[l] = number / Lanes * fractions.stride + number % Lanes;
            }
            return Number::gather(fractions.first, offsets);
        }
        RY_ALWAYS_INLINE Vectors gather(const RyVec3 *from) const
        {
            int offsets[Lanes];
            for (int l = 0; l < Lanes; ++l)
                offsets[l] = 3 * places[l < count ? l : count - 1];
            return {Number::gather(&from->x, offsets), Number::gather(&from->y, offsets),
                    Number::gather(&from->z, offsets)};
        }
        RY_ALWAYS_INLINE void write(const Vectors &vectors, RyVec3 *to) const
        {
            alignas(32) float rows[3][Lanes];
            vectors.x.write(rows[0]);
            vectors.y.write(rows[1]);
            vectors.z.write(rows[2]);
            for (int l = 0; l < count; ++l)
                to[places[l]] = {rows[0][l], rows[1][l], rows[2][l]};
        }
    };

    RY_ALWAYS_INLINE Both load(int step) const
    {
        const double *from = task.room + 6 * Lanes * step;
        return {WithPoints ? Vectors::load(from) : Vectors{},
                WithNormals ? Vectors::load(from + 3 * Lanes) : Vectors{}};
    }
    RY_ALWAYS_INLINE void store(int step, const Both &both) const
    {
        double *to = task.room + 6 * Lanes * step;
        if constexpr (WithPoints)
            both.point.store(to);
        if constexpr (WithNormals)
            both.normal.store(to + 3 * Lanes);
    }
    static RY_ALWAYS_INLINE Both pushedFurther(const Both &at, const Both &image, const Both &start)
    {
        return {WithPoints ? at.point + (image.point - start.point) : Vectors{},
                WithNormals ? at.normal + (image.normal - start.normal) : Vectors{}};
    }

    static RY_ALWAYS_INLINE Vectors pushed(const Bulge &bulge, const Elements &elements, const Vectors &rest,
                                           const Vectors &point)
    {
        const Number share = elements.read(bulge.shares);
        const Number by = share.positive().timesPlus(bulge.factor[0], (Number::of(0.0) - share).positive() *
                                                                          Number::of(bulge.factor[1]));
        const Vectors off = rest - Vectors::of(bulge.origin);
        const Number along =
            off.x.timesPlus(bulge.line[0], off.y.timesPlus(bulge.line[1], off.z * Number::of(bulge.line[2])));
        const Vectors away{along.timesFrom(bulge.line[0], off.x), along.timesFrom(bulge.line[1], off.y),
                           along.timesFrom(bulge.line[2], off.z)};
        return away.timesPlus(by, point);
    }

    /// Where the step takes points and normals.
    static RY_ALWAYS_INLINE Both apply(const Step &step, const Elements &elements, const Both &from)
    {
        Both at;
        if constexpr (WithPoints)
            at.point = (from.point - Vectors::of(step.origin)).by(step.first);
        if constexpr (WithNormals)
            at.normal = from.normal.by(step.firstOfNormals);
        if (step.scaleFractions.first)
            scaleBy(step, elements.read(step.scaleFractions), at);
        for (int t = 0; t < step.turnCount; ++t) {
            const Step::Turn &turn = step.turns[t];
            if (turn.angle != 0.0)
                turnAbout(turn.axis, turn.angle, elements.read(turn.fractions), at);
            if (!turn.isFollowed)
                continue;
            if constexpr (WithPoints)
                at.point = at.point.by(turn.next);
            if constexpr (WithNormals)
                at.normal = at.normal.by(turn.next);
        }
        if constexpr (WithPoints) {
            at.point = at.point + Vectors::of(step.moved);
            if (step.translationFractions.first)
                at.point = Vectors::of(step.translation).timesPlus(elements.read(step.translationFractions), at.point);
        }
        return at;
    }

    static void scaleBy(const Step &step, const Number &share, Both &at)
    {
        Number factors[3];
        for (int k = 0; k < 3; ++k)
            factors[k] = share.timesPlus(step.scale[k] - 1.0, Number::of(1.0));
        if constexpr (WithPoints)
            at.point = {at.point.x * factors[0], at.point.y * factors[1], at.point.z * factors[2]};
        if constexpr (WithNormals) {
            double rows[3][Lanes];
            for (int k = 0; k < 3; ++k)
                factors[k].store(rows[k]);
            for (int l = 0; l < Lanes; ++l) {
                double each[3] = {rows[0][l], rows[1][l], rows[2][l]};
                RyLegacyMotion::carryNormals(each);
                for (int k = 0; k < 3; ++k)
                    rows[k][l] = each[k];
            }
            at.normal = {at.normal.x * Number::load(rows[0]), at.normal.y * Number::load(rows[1]),
                         at.normal.z * Number::load(rows[2])};
        }
    }

    static RY_ALWAYS_INLINE void turnAbout(int axis, double turn, const Number &share, Both &at)
    {
        Number sine, cosine;
        sineAndCosine(share, turn, sine, cosine);
        if constexpr (WithPoints)
            turnBy(axis, sine, cosine, at.point);
        if constexpr (WithNormals)
            turnBy(axis, sine, cosine, at.normal);
    }
    static RY_ALWAYS_INLINE void turnBy(int axis, const Number &sine, const Number &cosine, Vectors &at)
    {
        if (axis == 0)
            turnPlane(sine, cosine, at.y, at.z);
        else if (axis == 1)
            turnPlane(sine, cosine, at.z, at.x);
        else
            turnPlane(sine, cosine, at.x, at.y);
    }
    static RY_ALWAYS_INLINE void turnPlane(const Number &sine, const Number &cosine, Number &next, Number &last)
    {
        const Number turned = last.timesFrom(sine, next * cosine);
        last = next.timesPlus(sine, last * cosine);
        next = turned;
    }

    /// Both to 1e-8, for angles up to a million: of a quarter of what is left within a half turn, doubled twice.
    static RY_ALWAYS_INLINE void sineAndCosine(const Number &share, double turn, Number &sine, Number &cosine)
    {
        constexpr double Pi = 3.14159265358979323846;
        Number r = share * Number::of(0.25 * turn);
        if (turn > Pi || turn < -Pi) {
            constexpr double HalfPiHigh = 1.57079632673412561417;
            constexpr double HalfPiLow = 6.07710050650619224932e-11;
            const Number toWhole = Number::of(6755399441055744.0); // adding it rounds to a whole number
            const Number whole = r.timesPlus(2.0 / Pi, toWhole) - toWhole;
            r = whole.timesFrom(HalfPiLow, whole.timesFrom(HalfPiHigh, r));
        }
        const Number one = Number::of(1.0);
        const Number z = r * r;
        const Number fifth = z.timesPlus(1.0 / 362880, Number::of(-1.0 / 5040));
        const Number third = z.timesPlus(z.timesPlus(fifth, Number::of(1.0 / 120)), Number::of(-1.0 / 6));
        const Number s = (r * z).timesPlus(third, r);
        const Number eighth = z.timesPlus(-1.0 / 3628800, Number::of(1.0 / 40320));
        const Number fourth = z.timesPlus(z.timesPlus(eighth, Number::of(-1.0 / 720)), Number::of(1.0 / 24));
        const Number c = z.timesPlus(z.timesPlus(fourth, Number::of(-0.5)), one);
        const Number twice = s + s;
        const Number s2 = twice * c;
        const Number c2 = twice.timesFrom(s, one);
        const Number twice2 = s2 + s2;
        sine = twice2 * c2;
        cosine = twice2.timesFrom(s2, one);
    }
};

/// One map for all, without steps: a few sums in doubles, whose last digits are left to the compiler.
void moveAlike(const Task &task, const Row &row, const double (*map)[3], bool isTranslated)
{
    typedef double Four __attribute__((vector_size(32)));
    typedef float FourFloats __attribute__((vector_size(16)));
    Four rows[4] = {};
    for (int i = 0; i < (isTranslated ? 4 : 3); ++i)
        rows[i] = Four{map[i][0], map[i][1], map[i][2], 0.0};
    for (int i = 0; i < task.count; ++i) {
        const RyVec3 &in = row.in[task.places[i]];
        const Four image = rows[3] + double(in.x) * rows[0] + double(in.y) * rows[1] + double(in.z) * rows[2];
        const FourFloats rounded = __builtin_convertvector(image, FourFloats);
        RyVec3 &out = row.out[task.places[i]];
        out.x = rounded[0];
        out.y = rounded[1];
        out.z = rounded[2];
    }
}

template<class Registers>
void moveTask(const Task &task)
{
    if (task.stepCount == 0 && task.bulgeCount == 0) {
        if (task.points.in)
            moveAlike(task, task.points, task.last, true);
        if (task.normals.in)
            moveAlike(task, task.normals, task.lastOfNormals, false);
    } else if (task.points.in && task.normals.in) {
        RyLegacyLoop<Registers, true, true>{task}.run();
    } else if (task.points.in) {
        RyLegacyLoop<Registers, true, false>{task}.run();
    } else {
        RyLegacyLoop<Registers, false, true>{task}.run();
    }
}

} // namespace
