#include "rycore/parametric/RyLegacyJointParam.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/undo/RyValueChange.h"

#include <algorithm>
#include <utility>

/// Axis and flags.
struct RyLegacyJointParam::StateValue : RyValueOf<RyLegacyJointParam, State>
{
    static State get(const RyLegacyJointParam &param) { return param.m_state; }
    static void put(RyLegacyJointParam &param, const State &state) { param.applyState(state); }
};

/// The driver counts while a step may bring it back.
struct RyLegacyJointParam::DriverValue : RyValueOf<RyLegacyJointParam, RyRef<RyBone>>
{
    static RyBone *get(const RyLegacyJointParam &param) { return param.getDriver(); }
    static void put(RyLegacyJointParam &param, const Value &driver) { param.applyDriver(driver.get()); }
};

/// What an edit may change, from before.
struct RyLegacyJointParam::Snapshot
{
    State state;
    std::vector<std::pair<float, float>> values; // raw and default
};

RyLegacyJointParam::RyLegacyJointParam(const QString &name, int axis, RyBone *driver, unsigned flags)
    : m_state{axis, flags}, m_driver(driver),
      m_dynamic(std::make_unique<RyLegacyJointSphere>(this, QStringLiteral("dynamic"), 1.0f)),
      m_static(std::make_unique<RyLegacyJointSphere>(this, QStringLiteral("static"), 1.0f))
{
    setObjectName(name);
}

RyLegacyJointParam::~RyLegacyJointParam() = default;

RyFloatProperty *RyLegacyJointParam::addController(const QString &group, const QString &name, const QString &label,
                                                   float value, float limit)
{
    RyPropertyGroup *root = createPublicGroups(QStringLiteral("Parameter"));
    RyPropertyGroup *place = root->getFirstChild();
    while (place && place->getName() != group)
        place = place->getNextSibling();
    auto property = std::make_unique<RyFloatProperty>(this, name, value);
    property->setLabel(label);
    property->setMin(-limit);
    property->setMax(limit);
    m_controllers.push_back((place ? place : root->addChild(group))->addProperty(std::move(property)));
    return m_controllers.back();
}

void RyLegacyJointParam::setAxis(int axis)
{
    State state = m_state;
    state.axis = axis;
    setState(state);
}

void RyLegacyJointParam::setFlag(Flag flag, bool on)
{
    setFlags(on ? m_state.flags | flag : m_state.flags & ~unsigned(flag));
}

void RyLegacyJointParam::setFlags(unsigned flags)
{
    State state = m_state;
    state.flags = flags;
    setState(state);
}

void RyLegacyJointParam::setState(const State &state)
{
    const int last = type() == Curve ? 5 : 2;
    if (state == m_state || state.axis < 0 || state.axis > last)
        return;
    RyValueChange<StateValue>::record(this);
    applyState(state);
}

void RyLegacyJointParam::applyState(const State &state)
{
    m_state = state;
    valuesChanged();
}

void RyLegacyJointParam::setDriver(RyBone *driver)
{
    if (driver == m_driver)
        return;
    RyValueChange<DriverValue>::record(this);
    applyDriver(driver);
}

void RyLegacyJointParam::applyDriver(RyBone *driver)
{
    m_driver = driver;
    valuesChanged();
}

void RyLegacyJointParam::setDynamicMatrix(const RyMatrix4 &matrix)
{
    beginEdit();
    m_dynamic->setMatrix(matrix, false);
    finishEdit();
}

void RyLegacyJointParam::setStaticMatrix(const RyMatrix4 &matrix)
{
    beginEdit();
    m_static->setMatrix(matrix, false);
    finishEdit();
}

void RyLegacyJointParam::setMatrices(const RyMatrix4 &dynamic, const RyMatrix4 &staticMatrix, bool asDefault)
{
    beginEdit();
    m_dynamic->setMatrix(dynamic, asDefault);
    m_static->setMatrix(staticMatrix, asDefault);
    finishEdit();
}

RyWeightMap *RyLegacyJointParam::getWeights(const RySkeleton *skeleton)
{
    RyLegacyBinding *binding = m_joint ? m_joint->getBinding() : nullptr;
    m_weights = RyRef<RyWeightMap>(binding ? binding->makeWeights(*this, skeleton) : nullptr);
    return m_weights.get();
}

