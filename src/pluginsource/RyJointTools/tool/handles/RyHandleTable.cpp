#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"

#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

#include <QCoreApplication>

#include <algorithm>

// clang-format off
static constexpr RyHandle allHandles[] = {
    {HandleId::CenterPoint, RyHandle::Point, RyHandle::Origin, -1, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "center point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate the center point of this bone.")},
    {HandleId::EndPoint, RyHandle::Point, RyHandle::EndPoint, -1, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "end point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate the end point of this bone.")},
    {HandleId::DynamicRingX, RyHandle::Ring, RyHandle::DynamicSphere, 0, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Rotate Dynamic Sphere on the X axis")},
    {HandleId::DynamicRingY, RyHandle::Ring, RyHandle::DynamicSphere, 1, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Rotate Dynamic Sphere on the Y axis")},
    {HandleId::DynamicRingZ, RyHandle::Ring, RyHandle::DynamicSphere, 2, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Rotate Dynamic Sphere on the Z axis")},
    {HandleId::StaticRingX, RyHandle::Ring, RyHandle::StaticSphere, 0, RyHandle::NoValue, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Rotate Static Sphere on the X axis")},
    {HandleId::StaticRingY, RyHandle::Ring, RyHandle::StaticSphere, 1, RyHandle::NoValue, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Rotate Static Sphere on the Y axis")},
    {HandleId::StaticRingZ, RyHandle::Ring, RyHandle::StaticSphere, 2, RyHandle::NoValue, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Rotate Static Sphere on the Z axis")},
    {HandleId::DynamicTranslateX, RyHandle::AxisArrow, RyHandle::DynamicSphere, 0, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Dynamic Sphere on the X axis.")},
    {HandleId::DynamicTranslateY, RyHandle::AxisArrow, RyHandle::DynamicSphere, 1, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Dynamic Sphere on the Y axis.")},
    {HandleId::DynamicTranslateZ, RyHandle::AxisArrow, RyHandle::DynamicSphere, 2, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Dynamic Sphere on the Z axis.")},
    {HandleId::StaticTranslateX, RyHandle::AxisArrow, RyHandle::StaticSphere, 0, RyHandle::NoValue, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Static Sphere on the X axis.")},
    {HandleId::StaticTranslateY, RyHandle::AxisArrow, RyHandle::StaticSphere, 1, RyHandle::NoValue, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Static Sphere on the Y axis.")},
    {HandleId::StaticTranslateZ, RyHandle::AxisArrow, RyHandle::StaticSphere, 2, RyHandle::NoValue, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Static Sphere on the Z axis.")},
    {HandleId::DynamicScaleXPlus, RyHandle::ScaleCube, RyHandle::DynamicSphere, 0, RyHandle::Plus, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Dynamic Sphere from this point")},
    {HandleId::DynamicScaleYPlus, RyHandle::ScaleCube, RyHandle::DynamicSphere, 1, RyHandle::Plus, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Dynamic Sphere from this point")},
    {HandleId::DynamicScaleZPlus, RyHandle::ScaleCube, RyHandle::DynamicSphere, 2, RyHandle::Plus, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Dynamic Sphere from this point")},
    {HandleId::DynamicScaleXMinus, RyHandle::ScaleCube, RyHandle::DynamicSphere, 0, RyHandle::Minus, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Dynamic Sphere from this point")},
    {HandleId::DynamicScaleYMinus, RyHandle::ScaleCube, RyHandle::DynamicSphere, 1, RyHandle::Minus, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Dynamic Sphere from this point")},
    {HandleId::DynamicScaleZMinus, RyHandle::ScaleCube, RyHandle::DynamicSphere, 2, RyHandle::Minus, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Dynamic Sphere from this point")},
    {HandleId::StaticScaleXPlus, RyHandle::ScaleCube, RyHandle::StaticSphere, 0, RyHandle::Plus, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Static Sphere from this point")},
    {HandleId::StaticScaleYPlus, RyHandle::ScaleCube, RyHandle::StaticSphere, 1, RyHandle::Plus, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Static Sphere from this point")},
    {HandleId::StaticScaleZPlus, RyHandle::ScaleCube, RyHandle::StaticSphere, 2, RyHandle::Plus, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Static Sphere from this point")},
    {HandleId::StaticScaleXMinus, RyHandle::ScaleCube, RyHandle::StaticSphere, 0, RyHandle::Minus, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Static Sphere from this point")},
    {HandleId::StaticScaleYMinus, RyHandle::ScaleCube, RyHandle::StaticSphere, 1, RyHandle::Minus, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Static Sphere from this point")},
    {HandleId::StaticScaleZMinus, RyHandle::ScaleCube, RyHandle::StaticSphere, 2, RyHandle::Minus, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Scale Static Sphere from this point")},
    {HandleId::StaticAngleA, RyHandle::AngleRay, RyHandle::BendAngle, -1, RyHandle::AngleA, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static angle A"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Static A Angle")},
    {HandleId::DynamicAngleB, RyHandle::AngleRay, RyHandle::BendAngle, -1, RyHandle::AngleB, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic angle B"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Dynamic B Angle")},
    {HandleId::DynamicAngleC, RyHandle::AngleRay, RyHandle::BendAngle, -1, RyHandle::AngleC, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic angle C"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Dynamic C Angle")},
    {HandleId::StaticAngleD, RyHandle::AngleRay, RyHandle::BendAngle, -1, RyHandle::AngleD, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static angle D"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Static D Angle")},
    {HandleId::TwistStart, RyHandle::Zone, RyHandle::TwistZone, -1, RyHandle::Start, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "twist start"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Twist start on its axis")},
    {HandleId::TwistEnd, RyHandle::Zone, RyHandle::TwistZone, -1, RyHandle::End, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "twist end"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Twist end on its axis")},
    {HandleId::HighZoneStart, RyHandle::Zone, RyHandle::HighZone, -1, RyHandle::Start, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "high start"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate High start of the smooth zone on its axis")},
    {HandleId::HighZoneEnd, RyHandle::Zone, RyHandle::HighZone, -1, RyHandle::End, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "high end"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate High end of the smooth zone on its axis")},
    {HandleId::LowZoneEnd, RyHandle::Zone, RyHandle::LowZone, -1, RyHandle::End, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "low end"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Low end of the smooth zone on its axis")},
    {HandleId::LowZoneStart, RyHandle::Zone, RyHandle::LowZone, -1, RyHandle::Start, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "low start"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Low start of the smooth zone on its axis")},
    {HandleId::StaticScale, RyHandle::GeneralCube, RyHandle::StaticSphere, -1, RyHandle::NoValue, RyHandle::StaticColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "static sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "General Scale for the Static Sphere.")},
    {HandleId::DynamicScale, RyHandle::GeneralCube, RyHandle::DynamicSphere, -1, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "dynamic sphere"),
     QT_TRANSLATE_NOOP("RyHandleTable", "General Scale for the Dynamic Sphere.")},
    {HandleId::OriginX, RyHandle::AxisArrow, RyHandle::Origin, 0, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "center point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Origin on the X axis.")},
    {HandleId::OriginY, RyHandle::AxisArrow, RyHandle::Origin, 1, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "center point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Origin on the Y axis.")},
    {HandleId::OriginZ, RyHandle::AxisArrow, RyHandle::Origin, 2, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "center point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate Origin on the Z axis.")},
    {HandleId::EndPointX, RyHandle::AxisArrow, RyHandle::EndPoint, 0, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "end point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate End Point on the X axis.")},
    {HandleId::EndPointY, RyHandle::AxisArrow, RyHandle::EndPoint, 1, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "end point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate End Point on the Y axis.")},
    {HandleId::EndPointZ, RyHandle::AxisArrow, RyHandle::EndPoint, 2, RyHandle::NoValue, RyHandle::DynamicColor,
     QT_TRANSLATE_NOOP("RyHandleTable", "end point"),
     QT_TRANSLATE_NOOP("RyHandleTable", "Translate End Point on the Z axis.")},
};
// clang-format on

static_assert(std::is_sorted(std::begin(allHandles), std::end(allHandles),
                             [](const RyHandle &a, const RyHandle &b) { return a.id < b.id; }));

static QString translated(const char *text)
{
    return QCoreApplication::translate("RyHandleTable", text);
}

static QString actionText(const RyHandle &handle)
{
    const bool isJointPoint = handle.target == RyHandle::Origin || handle.target == RyHandle::EndPoint;
    switch (handle.kind) {
    case RyHandle::Point:
        return translated(
            QT_TRANSLATE_NOOP("RyHandleTable", "drag to move in the view plane, Ctrl keeps the bone's length"));
    case RyHandle::AxisArrow:
        return isJointPoint ? translated(QT_TRANSLATE_NOOP("RyHandleTable",
                                                           "drag to move along %1, Ctrl keeps the bone's length"))
                            : translated(QT_TRANSLATE_NOOP("RyHandleTable", "drag to move along %1"));
    case RyHandle::Ring:
        return translated(QT_TRANSLATE_NOOP("RyHandleTable", "drag to turn about %1"));
    case RyHandle::ScaleCube:
        return translated(QT_TRANSLATE_NOOP("RyHandleTable", "drag to scale along %1"));
    case RyHandle::GeneralCube:
        return translated(QT_TRANSLATE_NOOP("RyHandleTable", "drag to scale evenly"));
    case RyHandle::AngleRay:
        return translated(QT_TRANSLATE_NOOP("RyHandleTable", "drag to set the angle"));
    case RyHandle::Zone:
        return translated(QT_TRANSLATE_NOOP("RyHandleTable", "drag to move along the joint's axis"));
    }
    return {};
}

std::span<const RyHandle> RyHandleTable::handles()
{
    return allHandles;
}

const RyHandle *RyHandleTable::find(int id)
{
    const RyHandle *end = std::end(allHandles);
    const RyHandle *found = std::lower_bound(std::begin(allHandles), end, id,
                                             [](const RyHandle &handle, int value) { return handle.id < value; });
    return found != end && found->id == id ? found : nullptr;
}

std::vector<const RyHandle *> RyHandleTable::handlesOf(RyHandle::Target target, RyHandle::Kind kind)
{
    std::vector<const RyHandle *> found;
    for (const RyHandle &handle : allHandles) {
        if (handle.target == target && handle.kind == kind)
            found.push_back(&handle);
    }
    return found;
}

QString RyHandleTable::toolTip(const RyHandle &handle)
{
    return translated(handle.toolTip);
}

Qt::CursorShape RyHandleTable::cursor(const RyHandle &handle, bool restrictRotationAxes)
{
    return handle.kind == RyHandle::Ring && restrictRotationAxes ? Qt::ForbiddenCursor : Qt::PointingHandCursor;
}

QString RyHandleTable::statusText(const RyHandle &handle, const QString &nodeLabel)
{
    QString name = translated(handle.name);
    QString action = actionText(handle);
    if (handle.axis >= 0) {
        const QChar axis = QLatin1Char("XYZ"[handle.axis]);
        name += QLatin1Char(' ') + axis;
        action = action.arg(axis);
    }
    return translated(QT_TRANSLATE_NOOP("RyHandleTable", "%1, %2: %3")).arg(nodeLabel, name, action);
}

QString RyHandleTable::boneStatusText(const QString &boneLabel, bool ctrlCreates)
{
    const char *text = ctrlCreates
                           ? QT_TRANSLATE_NOOP("RyHandleTable", "%1: click to select")
                           : QT_TRANSLATE_NOOP("RyHandleTable", "%1: click to select, Ctrl adds to the selection");
    return translated(text).arg(boneLabel);
}
