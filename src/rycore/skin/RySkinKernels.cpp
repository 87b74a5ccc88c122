#include "rycore/skin/RySkinKernels.h"

#include "rycore/skin/RySkinLoop.h"

namespace {

/// Four floats as every processor has them in one way or another.
struct PlainRegisters
{
    using Vector = float __attribute__((vector_size(16)));
    using Places = int __attribute__((vector_size(16)));
    using Unaligned = float __attribute__((vector_size(16), aligned(4), may_alias));

    /// As integers: that is one instruction.
    template<int Place>
    static RY_ALWAYS_INLINE Vector spread(Vector v)
    {
        return reinterpret_cast<Vector>(
            __builtin_shuffle(reinterpret_cast<Places>(v), Places{Place, Place, Place, Place}));
    }

    struct Matrix
    {
        // The translation stands behind the rows.
        Vector x, y, z;

        template<int Influences, class Offset>
        RY_ALWAYS_INLINE void blend(const RySkinKernels::Delta *deltas, const Offset *offsets, const float *weights,
                                    int influences)
        {
            if constexpr (Influences == 4) {
                // The common case reads all its weights at once.
                const Vector all = *reinterpret_cast<const Unaligned *>(weights);
                start(deltas, offsets[0], spread<0>(all));
                add(deltas, offsets[1], spread<1>(all));
                add(deltas, offsets[2], spread<2>(all));
                add(deltas, offsets[3], spread<3>(all));
            } else {
                start(deltas, offsets[0], Vector{weights[0], weights[0], weights[0], weights[0]});
#pragma GCC unroll 4
                for (int k = 1; k < (Influences > 0 ? Influences : influences); ++k)
                    add(deltas, offsets[k], Vector{weights[k], weights[k], weights[k], weights[k]});
            }
        }
        static RY_ALWAYS_INLINE const Vector *rowsAt(const RySkinKernels::Delta *deltas, size_t offset)
        {
            return reinterpret_cast<const Vector *>(reinterpret_cast<const char *>(deltas) + 8 * offset);
        }
        RY_ALWAYS_INLINE void start(const RySkinKernels::Delta *deltas, size_t offset, Vector weight)
        {
            const Vector *rows = rowsAt(deltas, offset);
            x = weight * rows[0];
            y = weight * rows[1];
            z = weight * rows[2];
        }
        RY_ALWAYS_INLINE void add(const RySkinKernels::Delta *deltas, size_t offset, Vector weight)
        {
            const Vector *rows = rowsAt(deltas, offset);
            x += weight * rows[0];
            y += weight * rows[1];
            z += weight * rows[2];
        }

        template<bool Exact>
        RY_ALWAYS_INLINE Vector movedPoint(const RyVec3 *from) const
        {
            const Vector xy = __builtin_shuffle(x, y, Places{3, 3, 7, 7});
            return movedDirection<Exact>(from) + __builtin_shuffle(xy, z, Places{0, 2, 7, 7});
        }
        template<bool Exact>
        RY_ALWAYS_INLINE Vector movedDirection(const RyVec3 *from) const
        {
            const Vector v = read<Exact>(from);
            return (v + spread<0>(v) * x) + (spread<1>(v) * y + spread<2>(v) * z);
        }
    };

    template<bool Exact>
    static RY_ALWAYS_INLINE Vector read(const RyVec3 *from)
    {
        if constexpr (Exact)
            return Vector{from->x, from->y, from->z, 0.0f};
        else
            return *reinterpret_cast<const Unaligned *>(from);
    }

    template<bool Exact>
    static RY_ALWAYS_INLINE void write(RyVec3 *to, Vector v)
    {
        if constexpr (Exact)
            *to = RyVec3(v[0], v[1], v[2]);
        else
            *reinterpret_cast<Unaligned *>(to) = v;
    }
};

} // namespace

void RySkinKernels::blendPlain(const Task &task)
{
    blendTask<PlainRegisters>(task);
}
