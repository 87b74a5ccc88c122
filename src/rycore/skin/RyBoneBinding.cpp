#include "rycore/skin/RyBoneBinding.h"

#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyValueChange.h"

#include <algorithm>

/// The bone counts while a step may bring it back.
struct RyBoneBinding::BoneValue : RyValueOf<RyBoneBinding, RyRef<RyBone>>
{
    static RyBone *get(const RyBoneBinding &binding) { return binding.getBone(); }
    static void put(RyBoneBinding &binding, const Value &bone) { binding.applyBone(bone.get()); }
};

/// One of the maps.
struct RyBoneBinding::MapValue : RySlotOf<RyBoneBinding, RyRef<RyWeightMap>, SlotCount>
{
    using RySlotOf::RySlotOf;
    const Value &get(const RyBoneBinding &binding) const { return binding.m_maps[slot]; }
    void put(RyBoneBinding &binding, const Value &map) const { binding.applyMap(slot, map); }
};

/// The bulge binding of an axis.
struct RyBoneBinding::BulgeValue : RySlotOf<RyBoneBinding, RyRef<RyBulgeBinding>, 3>
{
    using RySlotOf::RySlotOf;
    const Value &get(const RyBoneBinding &binding) const { return binding.m_bulges[slot]; }
    void put(RyBoneBinding &binding, const Value &bulge) const { binding.applyBulge(slot, bulge); }
};

RyBoneBinding::RyBoneBinding() = default;

RyBoneBinding::~RyBoneBinding()
{
    for (const RyRef<RyBulgeBinding> &bulge : m_bulges) {
        if (bulge)
            bulge->m_binding = nullptr;
    }
}

void RyBoneBinding::setBone(RyBone *bone)
{
    if (bone == m_bone)
        return;
    RyValueChange<BoneValue>::record(this);
    if (bone && getName().isEmpty())
        setName(bone->getName());
    applyBone(bone);
}

void RyBoneBinding::applyBone(RyBone *bone)
{
    if (m_skin)
        m_skin->dropBone(this);
    m_bone = bone;
    if (m_skin)
        m_skin->indexBone(this);
    touch();
}

RyWeightMap *RyBoneBinding::getLocalWeights(int axis) const
{
    return axis >= 0 && axis < 3 ? m_maps[LocalX + axis].get() : nullptr;
}

void RyBoneBinding::setLocalWeights(RyWeightMap *map, int axis)
{
    if (axis >= 0 && axis < 3)
        setMap(LocalX + axis, map);
}

bool RyBoneBinding::hasLocalWeights() const
{
    return m_maps[LocalX] || m_maps[LocalY] || m_maps[LocalZ];
}

std::vector<RyWeightMap *> RyBoneBinding::getAllWeightMaps() const
{
    std::vector<RyWeightMap *> maps;
    for (const RyRef<RyWeightMap> &map : m_maps) {
        if (map)
            maps.push_back(map.get());
    }
    return maps;
}

void RyBoneBinding::setMap(int slot, RyWeightMap *map)
{
    if (m_maps[slot].get() == map)
        return;
    const RyRef<RyWeightMap> guard(map);
    RyValueChange<MapValue>::record(this, MapValue(slot));
    applyMap(slot, guard);
}

void RyBoneBinding::applyMap(int slot, const RyRef<RyWeightMap> &map)
{
    if (RyWeightMap *old = m_maps[slot].get()) {
        const auto uses =
            std::count_if(m_maps, m_maps + SlotCount, [old](const auto &held) { return held.get() == old; });
        if (uses == 1)
            disconnect(old, &RyWeightMap::weightsChanged, this, &RyBoneBinding::bindingChanged);
    }
    m_maps[slot] = map;
    if (map)
        connect(map.get(), &RyWeightMap::weightsChanged, this, &RyBoneBinding::bindingChanged, Qt::UniqueConnection);
    touch();
}

bool RyBoneBinding::hasBulgeWeights() const
{
    return std::any_of(m_bulges, m_bulges + 3, [](const RyRef<RyBulgeBinding> &bulge) {
        return bulge && (bulge->getLeftWeights() || bulge->getRightWeights());
    });
}

RyBulgeBinding *RyBoneBinding::getBulgeBinding(int axis) const
{
    return axis >= 0 && axis < 3 ? m_bulges[axis].get() : nullptr;
}

void RyBoneBinding::setBulgeBinding(int axis, RyBulgeBinding *bulge)
{
    if (axis < 0 || axis > 2 || m_bulges[axis].get() == bulge || (bulge && bulge->m_binding))
        return;
    const RyRef<RyBulgeBinding> guard(bulge);
    RyValueChange<BulgeValue>::record(this, BulgeValue(axis));
    applyBulge(axis, guard);
}

void RyBoneBinding::applyBulge(int axis, const RyRef<RyBulgeBinding> &bulge)
{
    if (RyBulgeBinding *old = m_bulges[axis].get()) {
        disconnect(old, nullptr, this, nullptr);
        // Within an undo step another binding may have it already.
        if (old->m_binding == this)
            old->m_binding = nullptr;
    }
    m_bulges[axis] = bulge;
    if (bulge) {
        bulge->m_binding = this;
        connect(bulge.get(), &RyBulgeBinding::weightsChanged, this, &RyBoneBinding::bindingChanged);
    }
    touch();
}

RyBoneBinding *RyBoneBinding::copyFor(RyBone *bone, bool withMaps) const
{
    auto *binding = new RyBoneBinding;
    binding->setObjectName(bone ? bone->getName() : objectName());
    binding->m_bone = bone;
    for (int slot = 0; slot < SlotCount && withMaps; ++slot) {
        if (m_maps[slot])
            binding->applyMap(slot, RyRef<RyWeightMap>(m_maps[slot]->copy()));
    }
    for (int axis = 0; axis < 3; ++axis) {
        if (!m_bulges[axis])
            continue;
        binding->applyBulge(axis, RyRef<RyBulgeBinding>(m_bulges[axis]->copy(withMaps)));
        binding->m_bulges[axis]->updatePropertyNames();
    }
    return binding;
}

RyElement *RyBoneBinding::doDuplicateElement(RyElementDuplicateContext *context)
{
    if (!context)
        return nullptr;
    auto *bone = qobject_cast<RyBone *>(context->findNewElement(m_bone));
    RyBoneBinding *binding = copyFor(bone ? bone : m_bone.data(), context->vertexCompatible());
    context->addDuplicate(this, binding);
    for (int axis = 0; axis < 3; ++axis)
        context->addDuplicate(m_bulges[axis].get(), binding->m_bulges[axis].get());
    return binding;
}

void RyBoneBinding::resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context)
{
    const auto *from = qobject_cast<const RyBoneBinding *>(original);
    auto *bone = from ? qobject_cast<RyBone *>(context.findNewElement(from->getBone())) : nullptr;
    if (!bone)
        return;
    setBone(bone);
    setName(bone->getName());
    for (const RyRef<RyBulgeBinding> &bulge : m_bulges) {
        if (bulge)
            bulge->updatePropertyNames();
    }
}

void RyBoneBinding::touch()
{
    ++m_revision;
    emit bindingChanged();
}
