#include "FileMutator.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <stdexcept>

namespace {

using Json = nlohmann::json;

constexpr int HeaderSize = 12;
constexpr int ChunkHeaderSize = 8;
constexpr const char *Ours = "RYHOST_rigging";

void gather(const Json &value, const Json::json_pointer &at, std::vector<Json::json_pointer> &places)
{
    if (!at.empty())
        places.push_back(at);
    if (value.is_object()) {
        for (const auto &[key, member] : value.items())
            gather(member, at / key, places);
    }
    for (size_t i = 0; value.is_array() && i < value.size(); ++i)
        gather(value[i], at / i, places);
}

std::vector<Json::json_pointer> placesIn(const Json &value, const Json::json_pointer &at = Json::json_pointer())
{
    std::vector<Json::json_pointer> places;
    gather(value, at, places);
    return places;
}

void appendNumber(QByteArray &bytes, quint32 number)
{
    char little[4];
    qToLittleEndian(number, little);
    bytes.append(little, sizeof little);
}

} // namespace

FileMutator::FileMutator(const QByteArray &bytes, std::mt19937 &random) : m_random(random)
{
    m_isContainer = bytes.startsWith("glTF");
    QByteArray text = bytes;
    if (m_isContainer) {
        const int size = int(qFromLittleEndian<quint32>(bytes.constData() + HeaderSize));
        text = bytes.mid(HeaderSize + ChunkHeaderSize, size);
        m_chunk = bytes.mid(HeaderSize + ChunkHeaderSize + size);
    }
    m_tree = Json::parse(text.toStdString());
}

QByteArray FileMutator::bytes(bool damaged)
{
    QByteArray text = QByteArray::fromStdString(m_tree.dump(-1, ' ', false, Json::error_handler_t::replace));
    QByteArray file = text;
    if (m_isContainer) {
        text.append((4 - text.size() % 4) % 4, ' ');
        file = "glTF";
        appendNumber(file, 2);
        appendNumber(file, quint32(HeaderSize + ChunkHeaderSize + text.size() + m_chunk.size()));
        appendNumber(file, quint32(text.size()));
        file += "JSON" + text + m_chunk;
    }
    for (size_t i = 0, count = damaged ? 1 + below(6) : 0; i < count; ++i) {
        const int at = int(below(size_t(file.size())));
        if (below(3) > 0) {
            file[at] = char(m_random());
            continue;
        }
        // Another digit is the change that reaches furthest.
        const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
        const auto digit = std::find_if(file.begin() + at, file.end(), isDigit);
        if (digit != file.end())
            *digit = char('0' + below(10));
    }
    return file;
}

void FileMutator::write(const QString &path, bool damaged)
{
    QFile file(path);
    const QByteArray written = bytes(damaged);
    if (!file.open(QIODevice::WriteOnly) || file.write(written) != written.size())
        throw std::runtime_error("cannot write the file of the test");
}

/// One of all values, of those below one entry at the top, or of those below our key.
FileMutator::Pointer FileMutator::pickPlace()
{
    std::vector<Pointer> places;
    const size_t kind = below(3);
    if (kind > 0) {
        const std::vector<Pointer> all = placesIn(m_tree);
        const std::string key = Ours;
        std::copy_if(all.begin(), all.end(), std::back_inserter(places), [&](const Pointer &place) {
            return kind == 1 || place.to_string().find(key) != std::string::npos;
        });
    }
    if (places.empty() && m_tree.is_object() && !m_tree.empty()) {
        const auto top = std::next(m_tree.begin(), std::ptrdiff_t(below(m_tree.size())));
        places = placesIn(top.value(), Pointer() / top.key());
    }
    return places.empty() ? Pointer() : places[below(places.size())];
}

void FileMutator::mutateTree()
{
    if (below(5) == 0)
        return markAtRandom();
    const Pointer place = pickPlace();
    if (!place.empty())
        change(m_tree[place.parent_pointer()], place.back());
}

void FileMutator::mutateBelow(const Pointer &place)
{
    if (!m_tree.contains(place))
        return;
    const std::vector<Pointer> places = placesIn(m_tree[place], place);
    const Pointer picked = places[below(places.size())];
    change(m_tree[picked.parent_pointer()], picked.back());
}

void FileMutator::change(Json &parent, const std::string &step)
{
    const bool isList = parent.is_array();
    const size_t index = isList ? size_t(std::stoul(step)) : 0;
    Json &value = isList ? parent[index] : parent[step];
    switch (below(6)) {
    case 0:
    case 1:
        value = value.is_number() ? otherNumber(value) : otherValue(value);
        break;
    case 2:
        value = otherValue(value);
        break;
    case 3:
        if (isList)
            parent.erase(index);
        else
            parent.erase(step);
        break;
    case 4:
        if (isList)
            parent.push_back(Json(value));
        else
            parent[std::next(parent.begin(), std::ptrdiff_t(below(parent.size()))).key()] = Json(value);
        break;
    default: {
        const Pointer other = pickPlace(); // what stands elsewhere
        if (!other.empty())
            value = Json(m_tree[other]);
    }
    }
}

FileMutator::Json FileMutator::otherNumber(const Json &number)
{
    const double largeNumbers[] = {1e30, -1e30, 1e-30, 0.5, 4294967296.0, 9007199254740993.0};
    switch (below(7)) {
    case 0:
        return -1;
    case 3:
        return number.get<double>(); // 3 may stand as 3.0
    case 1:
        return 2147483647u + below(3);
    case 2:
        return largeNumbers[below(std::size(largeNumbers))];
    default:
        return number.is_number_integer() ? Json(below(12)) : Json(double(m_random()) / 1e9 - 2.0);
    }
}

FileMutator::Json FileMutator::otherValue(const Json &value)
{
    switch (below(8)) {
    case 0:
        return nullptr;
    case 1:
        return below(2) == 0;
    case 2:
        return below(2) == 0 ? "" : "text";
    case 3:
        return Json::array();
    case 4:
        return Json::object();
    case 5:
        return Json::array({value, value});
    case 6:
        return Json{{"index", value}};
    default:
        return below(12);
    }
}

/// What our key may say, where it was not said, or not so.
void FileMutator::markAtRandom()
{
    const auto number = [this] { return int(below(12)) - 1; };
    std::vector<Json> figures(below(4));
    for (Json &figure : figures)
        figure = {{"of", number()}, {"name", "made up"}, {"bindings", {number(), number(), number()}}};
    Json map = Json::array();
    for (int i = 0; i < 12; ++i)
        map.push_back(below(3) == 0 ? 0.0 : double(below(40)) / 10.0 - 2.0);
    const std::pair<const char *, Json> marks[] = {
        {"nodes", {{"figure", true}}},  {"nodes", {{"removed", true}}},   {"skins", {{"removed", true}}},
        {"skins", {{"toFigure", map}}}, {"accessors", {{"made", true}}},  {"bufferViews", {{"made", true}}},
        {"meshes", {{"made", true}}},   {"materials", {{"made", true}}},  {"textures", {{"made", true}}},
        {"images", {{"made", true}}},   {nullptr, {{"figures", figures}}}};
    auto [list, mark] = marks[below(std::size(marks))];
    mark["version"] = 1;
    Json *holder = &m_tree;
    if (list) {
        if (!m_tree.contains(list) || !m_tree[list].is_array() || m_tree[list].empty())
            return;
        holder = &m_tree[list][below(m_tree[list].size())];
    }
    if (!holder->is_object())
        return;
    Json &extras = (*holder)["extras"];
    if (!extras.is_object())
        extras = Json::object();
    extras[Ours] = std::move(mark);
}
