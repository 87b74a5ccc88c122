#include "pluginsource/RyJointTools/operations/RyHeldValues.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyBone.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace {

std::vector<RyFloatProperty *> controlsOf(const RyBone &bone)
{
    std::vector<RyFloatProperty *> controls(bone.poseControls().begin(), bone.poseControls().end());
    controls.insert(controls.end(), bone.riggingControls().begin(), bone.riggingControls().end());
    return controls;
}

/// Whether it differs by more than the rounding of a sum.
bool isOther(float a, float b)
{
    return std::abs(a - b) > 1e-6f * std::max({1.0f, std::abs(a), std::abs(b)});
}

/// Limits of a clamped property are made to allow an own share.
void widenLimits(RyFloatProperty &property, float raw)
{
    if (!property.isClamped() || (raw >= property.getMin() && raw <= property.getMax()))
        return;
    if (raw < property.getMin())
        property.setMin(raw);
    else
        property.setMax(raw);
    RyMessageLog::global().info(
        QCoreApplication::translate("RyJEToolAction", "The limits of \"%1\" were widened to allow %2.")
            .arg(property.getFullLabel())
            .arg(double(raw)));
}

} // namespace

void RyHeldValues::addControlledBy(const std::vector<RyBone *> &bones)
{
    std::unordered_set<const RyFloatProperty *> own, known;
    std::vector<RyFloatProperty *> pending;
    for (const RyBone *bone : bones) {
        for (RyFloatProperty *control : controlsOf(*bone)) {
            own.insert(control);
            pending.push_back(control);
        }
    }
    while (!pending.empty()) {
        const RyFloatProperty *controller = pending.back();
        pending.pop_back();
        for (const RyERCLink *link : controller->getControlledLinks()) {
            RyFloatProperty *controlled = link->getControlled();
            if (!controlled || own.count(controlled) || !known.insert(controlled).second)
                continue;
            add(controlled, controlled->getValue());
            pending.push_back(controlled);
        }
    }
}

void RyHeldValues::apply() const
{
    // Each round settles at least those whose controllers are settled.
    bool changed = true;
    for (size_t round = 0; changed && round <= m_values.size(); ++round) {
        changed = false;
        for (const Value &each : m_values) {
            if (!each.property || !isOther(each.property->getValue(), each.value))
                continue;
            const float raw = each.property->getRawValue() + (each.value - each.property->getValue());
            widenLimits(*each.property, raw);
            each.property->setValue(raw);
            changed = true;
        }
    }
}
