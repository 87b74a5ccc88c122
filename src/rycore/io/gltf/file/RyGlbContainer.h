#pragma once

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <vector>

/// The binary container: a header and chunks. All parts are views into the file's bytes.
struct RyGlbContainer
{
    struct Chunk
    {
        std::uint32_t type = 0;
        QByteArray bytes;
    };

    QByteArray json;
    QByteArray binary;         // null when there is none
    std::vector<Chunk> others; // of unknown types, kept

    static bool isContainer(const QByteArray &file);
    /// Throws RyGltfError. The parts point into `file`, which must outlive them.
    static RyGlbContainer split(const QByteArray &file, QStringList *warnings);
    /// Header and chunks, the JSON text padded with blanks and the rest with zeros to multiples of four bytes.
    /// Throws RyGltfError when the result would be too large for the format.
    static QByteArray join(const QByteArray &json, const std::vector<QByteArray> &binaryParts, bool hasBinary,
                           const std::vector<Chunk> &others);
};
