#include "ryforeign/RyFbxObjects.h"

#include <QFile>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace {

/// Of letters and digits; empty where all of that length are taken.
QByteArray freeName(int length, const QSet<QByteArray> &taken)
{
    static const QByteArray digits = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    QByteArray name(length, digits[0]);
    for (qint64 number = taken.size(); length > 0 && number <= 2 * qint64(taken.size()) + digits.size(); ++number) {
        qint64 rest = number;
        for (int i = length; i-- > 0; rest /= digits.size())
            name[i] = digits[int(rest % digits.size())];
        if (rest == 0 && !taken.contains(name))
            return name;
    }
    // Short names: from the start.
    for (qint64 number = 0; length > 0 && length < 3 && number < qint64(digits.size()) * digits.size(); ++number) {
        name[length - 1] = digits[int(number % digits.size())];
        if (length == 2)
            name[0] = digits[int(number / digits.size())];
        if (!taken.contains(name))
            return name;
    }
    return {};
}

} // namespace

RyFbxObjects::RyFbxObjects(const QString &path)
{
    constexpr qint64 header = 27; // a name, two odd bytes and the version
    constexpr quint32 firstWide = 7500;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < header)
        return;
    m_size = file.size();
    m_bytes = file.map(0, m_size);
    if (!m_bytes)
        return;
    isText = std::memcmp(m_bytes, "Kaydara FBX Binary  ", 20) != 0;
    if (isText) {
        readText();
        tellApart();
        m_bytes = nullptr;
        return;
    }
    m_isWide = valueAt<quint32>(23) >= firstWide;
    forRecords(header, m_size, [this](const Record &top) {
        if (top.name == "Objects")
            forRecords(top.childrenAt, top.end, [this](const Record &record) { readObject(record); });
        else if (top.name == "Connections")
            forRecords(top.childrenAt, top.end, [this](const Record &record) { readConnection(record); });
    });
    tellApart();
    findChannels();
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
    const QByteArray kind = textProperty(record, 2);
    if (record.name == "Model") {
        readModel(record, id);
    } else if (record.name == "Constraint") {
        const QByteArray name = textProperty(record, 1);
        constraints.append(QString::fromUtf8(name.left(name.indexOf('\0'))));
    } else if (record.name == "Geometry") {
        (kind == "Shape" ? m_shapes : m_geometries).insert(id, {});
    } else if (record.name == "Deformer" && kind == "BlendShape") {
        m_deformers.insert(id, {});
    } else if (record.name == "Deformer" && kind == "BlendShapeChannel") {
        double value = 0.0;
        forRecords(record.childrenAt, record.end, [this, &value](const Record &below) {
            if (below.name == "DeformPercent")
                value = numberProperty(below, 0) / 100.0;
        });
        m_channels.insert(id, {std::isfinite(value) ? value : 0.0, 0});
    }
}

void RyFbxObjects::readModel(const Record &record, qint64 id)
{
    const QByteArray whole = textProperty(record, 1); // a name, two bytes and a class
    const QByteArray kind = textProperty(record, 2);
    Model model;
    model.id = id;
    model.nameAt = findProperty(record, 1) + 5;
    model.name = whole.left(whole.indexOf('\0'));
    // "Root" is the place of a whole skeleton, often at the same point as its first limb.
    model.isLimb = kind == "LimbNode" || kind == "Limb";
    m_models.push_back(model);
    readOwnProperties(record, QString::fromUtf8(model.name));
}

/// Each property says a name, a type, a label and flags.
void RyFbxObjects::readOwnProperties(const Record &model, const QString &node)
{
    const auto take = [this, &node](const Record &property) {
        if (!textProperty(property, 3).contains('U'))
            return;
        const QString name = QString::fromUtf8(textProperty(property, 0));
        const auto known = m_ownPropertyOf.constFind(name);
        if (known != m_ownPropertyOf.constEnd()) {
            ownProperties[*known].nodes.append(node);
            return;
        }
        m_ownPropertyOf.insert(name, ownProperties.size());
        ownProperties.push_back({name, {node}});
    };
    forRecords(model.childrenAt, model.end, [this, &take](const Record &list) {
        if (list.name == "Properties70")
            forRecords(list.childrenAt, list.end, take);
    });
}

