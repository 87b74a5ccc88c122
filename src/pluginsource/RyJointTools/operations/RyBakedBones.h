#pragma once

#include "rycore/scene/RyBone.h"

#include <vector>

class RyHeldValues;
class RySkeleton;

/// The bones of a figure with where its pose puts each of them: all is worked out before anything is written.
class RyBakedBones
{
public:
    explicit RyBakedBones(const RySkeleton &figure);

    std::vector<RyBone *> bones() const;
    /// Whether all hang on one another or on the figure.
    bool areConnected() const { return m_areConnected; }
    bool isPosed() const;

    /// Gives the bones their new rest and clears their pose.
    void apply() const;
    /// Adds what their values have to result in then, also where links add to them.
    void hold(RyHeldValues &values) const;

private:
    /// In figure space.
    struct Record
    {
        RyBone *bone;
        RyVec3 origin, endPoint;
        RyQuat orientation;
        RyBone::Carried carried;
    };
    static Record recordOf(RyBone *bone);
    static void shiftLimits(const RyBone &bone);

    std::vector<Record> m_records;
    bool m_areConnected = true;
};
