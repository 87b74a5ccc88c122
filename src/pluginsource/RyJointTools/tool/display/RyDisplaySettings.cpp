#include "pluginsource/RyJointTools/tool/display/RyDisplaySettings.h"

#include "rycore/base/RyAppSettings.h"

static QString channelKey(const char *prefix, const char *channel)
{
    return QLatin1String(prefix) + QLatin1String(channel);
}

RyAppSettings RyDisplaySettings::open()
{
    return RyAppSettings(QStringLiteral("Joint Editor Tool"));
}

int RyDisplaySettings::read(const RyAppSettings &settings, const Number &number)
{
    return settings.getIntValue(QLatin1String(number.key), number.byDefault);
}

bool RyDisplaySettings::read(const RyAppSettings &settings, const Flag &flag)
{
    return settings.getBoolValue(QLatin1String(flag.key), flag.byDefault);
}

QColor RyDisplaySettings::read(const RyAppSettings &settings, const Color &color)
{
    // A colour with a channel out of range would be none at all.
    const auto readChannel = [&](const char *channel, int byDefault) {
        return qBound(0, settings.getIntValue(channelKey(color.prefix, channel), byDefault), 255);
    };
    const int red = readChannel("Red", color.byDefault[0]);
    const int green = readChannel("Green", color.byDefault[1]);
    const int blue = readChannel("Blue", color.byDefault[2]);
    return QColor(red, green, blue, 255);
}

void RyDisplaySettings::write(const Flag &flag, bool value)
{
    if (flag.isWrittenAsInt)
        write(flag.key, value ? 1 : 0);
    else
        open().setBoolValue(QLatin1String(flag.key), value);
}

void RyDisplaySettings::write(const Color &color, const QColor &value)
{
    RyAppSettings settings = open();
    settings.setIntValue(channelKey(color.prefix, "Red"), value.red());
    settings.setIntValue(channelKey(color.prefix, "Green"), value.green());
    settings.setIntValue(channelKey(color.prefix, "Blue"), value.blue());
}

void RyDisplaySettings::write(const char *key, int value)
{
    open().setIntValue(QLatin1String(key), value);
}
