#include "ryforeign/RyFbxObjects.h"

#include <QFile>

#include <cmath>
#include <cstring>

RyFbxObjects::RyFbxObjects(const QString &path)
{
    constexpr qint64 header = 27; // a name, two odd bytes and the version
    constexpr quint32 firstWide = 7500;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < header)
        return;
    m_size = file.size();
    m_bytes = file.map(0, m_size);
    if (!m_bytes || std::memcmp(m_bytes, "Kaydara FBX Binary  ", 20) != 0)
        return;
    m_isWide = valueAt<quint32>(23) >= firstWide;
    forRecords(header, m_size, [this](const Record &top) {
        if (top.name == "Objects")
            forRecords(top.childrenAt, top.end, [this](const Record &record) { readObject(record); });
        else if (top.name == "Connections")
            forRecords(top.childrenAt, top.end, [this](const Record &record) { readConnection(record); });
    });
    for (auto shape = m_channelOf.cbegin(); shape != m_channelOf.cend(); ++shape) {
        const double value = m_channels.value(shape.value(), 0.0) / 100.0;
        if (m_shapes.contains(shape.key()) && std::isfinite(value) && value != 0.0)
            morphs.insert(m_shapes.value(shape.key()), value);
    }
    m_bytes = nullptr;
}

/// Zero beyond the end.
template<typename T>
T RyFbxObjects::valueAt(qint64 at) const
{
    T value{};
    if (at >= 0 && at + qint64(sizeof value) <= m_size)
        std::memcpy(&value, m_bytes + at, sizeof value);
    return value;
}

bool RyFbxObjects::readRecord(qint64 at, qint64 end, Record &record) const
{
    const qint64 width = m_isWide ? 8 : 4;
    const auto count = [&](int number) {
        return m_isWide ? qint64(valueAt<quint64>(at + number * width)) : qint64(valueAt<quint32>(at + number * width));
    };
    const qint64 nameAt = at + 3 * width + 1;
    if (nameAt > end)
        return false;
    record.end = count(0);
    record.propertyCount = int(count(1));
    record.propertiesAt = nameAt + valueAt<quint8>(nameAt - 1);
    record.childrenAt = record.propertiesAt + count(2);
    if (count(2) < 0 || record.end <= at || record.end > end || record.childrenAt > record.end ||
        record.childrenAt < record.propertiesAt) {
        return false; // the empty record behind the last one as well
    }
    record.name = QByteArray(reinterpret_cast<const char *>(m_bytes + nameAt), int(record.propertiesAt - nameAt));
    return true;
}

template<typename Work>
void RyFbxObjects::forRecords(qint64 at, qint64 end, const Work &work) const
{
    for (Record record; readRecord(at, end, record); at = record.end)
        work(record);
}

/// Place of a property's type; -1 where it is not there or stands behind one that is no plain number and no text.
qint64 RyFbxObjects::findProperty(const Record &record, int number) const
{
    qint64 at = record.propertiesAt;
    for (; number > 0 && at < record.childrenAt; --number) {
        switch (valueAt<char>(at)) {
        case 'C':
            at += 2;
            break;
        case 'Y':
            at += 3;
            break;
        case 'I':
        case 'F':
            at += 5;
            break;
        case 'L':
        case 'D':
            at += 9;
            break;
        case 'S':
        case 'R':
            at += 5 + qint64(valueAt<quint32>(at + 1));
            break;
        default:
            return -1;
        }
    }
    return at < record.childrenAt ? at : -1;
}

QByteArray RyFbxObjects::textProperty(const Record &record, int number) const
{
    const qint64 at = findProperty(record, number);
    const qint64 length = at < 0 ? 0 : qint64(valueAt<quint32>(at + 1));
    if (at < 0 || valueAt<char>(at) != 'S' || at + 5 + length > record.childrenAt)
        return {};
    return QByteArray(reinterpret_cast<const char *>(m_bytes + at + 5), int(length));
}

double RyFbxObjects::numberProperty(const Record &record, int number) const
{
    const qint64 at = findProperty(record, number);
    if (at < 0)
        return 0.0;
    if (valueAt<char>(at) == 'D')
        return valueAt<double>(at + 1);
    return valueAt<char>(at) == 'F' ? double(valueAt<float>(at + 1)) : 0.0;
}

void RyFbxObjects::readObject(const Record &record)
{
    const qint64 idAt = findProperty(record, 0);
    if (idAt < 0 || valueAt<char>(idAt) != 'L')
        return;
    const auto id = valueAt<qint64>(idAt + 1);
    const QByteArray whole = textProperty(record, 1); // a name, two bytes and a class
    const QString name = QString::fromUtf8(whole.left(whole.indexOf('\0')));
    const QByteArray kind = textProperty(record, 2);
    // "Root" is the place of a whole skeleton, often at the same point as its first limb.
    if (record.name == "Model" && (kind == "LimbNode" || kind == "Limb")) {
        limbs.insert(name);
    } else if (record.name == "Geometry" && kind == "Shape") {
        m_shapes.insert(id, name);
    } else if (record.name == "Deformer" && kind == "BlendShapeChannel") {
        forRecords(record.childrenAt, record.end, [this, id](const Record &below) {
            if (below.name == "DeformPercent")
                m_channels.insert(id, numberProperty(below, 0));
        });
    }
}

void RyFbxObjects::readConnection(const Record &record)
{
    const qint64 from = findProperty(record, 1);
    const qint64 to = findProperty(record, 2);
    if (textProperty(record, 0) != "OO" || from < 0 || to < 0)
        return;
    const auto id = valueAt<qint64>(from + 1);
    if (m_shapes.contains(id))
        m_channelOf.insert(id, valueAt<qint64>(to + 1));
}
