#include "rycore/base/RyAppSettings.h"

#include "rycore/base/RySettingsStore.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <optional>

static RyAppSettings::Observer observer = nullptr;

static void observe(const QString &group, const QString &key, const char *access, const char *type)
{
    if (observer)
        observer(group, key, access, type);
}

static bool isText(const RySettingsValue &value)
{
    return value.type == "string" || value.type == "text";
}

static std::optional<int> toInt(const RySettingsValue &value)
{
    bool ok = false;
    const int number = value.text.toInt(&ok);
    return ok && (value.type == "int" || isText(value)) ? std::optional(number) : std::nullopt;
}

static std::optional<bool> toBool(const RySettingsValue &value)
{
    if (value.type == "bool" || isText(value)) {
        if (value.text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            return true;
        if (value.text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            return false;
    }
    const std::optional<int> number = toInt(value);
    return number == 0 || number == 1 ? std::optional(*number == 1) : std::nullopt;
}

static std::optional<float> toFloat(const RySettingsValue &value)
{
    bool ok = false;
    const float number = value.text.toFloat(&ok);
    const bool numeric = value.type == "float" || value.type == "int" || isText(value);
    return ok && numeric && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

static std::optional<QString> toString(const RySettingsValue &value)
{
    return isText(value) ? std::optional(value.text) : std::nullopt;
}

/// From a JSON array of texts, since entries may hold any character.
static std::optional<QStringList> toStringList(const RySettingsValue &value)
{
    if (isText(value))
        return value.text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QJsonDocument document = QJsonDocument::fromJson(value.text.toUtf8());
    if (value.type != "list" || !document.isArray())
        return std::nullopt;
    QStringList list;
    for (const QJsonValue &entry : document.array()) {
        if (!entry.isString())
            return std::nullopt;
        list.append(entry.toString());
    }
    return list;
}

static std::optional<QByteArray> toBytes(const RySettingsValue &value)
{
    if (value.type != "bytes")
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(value.text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional(*decoded) : std::nullopt;
}

template<typename T>
static T read(const QString &group, const QString &key, const T &defaultValue, const char *type,
              std::optional<T> (*convert)(const RySettingsValue &))
{
    observe(group, key, "get", type);
    RySettingsStore &store = RySettingsStore::global();
    const std::optional<RySettingsValue> stored = store.value(group, key);
    if (!stored)
        return defaultValue;
    if (const std::optional<T> converted = convert(*stored))
        return *converted;
    store.reportNonsense(group, key,
                         QCoreApplication::translate("RyAppSettings", "\"%1\" (%2) cannot be read as %3")
                             .arg(stored->text.left(80), QString::fromLatin1(stored->type), QString::fromLatin1(type)));
    return defaultValue;
}

static void write(const QString &group, const QString &key, const char *type, const QString &text)
{
    observe(group, key, "set", type);
    RySettingsStore::global().setValue(group, key, RySettingsValue{type, text});
}

RyAppSettings::RyAppSettings(const QString &group) : m_group(group) {}

int RyAppSettings::getIntValue(const QString &key, int defaultValue) const
{
    return read<int>(m_group, key, defaultValue, "int", toInt);
}

bool RyAppSettings::getBoolValue(const QString &key, bool defaultValue) const
{
    return read<bool>(m_group, key, defaultValue, "bool", toBool);
}

float RyAppSettings::getFloatValue(const QString &key, float defaultValue) const
{
    return read<float>(m_group, key, defaultValue, "float", toFloat);
}

QString RyAppSettings::getStringValue(const QString &key, const QString &defaultValue) const
{
    return read<QString>(m_group, key, defaultValue, "string", toString);
}

QStringList RyAppSettings::getStringListValue(const QString &key) const
{
    return read<QStringList>(m_group, key, QStringList(), "list", toStringList);
}

QByteArray RyAppSettings::getBytesValue(const QString &key) const
{
    return read<QByteArray>(m_group, key, QByteArray(), "bytes", toBytes);
}

void RyAppSettings::setIntValue(const QString &key, int value)
{
    write(m_group, key, "int", QString::number(value));
}

void RyAppSettings::setBoolValue(const QString &key, bool value)
{
    write(m_group, key, "bool", value ? QStringLiteral("true") : QStringLiteral("false"));
}

void RyAppSettings::setFloatValue(const QString &key, float value)
{
    write(m_group, key, "float", QString::number(double(value), 'g', 9));
}

void RyAppSettings::setStringValue(const QString &key, const QString &value)
{
    write(m_group, key, "string", value);
}

void RyAppSettings::setStringListValue(const QString &key, const QStringList &value)
{
    const QJsonDocument document(QJsonArray::fromStringList(value));
    write(m_group, key, "list", QString::fromUtf8(document.toJson(QJsonDocument::Compact)));
}

void RyAppSettings::setBytesValue(const QString &key, const QByteArray &value)
{
    write(m_group, key, "bytes", QString::fromLatin1(value.toBase64()));
}

bool RyAppSettings::contains(const QString &key) const
{
    return RySettingsStore::global().value(m_group, key).has_value();
}

void RyAppSettings::remove(const QString &key)
{
    if (contains(key))
        RySettingsStore::global().setValue(m_group, key, std::nullopt);
}

QStringList RyAppSettings::keys() const
{
    return RySettingsStore::global().keys(m_group);
}

QString RyAppSettings::settingsPath()
{
    return QFileInfo(RySettingsStore::global().path()).path();
}

void RyAppSettings::setSettingsPath(const QString &folder)
{
    RySettingsStore::global().redirect(folder);
}

void RyAppSettings::setObserver(Observer newObserver)
{
    observer = newObserver;
}
