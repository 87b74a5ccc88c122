#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"

#include <algorithm>
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

    /// A key, and how far the line to the next one is from what it stands for. Of distances here 1 is the most that
    /// may be.
    struct Stop
    {
        float time;
        double miss;
    };
    /// How far the line between two times is off, as some places between them tell.
    using Miss = std::function<double(float from, float to)>;
    /// Adds stops for what lies between two times, the first one and not the second, until lines are near enough to
    /// leave room for what the places did not tell, or more keys no longer help. `room` is left for all stretches of a
    /// curve together: values beyond all measure would take thousands each.
    static void refine(float from, float to, const Miss &miss, std::vector<Stop> &stops, size_t &room);
    /// The same by the distance of the whole line, where it is known to fall with the square of the number of pieces.
    static void divide(float from, float to, double miss, std::vector<Stop> &stops, size_t &room);
    /// Keys that a curve of so many spans may get beside its own; others take far fewer.
    static size_t roomFor(size_t spans) { return (size_t(1) << 15) + 16 * spans; }

    /// The stops that are needed, as few as the first way finds. Those at both sides of a step that can be seen stay:
    /// no line is near them. `distance(from, to, place)`: how far a stop is from the line between two others.
    template<typename Distance>
    static std::vector<size_t> thin(const std::vector<Stop> &stops, const Distance &distance);

private:
    std::vector<float> m_times;
    std::vector<float> m_steps; // key times of stepped curves, rising
    bool m_isStepped = true;
};

template<typename Distance>
std::vector<size_t> RyGltfKeyTimes::thin(const std::vector<Stop> &stops, const Distance &distance)
{
    constexpr size_t mostLeftOut = 64; // in one run, so that long curves cost no more than their length
    std::vector<size_t> kept;
    for (size_t from = 0; from < stops.size();) {
        kept.push_back(from);
        size_t to = from + 1;
        // What lies between two stops is no farther from a line than they, and by what it is off already.
        const auto fits = [&](size_t end) {
            for (size_t place = from + 1; place < end; ++place) {
                const double known = std::max(stops[place - 1].miss, stops[place].miss);
                if (!(known <= 1.0) || !(distance(from, end, place) + known <= 1.0))
                    return false;
            }
            return true;
        };
        while (to + 1 < stops.size() && to - from < mostLeftOut && fits(to + 1))
            ++to;
        from = to;
    }
    return kept;
}
