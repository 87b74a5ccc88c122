#pragma once

#include "rycore/io/gltf/clips/RyGltfKeyTimes.h"

class RyGltfArc;

/// Makes the keys of a translation that follows from several curves.
class RyGltfCurveFit
{
public:
    /// `tolerance`: how far the curve may be off between its keys; `spans`: how many will be added.
    RyGltfCurveFit(RyGltfCurve::Kind kind, double tolerance, size_t spans);

    /// Where the curve has to be at a time of a span; it must be smooth there.
    using Place = std::function<Eigen::Vector3d(double time)>;
    /// The next span; `arc`: what it is known to be, of a curve that is linear between its keys.
    void add(const RyGltfKeyTimes::Span &span, const Place &place, const RyGltfArc *arc);
    std::shared_ptr<const RyGltfCurve> take();

private:
    void findStops(const RyGltfKeyTimes::Span &span, const Place &place, const RyGltfArc *arc);
    double missOf(const Place &place, float from, float to) const;
    struct Stretch // between two keys
    {
        double span = 0.0;
        Eigen::Vector3d from, to;
        Eigen::Vector3d leaving, arriving; // of a cubic spline
    };
    Eigen::Vector3d between(const Stretch &stretch, double share) const;
    void append(const Eigen::Vector3d &numbers);
    void thin();

    double m_tolerance;
    size_t m_room; // see RyGltfKeyTimes::refine
    std::shared_ptr<RyGltfCurve> m_curve = std::make_shared<RyGltfCurve>();
    std::vector<RyGltfKeyTimes::Stop> m_stops;            // of its keys
    Eigen::Vector3d m_arriving = Eigen::Vector3d::Zero(); // tangent at the end of the span before
};
