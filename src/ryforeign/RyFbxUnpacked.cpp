#include "ryforeign/RyFbxUnpacked.h"

#include "ryforeign/RyFbxRecords.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>

namespace {

constexpr qint64 MostBytes = 128 << 20; // the library copies them once more
constexpr int MostLevels = 32;          // of records in records; four are usual

constexpr qint64 ArrayHeader = 13; // a kind, and four bytes each: how many, how they are packed, how many bytes follow
constexpr quint32 AsTheyAre = 0, Packed = 1;

/// Of one number of an array; 0 for a property that is none.
qint64 numberSize(char kind)
{
    switch (kind) {
    case 'd':
    case 'l':
        return 8;
    case 'f':
    case 'i':
        return 4;
    case 'b':
    case 'c':
        return 1;
    default:
        return 0;
    }
}

/// Writes the records one after the other, with their places as they become.
class Unpacking
{
public:
    explicit Unpacking(const RyFbxRecords &records)
        : m_records(records), m_unpacker(libdeflate_alloc_decompressor(), libdeflate_free_decompressor)
    {}

    QByteArray run()
    {
        if (!m_unpacker || !m_records.isBinary())
            return {};
        m_bytes.reserve(int(std::min(MostBytes, 4 * m_records.size())));
        copy(0, RyFbxRecords::HeaderSize);
        writeList(RyFbxRecords::HeaderSize, m_records.size(), 0);
        return m_isWhole && m_hasPacked ? m_bytes : QByteArray();
    }

private:
    /// Behind the last record stands an empty one, and behind that of the file what no reader asks for.
    void writeList(qint64 at, qint64 end, int level)
    {
        m_isWhole = m_isWhole && level < MostLevels;
        const qint64 last = m_records.forEach(at, end, [this, level](const RyFbxRecords::Record &record) {
            if (m_isWhole)
                writeRecord(record, level);
        });
        m_isWhole = m_isWhole && (last == end || m_records.isEmpty(last, end));
        copy(last, end);
    }

    void writeRecord(const RyFbxRecords::Record &record, int level)
    {
        const int at = m_bytes.size();
        copy(record.at, record.propertiesAt);
        const int propertiesAt = m_bytes.size();
        qint64 from = record.propertiesAt;
        for (qint64 i = 0; m_isWhole && i < record.propertyCount; ++i)
            from = writeProperty(from, record.childrenAt);
        copy(from, record.childrenAt);
        setCount(at, 2, m_bytes.size() - propertiesAt);
        writeList(record.childrenAt, record.end, level + 1);
        setCount(at, 0, m_bytes.size());
    }

    /// Place behind it.
    qint64 writeProperty(qint64 at, qint64 end)
    {
        const qint64 behind = m_records.skipProperty(at);
        if (behind < 0 || behind > end) {
            m_isWhole = false;
            return end;
        }
        const qint64 width = numberSize(m_records.value<char>(at));
        if (width == 0 || m_records.value<quint32>(at + 5) != Packed) {
            copy(at, behind);
            return behind;
        }
        const qint64 size = width * m_records.value<quint32>(at + 1);
        if (!hasRoom(ArrayHeader + size))
            return end;
        m_hasPacked = true;
        copy(at, at + 5);
        append(AsTheyAre);
        append(quint32(size));
        if (size > 0) // nothing may be packed into nothing
            unpack(at + ArrayHeader, behind, size);
        return behind;
    }

    void unpack(qint64 from, qint64 end, qint64 size)
    {
        const int to = m_bytes.size();
        m_bytes.resize(int(to + size));
        const auto result =
            libdeflate_zlib_decompress(m_unpacker.get(), m_records.bytes() + from, size_t(end - from),
                                       m_bytes.data() + to, size_t(size), nullptr); // all of it, or it has failed
        m_isWhole = m_isWhole && result == LIBDEFLATE_SUCCESS;
    }

    void copy(qint64 from, qint64 to)
    {
        if (hasRoom(to - from))
            m_bytes.append(m_records.bytes() + from, int(to - from));
    }
    bool hasRoom(qint64 size)
    {
        m_isWhole = m_isWhole && m_bytes.size() + size <= MostBytes;
        return m_isWhole;
    }
    void append(quint32 value) { m_bytes.append(reinterpret_cast<const char *>(&value), int(sizeof value)); }
    void setCount(int record, int number, qint64 value)
    {
        if (m_isWhole)
            std::memcpy(m_bytes.data() + record + number * m_records.countWidth(), &value,
                        size_t(m_records.countWidth()));
    }

    const RyFbxRecords &m_records;
    const std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor *)> m_unpacker;
    QByteArray m_bytes;
    bool m_isWhole = true;
    bool m_hasPacked = false;
};

} // namespace

QByteArray ryFbxUnpacked(const RyFbxRecords &records)
{
    return Unpacking(records).run();
}
