#pragma once

#include "rycore/skin/RySkinKernels.h"

#define RY_ALWAYS_INLINE inline __attribute__((always_inline))

// The loop over the elements of a task for one kind of registers. Included by each file that compiles it for its
// processor; what is here stays local to that file, so that no other one calls what its processor lacks.
namespace {

/// `Registers` says how four floats are read, blended and written: see those of the two files. `Influences` 0: as many
/// as the task says.
template<class Registers, int Influences, class Offset, RySkinKernels::Output Wanted, bool Listed>
struct RySkinLoop
{
    static constexpr int Group = 8;       // elements whose bytes are fetched at once
    static constexpr int FetchAhead = 32; // elements
    static constexpr bool Positions = Wanted != RySkinKernels::Output::Normals;
    static constexpr bool Normals = Wanted != RySkinKernels::Output::Positions;

    // By value: the compiler may keep its members in registers over the writes.
    const RySkinKernels::Task task;
    const Offset *const offsets;
    const int influences = Influences > 0 ? Influences : task.influences;

    RY_ALWAYS_INLINE void run() const
    {
        int element = 0;
        const int last = task.count - 1;
        for (; element + Group <= last; element += Group) {
            if constexpr (!Listed)
                fetch(element + FetchAhead);
            for (int i = 0; i < Group; ++i)
                compute<false>(element + i);
        }
        for (; element < last; ++element)
            compute<false>(element);
        compute<true>(last);
    }

    /// `AtEnd`: nothing behind the element is read or written.
    template<bool AtEnd>
    RY_ALWAYS_INLINE void compute(int element) const
    {
        // Four floats are written where the next element overwrites the fourth.
        constexpr bool Exact = Listed || AtEnd;
        const size_t entry = size_t(element) * size_t(influences);
        const size_t place = placeOf(element);
        typename Registers::Matrix map;
        map.template blend<Influences>(task.deltas, offsets + entry, task.weights + entry, influences);
        if constexpr (Positions)
            Registers::template write<Exact>(task.positions + place,
                                             map.template movedPoint<AtEnd>(task.restPositions + place));
        if constexpr (Normals)
            Registers::template write<Exact>(task.normals + place,
                                             map.template movedDirection<AtEnd>(task.restNormals + place));
    }

    RY_ALWAYS_INLINE size_t placeOf(int element) const
    {
        return Listed ? size_t(task.places[element]) : size_t(task.firstPlace) + size_t(element);
    }

    /// Brings the group from `element` on near; it may lie behind the end.
    RY_ALWAYS_INLINE void fetch(int element) const
    {
        const size_t entry = size_t(element) * size_t(influences);
        const size_t place = size_t(task.firstPlace) + size_t(element);
        fetchLines(offsets + entry, Group * size_t(influences) * sizeof(Offset));
        fetchLines(task.weights + entry, Group * size_t(influences) * sizeof(float));
        if constexpr (Positions)
            fetchLines(task.restPositions + place, Group * sizeof(RyVec3));
        if constexpr (Normals)
            fetchLines(task.restNormals + place, Group * sizeof(RyVec3));
    }

    static RY_ALWAYS_INLINE void fetchLines(const void *from, size_t size)
    {
        for (size_t offset = 0; offset < size; offset += 64)
            __builtin_prefetch(static_cast<const char *>(from) + offset);
    }
};

template<class Registers, int Influences, class Offset, RySkinKernels::Output Wanted>
void blendInfluences(const RySkinKernels::Task &task, const Offset *offsets)
{
    if (task.places)
        RySkinLoop<Registers, Influences, Offset, Wanted, true>{task, offsets}.run();
    else
        RySkinLoop<Registers, Influences, Offset, Wanted, false>{task, offsets}.run();
}

template<class Registers, RySkinKernels::Output Wanted>
void blendOutput(const RySkinKernels::Task &task)
{
    if (task.wideOffsets)
        return blendInfluences<Registers, 0, quint32, Wanted>(task, task.wideOffsets);
    // Normals alone are few.
    if constexpr (Wanted == RySkinKernels::Output::Normals)
        return blendInfluences<Registers, 0, quint16, Wanted>(task, task.offsets);
    switch (task.influences) {
    case 1:
        return blendInfluences<Registers, 1, quint16, Wanted>(task, task.offsets);
    case 2:
        return blendInfluences<Registers, 2, quint16, Wanted>(task, task.offsets);
    case 3:
        return blendInfluences<Registers, 3, quint16, Wanted>(task, task.offsets);
    case 4:
        return blendInfluences<Registers, 4, quint16, Wanted>(task, task.offsets);
    default:
        return blendInfluences<Registers, 0, quint16, Wanted>(task, task.offsets);
    }
}

template<class Registers>
void blendTask(const RySkinKernels::Task &task)
{
    using RySkinKernels::Output;
    if (task.count <= 0)
        return;
    switch (task.output) {
    case Output::Positions:
        return blendOutput<Registers, Output::Positions>(task);
    case Output::Normals:
        return blendOutput<Registers, Output::Normals>(task);
    case Output::Both:
        return blendOutput<Registers, Output::Both>(task);
    }
}

} // namespace
