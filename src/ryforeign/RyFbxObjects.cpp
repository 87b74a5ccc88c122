#include "ryforeign/RyFbxObjects.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <string_view>

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
        if (rest != 0)
            break;
        if (!taken.contains(name))
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

/// Of an object: behind its name stand, as a rule, two bytes and its class.
QByteArray nameIn(const QByteArray &whole)
{
    const int end = whole.indexOf('\0');
    return end < 0 ? whole : whole.left(end);
}

/// In text form no name or property that is looked for is longer, so that a prepared file costs no more than others.
constexpr int LongestProperty = 4096;

constexpr std::string_view Blanks = " \t\r\n";

/// In place.
std::string_view partOf(const QByteArray &text, qint64 from, qint64 to)
{
    from = std::clamp(from, qint64(0), qint64(text.size()));
    return {text.constData() + from, size_t(std::max(qint64(0), std::min(to, qint64(text.size())) - from))};
}

QByteArray bytesOf(std::string_view part)
{
    return QByteArray(part.data(), int(part.size()));
}

/// The values of a property, in place: texts in quotes, and numbers, with commas between them. A line end means no more
/// than a blank does: some programs write none.
std::vector<std::string_view> valuesOf(std::string_view text, size_t most)
{
    std::vector<std::string_view> values;
    const auto skipBlanks = [&text] { text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size())); };
    for (skipBlanks(); values.size() < most; skipBlanks()) {
        size_t size = std::min(text.find_first_of(" \t\r\n,;{}\""), text.size());
        if (size == 0 && !text.empty() && text[0] == '"') {
            const size_t end = text.find('"', 1);
            if (end == text.npos)
                break;
            size = end + 1;
        }
        values.push_back(text.substr(0, size));
        text.remove_prefix(size);
        skipBlanks();
        if (text.empty() || text[0] != ',')
            break;
        text.remove_prefix(1);
    }
    return values;
}

} // namespace

RyFbxObjects::RyFbxObjects(const QByteArray &bytes) : m_bytes(bytes), m_records(m_bytes)
{
    if (m_records.isBinary())
        readRecords();
    else
        readText();
    tellApart();
    findChannels();
}

void RyFbxObjects::readRecords()
{
    m_records.forEach(RyFbxRecords::HeaderSize, m_records.size(), [this](const Record &top) {
        if (top.name == "Objects")
            m_records.forEach(top.childrenAt, top.end, [this](const Record &record) { readObject(record); });
        else if (top.name == "Connections")
            m_records.forEach(top.childrenAt, top.end, [this](const Record &record) { readConnection(record); });
    });
}

void RyFbxObjects::readObject(const Record &record)
{
    const qint64 idAt = m_records.findProperty(record, 0);
    if (idAt < 0 || m_records.value<char>(idAt) != 'L')
        return;
    const auto id = m_records.value<qint64>(idAt + 1);
    const QByteArray kind = m_records.text(record, 2);
    if (record.name == "Model") {
        readModel(record, id);
    } else if (record.name == "AnimationStack") {
        forProperties(record, [this](const Record &property) { forgetRange(property); });
    } else if (record.name == "Constraint") {
        constraints.append(QString::fromUtf8(nameIn(m_records.text(record, 1))));
    } else if (record.name == "Geometry") {
        (kind == "Shape" ? m_shapes : m_geometries).insert(id, {});
    } else if (record.name == "Deformer" && kind == "BlendShape") {
        m_deformers.insert(id, {});
    } else if (record.name == "Deformer" && kind == "BlendShapeChannel") {
        double value = 0.0;
        m_records.forEach(record.childrenAt, record.end, [this, &value](const Record &below) {
            if (below.name == "DeformPercent")
                value = m_records.number(below, 0) / 100.0;
        });
        m_channels.insert(id, {std::isfinite(value) ? value : 0.0, 0});
    }
}

void RyFbxObjects::readModel(const Record &record, qint64 id)
{
    const QByteArray kind = m_records.text(record, 2);
    Model model;
    model.id = id;
    model.nameAt = m_records.findProperty(record, 1) + 5;
    model.name = nameIn(m_records.text(record, 1));
    // "Root" is the place of a whole skeleton, often at the same point as its first limb.
    model.isLimb = kind == "LimbNode" || kind == "Limb";
    RyFbxTransform transform;
    PlacesOf placesOf;
    const auto read = [&](const Record &property) {
        readOwnProperty(property, QString::fromUtf8(model.name));
        readTransform(property, transform, placesOf);
    };
    forProperties(record, read);
    takeTransform(transform, placesOf, model);
    m_models.push_back(model);
}

template<typename Work>
void RyFbxObjects::forProperties(const Record &object, const Work &work) const
{
    m_records.forEach(object.childrenAt, object.end, [this, &work](const Record &list) {
        if (list.name == "Properties70")
            m_records.forEach(list.childrenAt, list.end, work);
    });
}

