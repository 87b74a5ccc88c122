#include "pluginsource/RyJointTools/tool/RyJointToolDisplay.h"

#include "rycore/base/RyAppSettings.h"

namespace {

RyAppSettings openSettings()
{
    return RyAppSettings(QLatin1String(RyJointToolSettings::group));
}

QString channelKey(const char *prefix, const char *channel)
{
    return QLatin1String(prefix) + QLatin1String(channel);
}

QColor readColor(const RyAppSettings &settings, const char *prefix, const QColor &byDefault)
{
    // A colour with a channel out of range would be none at all.
    const auto readChannel = [&](const char *channel, int value) {
        return qBound(0, settings.getIntValue(channelKey(prefix, channel), value), 255);
    };
    const int red = readChannel("Red", byDefault.red());
    const int green = readChannel("Green", byDefault.green());
    const int blue = readChannel("Blue", byDefault.blue());
    return QColor(red, green, blue, 255);
}

} // namespace

void RyJointToolDisplay::readSettings()
{
    using namespace RyJointToolSettings;
    const RyAppSettings settings = openSettings();
    const auto readInt = [&settings](const char *key, int byDefault) {
        return settings.getIntValue(QLatin1String(key), byDefault);
    };
    const auto readBool = [&settings](const char *key, bool byDefault) {
        return settings.getBoolValue(QLatin1String(key), byDefault);
    };
    sphereOpacity = readInt(RyJointToolSettings::sphereOpacity, 50);
    sphereLineDensity = readInt(sphereDensity, 60);
    if (sphereLineDensity == 0)
        sphereLineDensity = 1;
    weightMapMode = readInt(RyJointToolSettings::weightMapMode, 2);
    weightOpacity = readInt(RyJointToolSettings::weightOpacity, 160);
    handleDrawing = readInt(drawHandles, 0);
    sphereDrawing = readInt(RyJointToolSettings::sphereDrawing, 0);
    boneDrawMode = readInt(boneVis, 3);
    dynamicColor = readColor(settings, RyJointToolSettings::dynamicColor, QColor(0, 255, 0));
    staticColor = readColor(settings, RyJointToolSettings::staticColor, QColor(255, 0, 0));
    selectedColor = readColor(settings, RyJointToolSettings::selectedColor, QColor(255, 255, 0));
    boundaryStyle = readInt(RyJointToolSettings::boundaryStyle, 1);
    boundaryColor = readColor(settings, RyJointToolSettings::boundaryColor, QColor(255, 255, 255));
    boneColoringStyle = readInt(RyJointToolSettings::boneColoringStyle, 1);
    restrictRotationAxes = readBool(axisHobble, false);
    ghostBones = readBool(RyJointToolSettings::ghostBones, false);
    showManipulators = readBool(RyJointToolSettings::showManipulators, true);
}

void RyJointToolSettings::writeInt(const char *key, int value)
{
    openSettings().setIntValue(QLatin1String(key), value);
}

void RyJointToolSettings::writeBool(const char *key, bool value)
{
    openSettings().setBoolValue(QLatin1String(key), value);
}

void RyJointToolSettings::writeColor(const char *prefix, const QColor &color)
{
    RyAppSettings settings = openSettings();
    settings.setIntValue(channelKey(prefix, "Red"), color.red());
    settings.setIntValue(channelKey(prefix, "Green"), color.green());
    settings.setIntValue(channelKey(prefix, "Blue"), color.blue());
}
