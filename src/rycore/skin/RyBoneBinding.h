#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/skin/RyBulgeBinding.h"

#include <QPointer>

#include <vector>

class RySkinBinding;

/// What one bone of a skin moves: a general map, or three local maps (one per bone axis) and a scale map. Where there
/// is a general map, it alone moves the vertices. Owns its maps; every map may be null. Edits are undoable where a hold
/// is open.
class RyBoneBinding : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyBoneBinding();
    ~RyBoneBinding() override;

    RyBone *getBone() const { return m_bone.data(); }
    /// Also names the binding after the bone while it has no name.
    void setBone(RyBone *bone);
    /// The skin that has this binding, null when none.
    RySkinBinding *getSkin() const { return m_skin; }

    RyWeightMap *getWeights() const { return m_maps[General].get(); }
    void setWeights(RyWeightMap *map) { setMap(General, map); }
    RyWeightMap *getScaleWeights() const { return m_maps[Scale].get(); }
    void setScaleWeights(RyWeightMap *map) { setMap(Scale, map); }
    /// Axis 0 (X), 1 (Y) or 2 (Z); null for any other.
    RyWeightMap *getLocalWeights(int axis) const;
    void setLocalWeights(RyWeightMap *map, int axis);
    bool hasLocalWeights() const;
    /// The maps there are: general, local X, Y, Z, scale. Those of bulges are not among them.
    std::vector<RyWeightMap *> getAllWeightMaps() const;

    /// Whether any bulge binding has a map.
    bool hasBulgeWeights() const;
    /// Null when there is none for that axis.
    RyBulgeBinding *getBulgeBinding(int axis) const;
    /// Takes ownership; null removes.
    void setBulgeBinding(int axis, RyBulgeBinding *bulge);

    /// A deep copy for another bone, with copies of all maps and bulge bindings, in no skin.
    RyBoneBinding *copyFor(RyBone *bone) const { return copyFor(bone, true); }
    /// Bound to the duplicate of the bone where the context has one, else to the same bone; in no skin.
    RyElement *doDuplicateElement(RyElementDuplicateContext *context) override;
    void resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context) override;
    /// Grows when another bone or map is put in; caches compare it, and the revisions of the maps.
    quint64 revision() const { return m_revision; }

signals:
    /// Another bone or map, or other weights.
    void bindingChanged();

private:
    friend class RySkinBinding;
    struct BoneValue;
    struct MapValue;
    struct BulgeValue;
    enum Slot { General = 0, LocalX, LocalY, LocalZ, Scale, SlotCount };
    RyBoneBinding *copyFor(RyBone *bone, bool withMaps) const;
    void setMap(int slot, RyWeightMap *map);
    void applyMap(int slot, const RyRef<RyWeightMap> &map);
    void applyBulge(int axis, const RyRef<RyBulgeBinding> &bulge);
    void applyBone(RyBone *bone);
    void touch();

    QPointer<RyBone> m_bone;
    RySkinBinding *m_skin = nullptr;
    const RyNode *m_indexedBone = nullptr; // by which the skin finds this binding; may have been deleted since
    RyRef<RyWeightMap> m_maps[SlotCount];
    RyRef<RyBulgeBinding> m_bulges[3];
    quint64 m_revision = 1;
};
