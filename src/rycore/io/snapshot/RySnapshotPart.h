#pragma once

#include <QByteArray>

#include <vector>

/// Bytes with a name. Where many snapshots have the same or nearly the same under one name, they are kept once.
struct RySnapshotPart
{
    QByteArray name;
    QByteArray bytes;
    bool isLasting = false; ///< likely to be the same in the next snapshot
    QByteArray owner;       ///< of the memory, where the bytes are a part of something larger
};
using RySnapshotParts = std::vector<RySnapshotPart>;

/// Empty where there is none of that name.
QByteArray rySnapshotBytes(const RySnapshotParts &parts, const QByteArray &name);
