#include "rycore/io/gltf/file/RyGlbContainer.h"

#include "rycore/io/gltf/file/RyGltfError.h"

#include <QtEndian>

namespace {

constexpr std::uint32_t magic = 0x46546C67;
constexpr std::uint32_t jsonType = 0x4E4F534A;
constexpr std::uint32_t binaryType = 0x004E4942;
constexpr int headerSize = 12;
constexpr int chunkHeaderSize = 8;

std::uint32_t wordAt(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

void appendWord(QByteArray &bytes, std::uint32_t word)
{
    const quint32 little = qToLittleEndian<quint32>(word);
    bytes.append(reinterpret_cast<const char *>(&little), 4);
}

std::uint64_t padded(std::uint64_t size)
{
    return (size + 3) & ~std::uint64_t(3);
}

} // namespace

bool RyGlbContainer::isContainer(const QByteArray &file)
{
    return file.size() >= 4 && wordAt(file, 0) == magic;
}

RyGlbContainer RyGlbContainer::split(const QByteArray &file, QStringList *warnings)
{
    const auto warn = [warnings](const QString &text) {
        if (warnings)
            warnings->append(text);
    };
    if (file.size() < headerSize)
        throw RyGltfError{QStringLiteral("the file is cut off in its header")};
    const std::uint32_t version = wordAt(file, 4);
    if (version != 2)
        throw RyGltfError{QStringLiteral("the container has version %1, not 2").arg(version)};
    const std::uint32_t length = wordAt(file, 8);
    if (length > std::uint32_t(file.size())) {
        throw RyGltfError{
            QStringLiteral("the file is cut off: its header says %1 bytes, it has %2").arg(length).arg(file.size())};
    }
    if (length < std::uint32_t(file.size()))
        warn(QStringLiteral("%1 bytes after the end of the container are passed over").arg(file.size() - int(length)));

    RyGlbContainer result;
    int at = headerSize;
    const int end = int(length);
    for (int number = 0; end - at >= chunkHeaderSize; ++number) {
        const std::uint32_t size = wordAt(file, at);
        const std::uint32_t type = wordAt(file, at + 4);
        at += chunkHeaderSize;
        if (size > std::uint32_t(end - at)) {
            throw RyGltfError{
                QStringLiteral("chunk %1 is cut off: %2 bytes announced, %3 left").arg(number).arg(size).arg(end - at)};
        }
        const QByteArray bytes = QByteArray::fromRawData(file.constData() + at, int(size));
        if (number == 0) {
            if (type != jsonType)
                throw RyGltfError{QStringLiteral("the first chunk is not JSON")};
            result.json = bytes;
        } else if (type == binaryType && result.binary.isNull()) {
            if (number != 1)
                warn(QStringLiteral("the binary chunk is not the second one"));
            result.binary = bytes;
        } else {
            result.others.push_back({type, bytes});
        }
        at += int(size);
        if (size % 4 != 0)
            warn(QStringLiteral("chunk %1 is not padded to a multiple of four bytes").arg(number));
    }
    if (result.json.isNull())
        throw RyGltfError{QStringLiteral("the file has no JSON chunk")};
    if (at < end)
        warn(QStringLiteral("%1 bytes after the last chunk are passed over").arg(end - at));
    return result;
}

QByteArray RyGlbContainer::join(const QByteArray &json, const std::vector<QByteArray> &binaryParts, bool hasBinary,
                                const std::vector<Chunk> &others)
{
    std::uint64_t binarySize = 0;
    for (const QByteArray &part : binaryParts)
        binarySize = padded(binarySize) + std::uint64_t(part.size());
    std::uint64_t total = headerSize + chunkHeaderSize + padded(std::uint64_t(json.size()));
    if (hasBinary)
        total += chunkHeaderSize + padded(binarySize);
    for (const Chunk &chunk : others)
        total += chunkHeaderSize + padded(std::uint64_t(chunk.bytes.size()));
    if (total > 0x7fff0000u)
        throw RyGltfError{QStringLiteral("the file would have more than two gigabytes")};

    QByteArray result;
    result.reserve(int(total));
    const auto pad = [&result](char with) {
        while (result.size() % 4 != 0)
            result.append(with);
    };
    appendWord(result, magic);
    appendWord(result, 2);
    appendWord(result, std::uint32_t(total));
    appendWord(result, std::uint32_t(padded(std::uint64_t(json.size()))));
    appendWord(result, jsonType);
    result.append(json);
    pad(' ');
    if (hasBinary) {
        appendWord(result, std::uint32_t(padded(binarySize)));
        appendWord(result, binaryType);
        for (const QByteArray &part : binaryParts) {
            pad('\0');
            result.append(part);
        }
        pad('\0');
    }
    for (const Chunk &chunk : others) {
        appendWord(result, std::uint32_t(padded(std::uint64_t(chunk.bytes.size()))));
        appendWord(result, chunk.type);
        result.append(chunk.bytes);
        pad('\0');
    }
    return result;
}
