#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

/// A group of the application's persistent settings, an ini file below the settings path. The store keeps the written
/// type, so that another process reads a bool as a bool and an int as an int. Every write goes to the file at once;
/// nonsense in the file reads as the default and is reported once in the log.
class RyAppSettings
{
public:
    explicit RyAppSettings(const QString &group);

    int getIntValue(const QString &key, int defaultValue) const;
    /// Accepts a stored bool, an int 0 or 1, and the texts "true", "false", "1" and "0".
    bool getBoolValue(const QString &key, bool defaultValue) const;
    float getFloatValue(const QString &key, float defaultValue) const;
    QString getStringValue(const QString &key, const QString &defaultValue) const;
    /// Accepts a stored text too, a line for each entry. Empty without a value.
    QStringList getStringListValue(const QString &key) const;
    QByteArray getBytesValue(const QString &key) const;
    void setIntValue(const QString &key, int value);
    void setBoolValue(const QString &key, bool value);
    void setFloatValue(const QString &key, float value);
    void setStringValue(const QString &key, const QString &value);
    void setStringListValue(const QString &key, const QStringList &value);
    void setBytesValue(const QString &key, const QByteArray &value);
    bool contains(const QString &key) const;
    void remove(const QString &key);
    QStringList keys() const;
    const QString &getGroup() const { return m_group; }

    /// Folder of the settings file: RYHOST_SETTINGS_DIR, else the user's configuration folder.
    static QString settingsPath();
    /// Redirects the store (tests); an empty text goes back to the ordinary place.
    static void setSettingsPath(const QString &folder);
    /// Called for each access as (group, key, "get" or "set", type name), for tests; null removes it.
    using Observer = void (*)(const QString &group, const QString &key, const char *access, const char *type);
    static void setObserver(Observer observer);

private:
    QString m_group;
};
