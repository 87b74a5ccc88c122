#include "rycore/io/snapshot/RySnapshotStore.h"

#include "rycore/io/RySafeFile.h"
#include "rycore/io/snapshot/RyByteDifference.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <limits>
#include <set>

namespace {

constexpr char Magic[] = "ryhost snapshot 1\n";
constexpr int HashSize = 20;
constexpr int LeastBase = 1 << 16;                                         // smaller ones are not worth a file
constexpr qint64 LargestSnapshot = std::numeric_limits<int>::max() - 1024; // one array holds it

QByteArray hashOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}

QString snapshotPath(const QString &folder)
{
    return folder + QStringLiteral("/snapshot");
}

QString basePath(const QString &folder, const QByteArray &hash)
{
    return QStringLiteral("%1/%2.bytes").arg(folder, QString::fromLatin1(hash.toHex()));
}

bool readFile(const QString &path, QByteArray *bytes, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    *bytes = file.readAll();
    return true;
}

struct Entry
{
    QByteArray name;
    QByteArray base;       // the hash; empty without one
    QByteArray difference; // from the base, or all of it
};

/// The entries of a snapshot, which must be whole.
bool readEntries(const QString &folder, std::vector<Entry> *entries, QString *error)
{
    const QString path = snapshotPath(folder);
    QByteArray bytes;
    if (!readFile(path, &bytes, error))
        return false;
    const int size = bytes.size() - HashSize;
    if (!bytes.startsWith(Magic) || size < 0 || hashOf(bytes.left(size)) != bytes.right(HashSize)) {
        *error = QStringLiteral("%1 is damaged").arg(path);
        return false;
    }
    QDataStream stream(bytes.mid(int(sizeof(Magic)) - 1, size - int(sizeof(Magic)) + 1));
    stream.setVersion(QDataStream::Qt_5_15);
    while (!stream.atEnd() && stream.status() == QDataStream::Ok) {
        Entry entry;
        stream >> entry.name >> entry.base >> entry.difference;
        entries->push_back(std::move(entry));
    }
    if (stream.status() == QDataStream::Ok)
        return true;
    *error = QStringLiteral("%1 is damaged").arg(path);
    return false;
}

/// False when an array cannot hold that, too.
bool add(const Entry &entry, QByteArray *bytes)
{
    if (qint64(bytes->size()) + entry.name.size() + entry.base.size() + entry.difference.size() > LargestSnapshot)
        return false;
    QDataStream stream(bytes, QIODevice::Append);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << entry.name << entry.base << entry.difference;
    return stream.status() == QDataStream::Ok;
}

} // namespace

/// Makes sure that what a part differs from is on the disk.
bool RySnapshotStore::store(const RySnapshotPart &part, QString *error)
{
    Base &base = m_bases[part.name];
    const bool isFar = base.hash.isEmpty() || RyByteDifference::isLarge(base.bytes, part.bytes);
    if (isFar)
        base = {part.bytes, part.owner, hashOf(part.bytes)};
    const QString path = basePath(m_folder, base.hash);
    if (QFileInfo(path).size() == base.bytes.size() && QFileInfo::exists(path))
        return true;
    if (RySafeFile::write(path, base.bytes, error))
        return true;
    m_bases.erase(part.name);
    return false;
}

bool RySnapshotStore::write(const RySnapshotParts &parts, QString *error)
{
    QByteArray bytes(Magic);
    std::set<QByteArray> lasting;
    for (const RySnapshotPart &part : parts) {
        Entry entry{part.name, {}, part.bytes};
        if (part.isLasting && part.bytes.size() >= LeastBase) {
            if (!store(part, error))
                return false;
            lasting.insert(part.name);
            const Base &base = m_bases[part.name];
            entry = {part.name, base.hash, RyByteDifference::between(base.bytes, part.bytes)};
        }
        if (!add(entry, &bytes)) {
            *error = QStringLiteral("the scene is larger than the 2 GB that can be kept");
            return false;
        }
    }
    std::erase_if(m_bases, [&lasting](const auto &base) { return !lasting.count(base.first); });
    bytes += hashOf(bytes);
    if (!RySafeFile::write(snapshotPath(m_folder), bytes, error))
        return false;
    dropUnusedBases();
    return true;
}

void RySnapshotStore::dropUnusedBases() const
{
    std::set<QString> used;
    for (const auto &[name, base] : m_bases)
        used.insert(basePath(m_folder, base.hash));
    for (const QFileInfo &file : QDir(m_folder).entryInfoList({QStringLiteral("*.bytes")}, QDir::Files)) {
        if (!used.count(file.filePath()))
            QFile::remove(file.filePath());
    }
}

void RySnapshotStore::clear()
{
    // First what makes it one: without it the rest is nothing that anybody would look at.
    QFile::remove(snapshotPath(m_folder));
    m_bases.clear();
    dropUnusedBases();
}

bool RySnapshotStore::hasSnapshot(const QString &folder)
{
    return QFileInfo::exists(snapshotPath(folder));
}

bool RySnapshotStore::read(const QString &folder, RySnapshotParts *parts, QString *error)
{
    std::vector<Entry> entries;
    if (!readEntries(folder, &entries, error))
        return false;
    for (const Entry &entry : entries) {
        if (entry.base.isEmpty()) {
            parts->push_back({entry.name, entry.difference, false, {}});
            continue;
        }
        const QString path = basePath(folder, entry.base);
        RySnapshotPart part{entry.name, {}, true, {}};
        QByteArray base;
        if (!readFile(path, &base, error))
            return false;
        if (hashOf(base) != entry.base || !RyByteDifference::apply(base, entry.difference, &part.bytes)) {
            *error = QStringLiteral("%1 is damaged").arg(path);
            return false;
        }
        parts->push_back(std::move(part));
    }
    return true;
}

bool RySnapshotStore::readOthers(const QString &folder, RySnapshotParts *parts, QString *error)
{
    std::vector<Entry> entries;
    if (!readEntries(folder, &entries, error))
        return false;
    bool isWhole = true;
    for (const Entry &entry : entries) {
        const QString path = basePath(folder, entry.base);
        if (entry.base.isEmpty()) {
            parts->push_back({entry.name, entry.difference, false, {}});
        } else if (isWhole && !QFileInfo::exists(path)) {
            *error = QStringLiteral("%1 is not there").arg(path);
            isWhole = false;
        }
    }
    return isWhole;
}
