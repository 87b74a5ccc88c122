// settings_probe FOLDER get|set GROUP KEY TYPE DEFAULT-OR-VALUE: prints what a fresh process reads, or writes.
#include "rycore/base/RyAppSettings.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 7)
        return 2;
    RyAppSettings::setSettingsPath(words[1]);
    RyAppSettings settings(words[3]);
    const QString key = words[4], type = words[5], value = words[6];
    if (words[2] == QLatin1String("set")) {
        if (type == QLatin1String("int"))
            settings.setIntValue(key, value.toInt());
        else
            settings.setStringValue(key, value);
        return 0;
    }
    QByteArray read;
    if (type == QLatin1String("int"))
        read = QByteArray::number(settings.getIntValue(key, value.toInt()));
    else if (type == QLatin1String("bool"))
        read = settings.getBoolValue(key, value == QLatin1String("true")) ? "true" : "false";
    else if (type == QLatin1String("float"))
        read = QByteArray::number(double(settings.getFloatValue(key, value.toFloat())), 'g', 9);
    else if (type == QLatin1String("list"))
        read = settings.getStringListValue(key).join(QLatin1Char('|')).toUtf8().toHex();
    else if (type == QLatin1String("bytes"))
        read = settings.getBytesValue(key).toHex();
    else
        read = settings.getStringValue(key, value).toUtf8().toHex();
    std::puts(read.constData());
    return 0;
}
