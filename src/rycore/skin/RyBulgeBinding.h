#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/mesh/RyWeightMap.h"

#include <array>

class RyBoneBinding;
class RyFloatProperty;

/// How a bone bulges when it turns about one of its axes: a map for either side (left and right of the joint), and for
/// either side how much positive and negative turns bulge, in lengths of the bone at a turn of 90 degrees. RySkinBulges
/// tells how they push vertices.
class RyBulgeBinding : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    /// Axis 0 (X), 1 (Y) or 2 (Z).
    explicit RyBulgeBinding(int axis = 0);

    int getAxis() const { return m_axis; }
    /// The binding that has this one, null when none.
    RyBoneBinding *getBoneBinding() const { return m_binding; }

    RyFloatProperty *getPosLeftBulgeController() const { return m_controllers[0]; }
    RyFloatProperty *getNegLeftBulgeController() const { return m_controllers[1]; }
    RyFloatProperty *getPosRightBulgeController() const { return m_controllers[2]; }
    RyFloatProperty *getNegRightBulgeController() const { return m_controllers[3]; }
    /// Those four in this order.
    const std::array<RyFloatProperty *, 4> &controllers() const { return m_controllers; }
    /// The four current values.
    void getBulgeValues(float &posLeft, float &negLeft, float &posRight, float &negRight) const;
    /// Makes these the resulting current values, also where links add to them; defaults stay.
    void adjustBulgeValues(float posLeft, float negLeft, float posRight, float negRight);

    /// May be null. Setting takes ownership and is undoable where a hold is open.
    RyWeightMap *getLeftWeights() const { return m_weights[0].get(); }
    RyWeightMap *getRightWeights() const { return m_weights[1].get(); }
    void setLeftWeights(RyWeightMap *map) { setWeights(0, map); }
    void setRightWeights(RyWeightMap *map) { setWeights(1, map); }

    /// Names the four controllers after the bone, e.g. "hip_bulgeXPosLeft".
    void updatePropertyNames();
    /// A deep copy, in no binding; its maps on demand.
    RyBulgeBinding *copy(bool withMaps = true) const;
    /// Grows when another map is put in; caches compare it, and the revisions of the maps.
    quint64 revision() const { return m_revision; }

    void propertyChanged(RyFloatProperty *property) override;

signals:
    /// Another map, or other weights.
    void weightsChanged();

private:
    friend class RyBoneBinding;
    struct MapValue;
    void setWeights(int side, RyWeightMap *map);
    void applyWeights(int side, const RyRef<RyWeightMap> &map);
    QString controllerName(int index) const;

    int m_axis;
    RyBoneBinding *m_binding = nullptr;
    std::array<RyFloatProperty *, 4> m_controllers = {};
    RyRef<RyWeightMap> m_weights[2];
    quint64 m_revision = 1;
};
