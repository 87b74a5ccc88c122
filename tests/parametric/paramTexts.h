#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"

#include <QStringList>

/// All that a parameter keeps, as one text.
inline QString ryParamText(const RyLegacyJointParam &param)
{
    QString text = QString("%1 %2 axis %3 flags %4 driver %5:")
                       .arg(param.type())
                       .arg(param.getName())
                       .arg(param.getAxis())
                       .arg(param.flags())
                       .arg(param.getDriver() ? param.getDriver()->getName() : QString("none"));
    const auto add = [&text](const RyFloatProperty *property) {
        text += QString(" %1=%2/%3")
                    .arg(property->getName())
                    .arg(double(property->getRawValue()), 0, 'g', 9)
                    .arg(double(property->getDefaultValue()), 0, 'g', 9);
    };
    for (const RyFloatProperty *property : param.controllers())
        add(property);
    for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()}) {
        for (const RyFloatProperty *property : sphere->controls())
            add(property);
    }
    return text;
}

/// The same of all parameters of a joint, in their order.
inline QString ryParamText(const RyLegacyJoint &joint)
{
    QString text = joint.getName() + " of " + (joint.getBone() ? joint.getBone()->getName() : QString("none")) + '\n';
    for (const RyLegacyJointParam *param : joint.params())
        text += "  " + ryParamText(*param) + '\n';
    return text;
}

/// The same of all joints, in their order.
inline QString ryBindingText(const RyLegacyBinding &binding)
{
    QString text;
    for (const RyLegacyJoint *joint : binding.joints())
        text += ryParamText(*joint);
    return text;
}

/// "name axis driver" of each parameter, in order.
inline QStringList legacyParamsOf(const RyLegacyJoint *joint)
{
    QStringList list;
    for (const RyLegacyJointParam *param : joint ? joint->params() : std::vector<RyLegacyJointParam *>()) {
        list << QStringLiteral("%1 %2 %3")
                    .arg(param->getName(), QStringList{"X", "Y", "Z", "XY", "XZ", "YZ"}[param->getAxis()],
                         param->getDriver() ? param->getDriver()->getName() : QStringLiteral("-"));
    }
    return list;
}