RyLegacyJointParam *RyLegacyJointParam::findPartner() const
{
    if (!m_joint || !m_driver || !m_joint->getBone())
        return nullptr;
    const RyBone *bone = m_joint->getBone();
    auto *parent = qobject_cast<RyBone *>(m_driver->getNodeParent());
    if (type() == SmoothScale) {
        // The two bones of the joint: each has the parameter that the other one drives.
        const RyLegacyJoint *other = RyLegacyJoint::findJoint(m_driver);
        return other && other != m_joint ? other->findParam(SmoothScale, bone, -1) : nullptr;
    }
    const RyLegacyJoint *other = RyLegacyJoint::findJoint(bone == m_driver ? parent : m_driver.data());
    return other && other != m_joint ? other->findParam(type(), m_driver, m_state.axis) : nullptr;
}

std::vector<RyFloatProperty *> RyLegacyJointParam::allControllers() const
{
    std::vector<RyFloatProperty *> all = m_controllers;
    for (const RyLegacyJointSphere *sphere : {m_dynamic.get(), m_static.get()})
        all.insert(all.end(), sphere->controls().begin(), sphere->controls().end());
    return all;
}

void RyLegacyJointParam::copyValuesFrom(const RyLegacyJointParam &other)
{
    if (other.type() != type() || &other == this)
        return;
    beginEdit();
    setState(other.m_state);
    const std::vector<RyFloatProperty *> to = allControllers();
    const std::vector<RyFloatProperty *> from = other.allControllers();
    for (size_t i = 0; i < to.size(); ++i)
        to[i]->copyFrom(*from[i]);
    finishEdit();
}

RyElement *RyLegacyJointParam::doDuplicateElement(RyElementDuplicateContext *context)
{
    if (!context)
        return nullptr;
    RyLegacyJointParam *param = copy();
    if (hasOwnLabel())
        param->setLabel(getLabel());
    context->addDuplicate(this, param);
    context->addDuplicate(m_dynamic.get(), param->m_dynamic.get());
    context->addDuplicate(m_static.get(), param->m_static.get());
    return param;
}

void RyLegacyJointParam::resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context)
{
    const auto *from = qobject_cast<const RyLegacyJointParam *>(original);
    if (auto *driver = from ? qobject_cast<RyBone *>(context.findNewElement(from->getDriver())) : nullptr)
        setDriver(driver);
}

void RyLegacyJointParam::propertyChanged(RyFloatProperty *)
{
    valuesChanged();
}

void RyLegacyJointParam::valuesChanged()
{
    ++m_revision;
    if (editLevel() == 0) {
        emit paramChanged();
        return;
    }
    m_touched = true;
    // Announced at the end, but drawn meanwhile: a drag is one edit.
    if (RyLegacyBinding *binding = m_joint ? m_joint->getBinding() : nullptr)
        emit binding->modifierChanging();
}

void RyLegacyJointParam::editBegun()
{
    m_touched = false;
    m_snapshot = std::make_unique<Snapshot>();
    m_snapshot->state = m_state;
    for (const RyFloatProperty *property : allControllers())
        m_snapshot->values.emplace_back(property->getRawValue(), property->getDefaultValue());
    RyLegacyJointParam *partner = m_isLed ? nullptr : findPartner();
    if (!partner || partner->editLevel() > 0)
        return;
    m_led = partner;
    partner->m_isLed = true;
    partner->beginEdit();
}

void RyLegacyJointParam::editFinished()
{
    const RyRef<RyLegacyBinding> binding(m_joint ? m_joint->getBinding() : nullptr);
    if (binding)
        binding->beginEdit();
    m_snapshot.reset();
    m_isLed = false;
    if (RyLegacyJointParam *partner = std::exchange(m_led, nullptr))
        partner->finishEdit();
    if (std::exchange(m_touched, false))
        emit paramChanged();
    if (binding)
        binding->finishEdit();
}

void RyLegacyJointParam::editCancelled()
{
    const std::unique_ptr<Snapshot> before = std::move(m_snapshot);
    const RyRef<RyLegacyBinding> binding(m_joint ? m_joint->getBinding() : nullptr);
    if (binding)
        binding->beginEdit();
    if (RyLegacyJointParam *partner = std::exchange(m_led, nullptr))
        partner->cancelEdit();
    m_isLed = false;
    if (before)
        restore(*before);
    if (binding)
        binding->finishEdit();
}

void RyLegacyJointParam::restore(const Snapshot &before)
{
    // The level is 0 by now: one more, without the partner, makes the announcement a single one.
    const bool touched = m_touched;
    m_isLed = true;
    beginEdit();
    m_touched = touched;
    setState(before.state);
    const std::vector<RyFloatProperty *> all = allControllers();
    for (size_t i = 0; i < all.size(); ++i) {
        all[i]->setDefaultValue(before.values[i].second);
        all[i]->setValue(before.values[i].first);
    }
    finishEdit();
}
