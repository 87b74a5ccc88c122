#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"

#include <functional>

/// Where something that follows from several curves needs keys.
class RyGltfKeyTimes
{
public:
    void add(const RyGltfMotion &motion);
    void add(const RyGltfCurve &curve);

    /// All key times of the curves, rising.
    const std::vector<float> &times() const { return m_times; }
    /// Whether nothing changes but in steps.
    bool isStepped() const { return m_isStepped; }
    /// What lies between two key times, and the last key by itself.
    struct Span
    {
        float from;
        float to;        ///< where it ends: at the next key, or just before it when something makes a step there
        float next;      ///< the next key; the same as `from` at the last
        bool endsInStep; ///< its end needs a key of its own
    };
    std::vector<Span> spans() const;

    /// The error that may be is spent twice: so many keys are taken that lines between them come this near, and then
    /// those left out that are this near to the line between others.
    static constexpr double TakingShare = 0.25, ThinningShare = 0.75;

    /// How much too far the line between two keys is from what it stands for: 1 is the most that may be.
    using Excess = std::function<double(float from, float to)>;
    /// Adds times between two, neither of which is among them, until no line is too far, or where more keys no longer
    /// help. `room` is left for all stretches of a curve together: values beyond all measure would take thousands each.
    static void refine(float from, float to, const Excess &excess, std::vector<float> &times, size_t &room);
    /// Keys that a curve of so many spans may get beside its own; others take far fewer.
    static size_t roomFor(size_t spans) { return (size_t(1) << 15) + 16 * spans; }

    /// Whether what stands at a place of a list of keys is near the line between two others.
    using IsNear = std::function<bool(size_t from, size_t to, size_t place)>;
    /// The keys of so many that are needed, as few as the first way finds. Those at both sides of a step that can be
    /// seen stay: no line is near them.
    static std::vector<size_t> thin(size_t count, const IsNear &isNear);

private:
    std::vector<float> m_times;
    std::vector<float> m_steps; // key times of stepped curves, rising
    bool m_isStepped = true;
};