/// The importers' library leaves out keys beyond the range of a take, and fails over a node that has none within.
void RyFbxObjects::forgetRange(const Record &property)
{
    const QByteArray name = m_records.text(property, 0);
    const qint64 at = m_records.findProperty(property, 4);
    if ((name == "LocalStart" || name == "LocalStop") && at >= 0 && m_records.value<char>(at) == 'L' &&
        m_records.value<qint64>(at + 1) != 0)
        m_changes.push_back({at + 1, int(sizeof(qint64)), QByteArray(sizeof(qint64), '\0')});
}

/// Each says a name, a type, a label and flags, and behind them its numbers.
void RyFbxObjects::readOwnProperty(const Record &property, const QString &node)
{
    if (!m_records.text(property, 3).contains('U'))
        return;
    const QString name = QString::fromUtf8(m_records.text(property, 0));
    const auto known = m_ownPropertyOf.constFind(name);
    if (known != m_ownPropertyOf.constEnd()) {
        ownProperties[*known].nodes.append(node);
        return;
    }
    m_ownPropertyOf.insert(name, ownProperties.size());
    ownProperties.push_back({name, {node}});
}

void RyFbxObjects::readTransform(const Record &property, RyFbxTransform &transform, PlacesOf &placesOf) const
{
    const QByteArray name = m_records.text(property, 0);
    if (!RyFbxTransform::isKnown(name))
        return;
    const qint64 at[] = {m_records.findProperty(property, 4), m_records.findProperty(property, 5),
                         m_records.findProperty(property, 6)};
    const auto isKind = [this](qint64 place, char kind) { return place >= 0 && m_records.value<char>(place) == kind; };
    if (isKind(at[0], 'I')) {
        transform.add(name, {double(m_records.value<qint32>(at[0] + 1)), 0.0, 0.0});
        placesOf.insert(name, {{at[0] + 1, int(sizeof(qint32))}});
    } else if (isKind(at[0], 'D') && isKind(at[1], 'D') && isKind(at[2], 'D')) {
        RyFbxTransform::Vector value{};
        Places places;
        for (size_t i = 0; i < 3; ++i) {
            value[i] = m_records.value<double>(at[i] + 1);
            places.emplace_back(at[i] + 1, int(sizeof(double)));
        }
        transform.add(name, value);
        placesOf.insert(name, places);
    }
}

void RyFbxObjects::takeTransform(const RyFbxTransform &transform, const PlacesOf &placesOf, Model &model)
{
    if (transform.hasPivot())
        model.pivot = transform.pivot();
    model.scaling = transform.scaling();
    for (const auto &[name, value] : transform.changes()) {
        const Places places = placesOf.value(name);
        for (size_t i = 0; i < places.size(); ++i) {
            QByteArray bytes(places[i].second, '\0'); // a whole number becomes 0
            if (!m_records.isBinary())
                bytes = QByteArray::number(value[i], 'g', 17);
            else if (places.size() == 3)
                qToLittleEndian(value[i], bytes.data());
            m_changes.push_back({places[i].first, places[i].second, bytes});
        }
    }
}

/// Whether what comes next stands on a line that began as a comment.
bool isInComment(std::string_view above)
{
    const size_t from = above.size() - std::min(above.size(), size_t(LongestProperty));
    std::string_view line = above.substr(from);
    const size_t end = line.find_last_of("\r\n");
    if (end == line.npos && from > 0)
        return false;
    line.remove_prefix(end == line.npos ? 0 : end + 1);
    const size_t first = line.find_first_not_of(Blanks);
    return first != line.npos && line[first] == ';';
}

