#pragma once

#include "rycore/io/snapshot/RySnapshotPart.h"

#include <QString>

#include <map>

/// A folder with the latest snapshot. What lasts from one to the next stands in files of their own, named after their
/// hash and written once; the snapshot holds how the present bytes differ from those. Every file is whole or not there,
/// and the former snapshot stays until the new one has taken its place.
class RySnapshotStore
{
public:
    explicit RySnapshotStore(const QString &folder) : m_folder(folder) {}
    const QString &folder() const { return m_folder; }

    /// False with a reason; the former snapshot is then still there.
    bool write(const RySnapshotParts &parts, QString *error);
    /// Removes the snapshot and what belongs to it.
    void clear();

    static bool hasSnapshot(const QString &folder);
    /// False with a reason when a file is missing or damaged.
    static bool read(const QString &folder, RySnapshotParts *parts, QString *error);
    /// The parts that stand in no files of their own, much sooner than all. False with a reason also when one of those
    /// files is not there; what there is has been read.
    static bool readOthers(const QString &folder, RySnapshotParts *parts, QString *error);

private:
    struct Base
    {
        QByteArray bytes;
        QByteArray owner;
        QByteArray hash;
    };
    bool store(const RySnapshotPart &part, QString *error);
    void dropUnusedBases() const;

    QString m_folder;
    std::map<QByteArray, Base> m_bases; // by the name of their part
};
