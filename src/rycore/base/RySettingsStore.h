#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

/// A written value: the name of its type and its text. An entry that somebody wrote without a type is of type "text".
struct RySettingsValue
{
    QByteArray type;
    QString text;

    bool operator==(const RySettingsValue &other) const { return type == other.type && text == other.text; }
};

/// The settings file behind all groups: sections `[Group]` with lines `key=type:text`. Lines that it does not
/// understand stay as they are. The file is read again when another process has written it; values that could not be
/// written are kept in memory and go to the file with the next write that succeeds.
class RySettingsStore
{
public:
    static RySettingsStore &global();

    QString path();
    void redirect(const QString &folder);

    std::optional<RySettingsValue> value(const QString &group, const QString &key);
    /// No value removes the key. What the file holds already is not written again.
    void setValue(const QString &group, const QString &key, const std::optional<RySettingsValue> &value);
    QStringList keys(const QString &group);
    /// Logs, once for each key, why a stored value is not used.
    void reportNonsense(const QString &group, const QString &key, const QString &reason);

private:
    struct Line
    {
        QByteArray raw; // as in the file, without the line end
        bool isEntry = false;
        QString key;
        RySettingsValue value;
    };
    struct Section
    {
        QString group;
        QByteArray header; // empty for what stands before the first section
        std::vector<Line> lines;
    };
    using Key = std::pair<QString, QString>;

    QString folder() const;
    void refresh();
    void read();
    void parse(const QByteArray &content);
    void apply(const Key &key, const std::optional<RySettingsValue> &value);
    bool write(QString *reason);
    void reportOnce(const QString &subject, const QString &message);

    QString m_redirected;
    QString m_loadedPath;
    QDateTime m_loadedTime;
    qint64 m_loadedSize = -1;
    bool m_readable = true;
    std::vector<Section> m_sections;
    QMap<Key, std::optional<RySettingsValue>> m_unwritten;
    QSet<QString> m_reported;
};