/// Of lines like  Model: 12, "Model::Hips", "LimbNode" {
template<typename Work>
void RyFbxObjects::forNamesInText(const QByteArray &kind, const Work &work) const
{
    const QByteArray text =
        QByteArray::fromRawData(reinterpret_cast<const char *>(m_bytes), int(std::min<qint64>(m_size, INT_MAX)));
    const QByteArray before = '"' + kind + "::";
    for (int at = text.indexOf(before); at >= 0; at = text.indexOf(before, at + 1)) {
        const int line = text.lastIndexOf('\n', at) + 1;
        const int nameAt = at + before.size();
        const int end = text.indexOf('"', nameAt);
        if (end >= 0 && text.mid(line, at - line).trimmed().startsWith(kind + ':'))
            work(nameAt, text.mid(nameAt, end - nameAt));
    }
}

void RyFbxObjects::readText()
{
    forNamesInText("Model", [this](int nameAt, const QByteArray &name) {
        Model model;
        model.nameAt = nameAt;
        model.name = name;
        m_models.push_back(model);
    });
    forNamesInText("Constraint", [this](int, const QByteArray &name) { constraints.append(QString::fromUtf8(name)); });
}

/// The importers' library would take what is said of the second of two nodes for the first.
void RyFbxObjects::tellApart()
{
    QSet<QByteArray> taken, seen;
    for (const Model &model : m_models)
        taken.insert(model.name);
    for (Model &model : m_models) {
        const QByteArray own = model.name;
        if (!seen.contains(own)) {
            seen.insert(own);
        } else if (const QByteArray free = freeName(own.size(), taken); !free.isEmpty()) {
            taken.insert(free);
            nameOf.insert(QString::fromLatin1(free), QString::fromUtf8(own));
            m_renamings.emplace_back(model.nameAt, free);
            model.name = free;
        } else if (!own.isEmpty()) {
            ambiguous.append(QString::fromUtf8(own));
        }
        if (model.isLimb)
            limbs.insert(QString::fromUtf8(model.name));
    }
}

QByteArray RyFbxObjects::renamed(const QString &path) const
{
    QFile file(path);
    if (m_renamings.empty() || !file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    for (const auto &[at, name] : m_renamings) {
        if (at + name.size() <= bytes.size())
            bytes.replace(int(at), name.size(), name);
    }
    return bytes;
}

std::vector<qint64> RyFbxObjects::below(qint64 id, const QHash<qint64, RyForeignInput::Channel> &kind) const
{
    std::vector<qint64> found;
    for (const qint64 each : m_below.value(id)) {
        if (kind.contains(each))
            found.push_back(each);
    }
    return found;
}

void RyFbxObjects::findChannels()
{
    for (const Model &model : m_models) {
        std::vector<RyForeignInput::Channels> geometries;
        for (const qint64 geometry : below(model.id, m_geometries)) {
            geometries.emplace_back();
            for (const qint64 deformer : below(geometry, m_deformers)) {
                for (const qint64 channel : below(deformer, m_channels))
                    geometries.back().push_back(
                        {m_channels.value(channel).value, int(below(channel, m_shapes).size())});
            }
        }
        if (!geometries.empty())
            channelsOf.insert(QString::fromUtf8(model.name), geometries);
    }
}

void RyFbxObjects::readConnection(const Record &record)
{
    const qint64 from = findProperty(record, 1);
    const qint64 to = findProperty(record, 2);
    if (textProperty(record, 0) != "OO" || from < 0 || to < 0)
        return;
    const auto id = valueAt<qint64>(from + 1);
    if (m_geometries.contains(id) || m_deformers.contains(id) || m_channels.contains(id) || m_shapes.contains(id))
        m_below[valueAt<qint64>(to + 1)].push_back(id);
}
