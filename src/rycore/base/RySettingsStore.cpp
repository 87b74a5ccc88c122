#include "rycore/base/RySettingsStore.h"

#include "rycore/base/RyMessageLog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <cctype>
#include <cstring>

static constexpr int lockTimeoutMs = 2000;
static const char *const knownTypes[] = {"bool", "int", "float", "string", "list", "bytes"};

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyAppSettings)
};

} // namespace

// Percent codes (two digits) for control characters, '%', blanks at the ends and what else the place does not allow.
static QByteArray escape(const QString &text, const char *special)
{
    QByteArray escaped;
    for (int i = 0; i < text.size(); ++i) {
        const ushort u = text[i].unicode();
        const bool atEnd = i == 0 || i + 1 == text.size();
        if (u < 0x20 || u == 0x7f || u == '%' || (u == ' ' && atEnd) || (u < 0x80 && strchr(special, u)))
            escaped += '%' + QByteArray::number(u, 16).rightJustified(2, '0');
        else if (text[i].isHighSurrogate() && i + 1 < text.size())
            escaped += text.mid(i++, 2).toUtf8();
        else
            escaped += text.mid(i, 1).toUtf8();
    }
    return escaped;
}

static QString unescape(const QByteArray &text)
{
    QByteArray plain;
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && std::isxdigit(uchar(text[i + 1])) &&
            std::isxdigit(uchar(text[i + 2]))) {
            plain += QByteArray::fromHex(text.mid(i + 1, 2));
            i += 2;
        } else {
            plain += text[i];
        }
    }
    return QString::fromUtf8(plain);
}

static RySettingsValue parseValue(const QByteArray &raw)
{
    const int colon = raw.indexOf(':');
    for (const char *type : knownTypes) {
        if (colon > 0 && raw.left(colon) == type)
            return {raw.left(colon), unescape(raw.mid(colon + 1))};
    }
    return {"text", QString::fromUtf8(raw)};
}

static QByteArray entryLine(const QString &key, const RySettingsValue &value)
{
    return escape(key, "=[];#") + '=' + value.type + ':' + escape(value.text, "");
}

RySettingsStore &RySettingsStore::global()
{
    static RySettingsStore store;
    return store;
}

QString RySettingsStore::folder() const
{
    if (!m_redirected.isEmpty())
        return m_redirected;
    const QString fromEnvironment = qEnvironmentVariable("RYHOST_SETTINGS_DIR");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/ryhost");
}

QString RySettingsStore::path()
{
    return folder() + QStringLiteral("/settings.ini");
}

void RySettingsStore::redirect(const QString &folder)
{
    m_redirected = folder;
}

std::optional<RySettingsValue> RySettingsStore::value(const QString &group, const QString &key)
{
    refresh();
    std::optional<RySettingsValue> found;
    for (const Section &section : m_sections) {
        if (section.group != group)
            continue;
        for (const Line &line : section.lines) {
            if (line.isEntry && line.key == key)
                found = line.value;
        }
    }
    return found;
}

QStringList RySettingsStore::keys(const QString &group)
{
    refresh();
    QStringList keys;
    for (const Section &section : m_sections) {
        if (section.group != group)
            continue;
        for (const Line &line : section.lines) {
            if (line.isEntry && !keys.contains(line.key))
                keys.append(line.key);
        }
    }
    return keys;
}

void RySettingsStore::setValue(const QString &group, const QString &key, const std::optional<RySettingsValue> &value)
{
    if (m_unwritten.isEmpty() && this->value(group, key) == value)
        return;
    refresh();
    // Copies of their own: literals lie in the data of libraries that may be unloaded before the store goes.
    const Key own(QString(group.constData(), group.size()), QString(key.constData(), key.size()));
    m_unwritten[own] = value;
    QString reason;
    if (!write(&reason)) {
        apply(own, value);
        reportOnce(QStringLiteral("write"),
                   Texts::tr("The settings file %1 cannot be written (group %2, key %3): %4. The settings "
                             "last until the program ends.")
                       .arg(QDir::toNativeSeparators(m_loadedPath), group, key, reason));
    }
}

void RySettingsStore::refresh()
{
    const QString current = path();
    if (current != m_loadedPath) {
        m_loadedPath = current;
        m_loadedTime = QDateTime();
        m_loadedSize = -1;
        m_unwritten.clear();
        m_reported.clear();
        read();
        return;
    }
    const QFileInfo info(current);
    const qint64 size = info.exists() ? info.size() : -1;
    if (size != m_loadedSize || (size >= 0 && info.lastModified() != m_loadedTime))
        read();
}

