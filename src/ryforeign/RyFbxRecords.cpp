#include "ryforeign/RyFbxRecords.h"

#include <algorithm>

namespace {

constexpr char Magic[] = "Kaydara FBX Binary  ";
constexpr quint32 FirstWide = 7500;
constexpr qint64 VersionAt = 23;

} // namespace

RyFbxRecords::RyFbxRecords(const QByteArray &bytes)
    : m_bytes(bytes.constData()), m_size(bytes.size()),
      m_isBinary(bytes.size() >= HeaderSize && bytes.startsWith(Magic)),
      m_isWide(m_isBinary && value<quint32>(VersionAt) >= FirstWide)
{}

bool RyFbxRecords::read(qint64 at, qint64 end, Record &record) const
{
    const qint64 width = countWidth();
    const auto count = [&](int number) {
        return m_isWide ? qint64(value<quint64>(at + number * width)) : qint64(value<quint32>(at + number * width));
    };
    const qint64 nameAt = at + 3 * width + 1;
    if (!m_isBinary || nameAt > end)
        return false;
    record.at = at;
    record.end = count(0);
    record.propertyCount = count(1);
    record.propertiesAt = nameAt + value<quint8>(nameAt - 1);
    const qint64 length = count(2);
    if (record.end <= at || record.end > end || record.propertiesAt > record.end || length < 0 ||
        length > record.end - record.propertiesAt) {
        return false; // the empty record behind the last one as well
    }
    record.childrenAt = record.propertiesAt + length;
    record.name = {m_bytes + nameAt, size_t(record.propertiesAt - nameAt)};
    return true;
}

bool RyFbxRecords::isEmpty(qint64 at, qint64 end) const
{
    const qint64 size = 3 * countWidth() + 1;
    return at + size <= end && std::all_of(m_bytes + at, m_bytes + at + size, [](char byte) { return byte == 0; });
}

qint64 RyFbxRecords::skipProperty(qint64 at) const
{
    switch (value<char>(at)) {
    case 'C':
        return at + 2;
    case 'Y':
        return at + 3;
    case 'I':
    case 'F':
        return at + 5;
    case 'L':
    case 'D':
        return at + 9;
    case 'S':
    case 'R':
        return at + 5 + qint64(value<quint32>(at + 1));
    case 'f':
    case 'd':
    case 'l':
    case 'i':
    case 'b':
    case 'c':
        return at + 13 + qint64(value<quint32>(at + 9)); // a count, how it is packed, how many bytes it takes
    default:
        return -1;
    }
}

qint64 RyFbxRecords::findProperty(const Record &record, int number) const
{
    qint64 at = record.propertiesAt;
    for (; number > 0 && at >= 0 && at < record.childrenAt; --number)
        at = skipProperty(at);
    return at < record.childrenAt ? at : -1;
}

QByteArray RyFbxRecords::text(const Record &record, int number) const
{
    const qint64 at = findProperty(record, number);
    const qint64 length = at < 0 ? 0 : qint64(value<quint32>(at + 1));
    if (at < 0 || value<char>(at) != 'S' || at + 5 + length > record.childrenAt)
        return {};
    return QByteArray(m_bytes + at + 5, int(length));
}

double RyFbxRecords::number(const Record &record, int number) const
{
    const qint64 at = findProperty(record, number);
    if (at < 0)
        return 0.0;
    if (value<char>(at) == 'D')
        return value<double>(at + 1);
    return value<char>(at) == 'F' ? double(value<float>(at + 1)) : 0.0;
}
