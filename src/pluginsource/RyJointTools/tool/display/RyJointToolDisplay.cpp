#include "pluginsource/RyJointTools/tool/display/RyJointToolDisplay.h"

#include "pluginsource/RyJointTools/tool/display/RyDisplaySettings.h"

#include "rycore/base/RyAppSettings.h"

void RyJointToolDisplay::readSettings()
{
    const RyAppSettings settings = RyDisplaySettings::open();
    const auto take = [&](const auto &kept) { this->*kept.value = RyDisplaySettings::read(settings, kept); };
    take(RyDisplaySettings::sphereOpacity);
    take(RyDisplaySettings::sphereLineDensity);
    if (sphereLineDensity == 0)
        sphereLineDensity = 1;
    take(RyDisplaySettings::weightMapMode);
    take(RyDisplaySettings::weightOpacity);
    take(RyDisplaySettings::handleDrawing);
    take(RyDisplaySettings::sphereDrawing);
    boneDrawMode = settings.getIntValue(QLatin1String(RyDisplaySettings::boneDrawModeKey), EntireFigure);
    take(RyDisplaySettings::dynamicColor);
    take(RyDisplaySettings::staticColor);
    take(RyDisplaySettings::selectedColor);
    take(RyDisplaySettings::boundaryStyle);
    take(RyDisplaySettings::boundaryColor);
    take(RyDisplaySettings::boneColoringStyle);
    take(RyDisplaySettings::restrictRotationAxes);
    take(RyDisplaySettings::ghostBones);
    take(RyDisplaySettings::showManipulators);
}
