#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <QStringList>

/// One line: kind, name, axis, driver, flags, and current and default of every value.
inline QString legacyDumpOf(const RyLegacyJointParam &param)
{
    QStringList parts{QString::number(int(param.type())), param.getName(), QString::number(param.getAxis()),
                      param.getDriver() ? param.getDriver()->getName() : QStringLiteral("-"),
                      QString::number(param.flags(), 2)};
    const auto add = [&parts](const RyFloatProperty *value) {
        parts << QStringLiteral("%1(%2)").arg(double(value->getValue())).arg(double(value->getDefaultValue()));
    };
    for (const RyFloatProperty *value : param.controllers())
        add(value);
    for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()}) {
        for (const RyFloatProperty *value : sphere->controls())
            add(value);
    }
    return parts.join(' ');
}

inline QString legacyDumpOf(const RyLegacyJoint &joint)
{
    QStringList lines{QStringLiteral("joint %1 of %2")
                          .arg(joint.getName(), joint.getBone() ? joint.getBone()->getName() : QStringLiteral("-"))};
    for (const RyLegacyJointParam *param : joint.params())
        lines << "  " + legacyDumpOf(*param);
    return lines.join('\n');
}

/// All joints of all figures of the scene.
inline QString legacyDump()
{
    QStringList lines;
    for (const RySkeleton *skeleton : ryScene()->getSkeletons()) {
        const RyLegacyBinding *binding = RyLegacyBinding::findBinding(skeleton);
        lines << skeleton->getName() + (binding ? " parametric" : " plain");
        for (const RyLegacyJoint *joint : binding ? binding->joints() : std::vector<RyLegacyJoint *>())
            lines << legacyDumpOf(*joint);
    }
    return lines.join('\n');
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
