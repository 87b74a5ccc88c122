#pragma once

#include "rycore/skin/RyBoneBinding.h"
#include "rycore/undo/RyUndoItem.h"

/// Which bone a binding binds.
class RyBindingBoneChange : public RyUndoItem
{
public:
    static constexpr quintptr Aspect = 100;
    explicit RyBindingBoneChange(RyBoneBinding *binding)
        : m_binding(binding), m_key(binding), m_bone(binding->getBone())
    {}
    void swap() override
    {
        if (!m_binding)
            return;
        const RyRef<RyBone> now(m_binding->getBone());
        m_binding->applyBone(m_bone.get());
        m_bone = now;
    }
    RyUndoKey key() const override { return {m_key, Aspect}; }
    bool isAlive() const override { return !m_binding.isNull(); }

private:
    QPointer<RyBoneBinding> m_binding;
    const void *m_key;
    RyRef<RyBone> m_bone;
};

/// One map of a binding.
class RyBindingMapChange : public RyUndoItem
{
public:
    static constexpr quintptr FirstAspect = 101;
    RyBindingMapChange(RyBoneBinding *binding, int slot)
        : m_binding(binding), m_key(binding), m_slot(slot), m_map(binding->m_maps[slot])
    {}
    void swap() override
    {
        if (!m_binding)
            return;
        const RyRef<RyWeightMap> now = m_binding->m_maps[m_slot];
        m_binding->applyMap(m_slot, m_map);
        m_map = now;
    }
    RyUndoKey key() const override { return {m_key, FirstAspect + quintptr(m_slot)}; }
    bool isAlive() const override { return !m_binding.isNull(); }

private:
    QPointer<RyBoneBinding> m_binding;
    const void *m_key;
    int m_slot;
    RyRef<RyWeightMap> m_map;
};

/// One bulge binding of a binding.
class RyBindingBulgeChange : public RyUndoItem
{
public:
    static constexpr quintptr FirstAspect = 111;
    RyBindingBulgeChange(RyBoneBinding *binding, int axis)
        : m_binding(binding), m_key(binding), m_axis(axis), m_bulge(binding->m_bulges[axis])
    {}
    void swap() override
    {
        if (!m_binding)
            return;
        const RyRef<RyBulgeBinding> now = m_binding->m_bulges[m_axis];
        m_binding->applyBulge(m_axis, m_bulge);
        m_bulge = now;
    }
    RyUndoKey key() const override { return {m_key, FirstAspect + quintptr(m_axis)}; }
    bool isAlive() const override { return !m_binding.isNull(); }

private:
    QPointer<RyBoneBinding> m_binding;
    const void *m_key;
    int m_axis;
    RyRef<RyBulgeBinding> m_bulge;
};