/// Of objects like  Model: 12, "Model::Hips", "LimbNode" {
template<typename Work>
void RyFbxObjects::forNamesInText(const QByteArray &kind, const Work &work) const
{
    const QByteArray before = '"' + kind + "::", head = kind + ':';
    const std::string_view wanted(head.constData(), size_t(head.size()));
    for (int at = m_bytes.indexOf(before); at >= 0; at = m_bytes.indexOf(before, at + 1)) {
        std::string_view above = partOf(m_bytes, 0, at);
        above = above.substr(0, above.find_last_not_of(" \t\r\n,-0123456789") + 1); // without the number
        const size_t beforeHead = above.size() - std::min(above.size(), wanted.size());
        const bool isObject =
            above.ends_with(wanted) &&
            (beforeHead == 0 || std::string_view(" \t\r\n{}").find(above[beforeHead - 1]) != above.npos);
        const int nameAt = at + before.size();
        const std::string_view name = partOf(m_bytes, nameAt, nameAt + LongestProperty);
        const size_t length = name.find('"');
        if (isObject && length != name.npos && !isInComment(above.substr(0, beforeHead)))
            work(nameAt, bytesOf(name.substr(0, length)));
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
    for (size_t i = 0; i < m_models.size(); ++i) {
        const qint64 end = i + 1 < m_models.size() ? m_models[i + 1].nameAt : qint64(m_bytes.size());
        readTransformInText(m_models[i].nameAt, end, m_models[i]);
    }
    forgetRangesInText();
    forNamesInText("Constraint", [this](int, const QByteArray &name) { constraints.append(QString::fromUtf8(name)); });
}

/// Of properties like  P: "LocalStart", "KTime", "Time", "",1924423250
void RyFbxObjects::forgetRangesInText()
{
    for (const char *name : {"\"LocalStart\"", "\"LocalStop\""}) {
        for (int at = m_bytes.indexOf(name); at >= 0; at = m_bytes.indexOf(name, at + 1)) {
            const std::vector<std::string_view> values = valuesOf(partOf(m_bytes, at, at + LongestProperty), 5);
            if (values.size() == 5)
                m_changes.push_back({values[4].data() - m_bytes.constData(), int(values[4].size()), "0"});
        }
    }
}

/// Of properties like  P: "RotationPivot", "Vector3D", "Vector", "",0,12.5,0
void RyFbxObjects::readTransformInText(qint64 from, qint64 to, Model &model)
{
    const QByteArray text = QByteArray::fromRawData(m_bytes.constData(), int(to));
    RyFbxTransform transform;
    PlacesOf placesOf;
    for (int at = text.indexOf("P: \"", int(from)); at >= 0; at = text.indexOf("P: \"", at + 1)) {
        const std::string_view property = partOf(text, at + 3, at + 3 + LongestProperty);
        const QByteArray name = bytesOf(property.substr(1, std::min(property.find('"', 1), property.size()) - 1));
        if (!RyFbxTransform::isKnown(name))
            continue;
        const std::vector<std::string_view> values = valuesOf(property, 7); // a name, a type, a label, flags, numbers
        RyFbxTransform::Vector value{};
        Places places;
        for (size_t i = 4; i < values.size(); ++i) {
            value[places.size()] = bytesOf(values[i]).toDouble();
            places.emplace_back(values[i].data() - m_bytes.constData(), int(values[i].size()));
        }
        transform.add(name, value);
        placesOf.insert(name, places);
    }
    takeTransform(transform, placesOf, model);
}

/// The importers' library would take what is said of the second of two nodes for the first.
void RyFbxObjects::tellApart()
{
    QSet<QByteArray> taken, seen;
    QSet<int> full; // lengths of which no name is free, nor will be
    for (const Model &model : m_models)
        taken.insert(model.name);
    for (Model &model : m_models) {
        const QByteArray own = model.name;
        const bool isKnown = seen.contains(own);
        const QByteArray free = isKnown && !full.contains(own.size()) ? freeName(own.size(), taken) : QByteArray();
        if (!isKnown) {
            seen.insert(own);
        } else if (!free.isEmpty()) {
            taken.insert(free);
            nameOf.insert(QString::fromLatin1(free), QString::fromUtf8(own));
            m_changes.push_back({model.nameAt, free.size(), free});
            model.name = free;
        } else {
            full.insert(own.size());
            if (!own.isEmpty())
                ambiguous.append(QString::fromUtf8(own));
        }
        if (model.pivot)
            pivotOf.insert(QString::fromUtf8(model.name), *model.pivot);
        if (model.scaling != RyForeignScaling::Usual)
            scalingOf.insert(QString::fromUtf8(model.name), model.scaling);
        if (model.isLimb)
            limbs.insert(QString::fromUtf8(model.name));
    }
}

QByteArray RyFbxObjects::changed() const
{
    if (m_changes.empty())
        return m_bytes;
    std::vector<Change> all = m_changes;
    std::stable_sort(all.begin(), all.end(), [](const Change &a, const Change &b) { return a.at < b.at; });
    QByteArray bytes;
    bytes.reserve(m_bytes.size());
    qint64 at = 0;
    for (const Change &change : all) { // those of a text need not be as long as what they replace
        if (change.at < at || change.at + change.size > m_bytes.size())
            continue;
        bytes.append(m_bytes.constData() + at, int(change.at - at)).append(change.bytes);
        at = change.at + change.size;
    }
    bytes.append(m_bytes.constData() + at, int(m_bytes.size() - at));
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
    const qint64 from = m_records.findProperty(record, 1);
    const qint64 to = m_records.findProperty(record, 2);
    if (m_records.text(record, 0) != "OO" || from < 0 || to < 0)
        return;
    const auto id = m_records.value<qint64>(from + 1);
    if (m_geometries.contains(id) || m_deformers.contains(id) || m_channels.contains(id) || m_shapes.contains(id))
        m_below[m_records.value<qint64>(to + 1)].push_back(id);
}