void RySettingsStore::read()
{
    m_sections.clear();
    m_readable = true;
    const QFileInfo info(m_loadedPath);
    m_loadedSize = info.exists() ? info.size() : -1;
    m_loadedTime = info.lastModified();
    if (info.exists()) {
        QFile file(m_loadedPath);
        if (file.open(QIODevice::ReadOnly)) {
            parse(file.readAll());
        } else {
            m_readable = false;
            reportOnce(QStringLiteral("read"), Texts::tr("The settings file %1 cannot be read: %2.")
                                                   .arg(QDir::toNativeSeparators(m_loadedPath), file.errorString()));
        }
    }
    for (auto it = m_unwritten.cbegin(); it != m_unwritten.cend(); ++it)
        apply(it.key(), it.value());
}

void RySettingsStore::parse(const QByteArray &content)
{
    m_sections.push_back({});
    QList<QByteArray> lines = content.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    for (const QByteArray &raw : qAsConst(lines)) {
        const QByteArray trimmed = raw.trimmed();
        if (trimmed.startsWith('[') && trimmed.endsWith(']')) {
            m_sections.push_back({unescape(trimmed.mid(1, trimmed.size() - 2)), raw, {}});
            continue;
        }
        Line line;
        line.raw = raw;
        const int equals = trimmed.indexOf('=');
        if (equals > 0 && trimmed[0] != ';' && trimmed[0] != '#') {
            line.isEntry = true;
            line.key = unescape(trimmed.left(equals).trimmed());
            line.value = parseValue(trimmed.mid(equals + 1).trimmed());
        } else if (!trimmed.isEmpty() && trimmed[0] != ';' && trimmed[0] != '#') {
            reportNonsense(m_sections.back().group, QString::fromUtf8(trimmed.left(80)),
                           Texts::tr("the line is no entry"));
        }
        m_sections.back().lines.push_back(line);
    }
}

void RySettingsStore::apply(const Key &key, const std::optional<RySettingsValue> &value)
{
    Section *last = nullptr;
    Line *entry = nullptr;
    for (Section &section : m_sections) {
        if (section.group != key.first)
            continue;
        last = &section;
        if (!value) {
            std::erase_if(section.lines, [&](const Line &line) { return line.isEntry && line.key == key.second; });
            continue;
        }
        for (Line &line : section.lines) {
            if (line.isEntry && line.key == key.second)
                entry = &line;
        }
    }
    if (!value)
        return;
    if (!last) {
        if (m_sections.empty())
            m_sections.push_back({});
        m_sections.push_back({key.first, '[' + escape(key.first, "[]") + ']', {}});
        last = &m_sections.back();
    }
    const Line line{entryLine(key.second, *value), true, key.second, *value};
    if (entry) {
        *entry = line;
        return;
    }
    auto place = last->lines.end();
    while (place != last->lines.begin() && std::prev(place)->raw.trimmed().isEmpty())
        --place;
    last->lines.insert(place, line);
}

/// Of a part that found room the next try tells why the rest did not.
static bool writeAll(QIODevice &file, const QByteArray &bytes)
{
    for (qint64 done = 0, written = 0; done < bytes.size(); done += written) {
        written = file.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return false;
    }
    return true;
}

bool RySettingsStore::write(QString *reason)
{
    if (!m_readable) {
        *reason = Texts::tr("it cannot be read either");
        return false;
    }
    const QString dir = QFileInfo(m_loadedPath).absolutePath();
    if (!QDir().mkpath(dir)) {
        *reason = Texts::tr("its folder cannot be made");
        return false;
    }
    QLockFile lock(m_loadedPath + QStringLiteral(".lock"));
    lock.tryLock(lockTimeoutMs);
    refresh(); // what another process wrote meanwhile
    for (auto it = m_unwritten.cbegin(); it != m_unwritten.cend(); ++it)
        apply(it.key(), it.value());

    QByteArray content;
    for (const Section &section : m_sections) {
        if (!section.header.isEmpty())
            content += section.header + '\n';
        for (const Line &line : section.lines)
            content += line.raw + '\n';
    }
    // What a buffer holds is written when the file is closed, and nobody would hear that there was no room for it.
    QSaveFile file(m_loadedPath);
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        if (writeAll(file, content) && file.commit()) {
            const QFileInfo info(m_loadedPath);
            m_loadedSize = info.size();
            m_loadedTime = info.lastModified();
            m_unwritten.clear();
            return true;
        }
    }
    *reason = file.errorString();
    return false;
}

void RySettingsStore::reportNonsense(const QString &group, const QString &key, const QString &reason)
{
    reportOnce(group + QChar(0) + key, Texts::tr("Settings file %1, group \"%2\", key \"%3\": %4.")
                                           .arg(QDir::toNativeSeparators(m_loadedPath), group, key, reason));
}

void RySettingsStore::reportOnce(const QString &subject, const QString &message)
{
    if (m_reported.contains(subject))
        return;
    m_reported.insert(subject);
    RyMessageLog::global().warning(message);
}
