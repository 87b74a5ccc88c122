#pragma once

#include <QString>

#include <array>

class RyNode;

/// The numbers of a node as they were when it was read; what differs from them was edited.
struct RyNodeValues
{
    std::array<float, 9> rigging{};
    std::array<float, 9> riggingDefaults{};
    std::array<float, 10> pose{};
    int rotationOrder = 0;
    bool inheritScale = true;
    QString name;
    QString label;

    static RyNodeValues of(const RyNode &node);
    bool sameOrigin(const RyNodeValues &o) const;
    bool sameOrientation(const RyNodeValues &o) const;
    /// The numbers of the pose alone; what they do hangs on rigging and order as well.
    bool samePoseControls(const RyNodeValues &o) const { return pose == o.pose; }
    bool samePoseButForOrigin(const RyNodeValues &o) const;
    bool samePose(const RyNodeValues &o) const;
    bool operator==(const RyNodeValues &) const = default;
};
