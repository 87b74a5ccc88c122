#pragma once

#include "rycore/scene/RyNode.h"

#include <vector>

/// A joint of a skeleton with its bone to the end point.
class RyBone : public RyNode
{
    Q_OBJECT
public:
    RyBone();

    /// Of the vertices of `getBoundingBox`, in parameter space of the bone, which has bone axes about the bone's
    /// origin: `orientation^-1 (p - origin) + origin`. The transform is the identity.
    RyOrientedBox3 getOrientedBoundingBox() const override;

    /// How the rest that a bone was read or made with was carried on by poses that became the rest: `map` moved the
    /// vertices that follow this bone alone, figure space to figure space, `turn` its axes. Clips speak of the rest as
    /// it was read, and so must who compares with that.
    struct Carried
    {
        RyAffine map;
        RyQuat turn;
        bool operator==(const Carried &) const = default;
    };
    const Carried &getCarried() const { return m_carried; }
    bool isCarried() const { return !(m_carried == Carried()); }
    /// Once more, behind what there is. Undoable where a hold is open; announces nothing.
    void carry(const Carried &further);
    /// Takes that of a bone of which this one is to be a copy; unrecorded.
    void copyCarried(const RyBone &from) { m_carried = from.m_carried; }

    /// Tells this bone from all others that the process ever had.
    quint64 getSerial() const { return m_serial; }
    /// Serials of the bone of which this one was made with a share of the weights, of the one of which that one was,
    /// and so on; empty for none. A clip of a file that knows only such a bone moves both alike, wherever they hang,
    /// and also when that one is gone before this one is in a file.
    const std::vector<quint64> &getWeightGivers() const { return m_weightGivers; }
    /// Null for none. Undoable where a hold is open; announces nothing.
    void setWeightGiver(const RyBone *giver);

    RyElement *doDuplicateElement(RyElementDuplicateContext *context) override;

protected:
    RyNode *makeSameKind() const override { return new RyBone; }

private:
    struct CarriedValue;
    struct GiversValue;
    Carried m_carried;
    const quint64 m_serial;
    std::vector<quint64> m_weightGivers;
};
