#include "rycore/io/gltf/file/RyGltfJson.h"

#include "rycore/io/gltf/file/RyGltfError.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>
#include <vector>

using Json = nlohmann::ordered_json;

namespace {

QString reasonOf(const std::exception &exception)
{
    QString text = QString::fromUtf8(exception.what());
    const int prefixEnd = text.indexOf(QLatin1String("] "));
    if (text.startsWith(QLatin1Char('[')) && prefixEnd > 0)
        text.remove(0, prefixEnd + 2);
    return text;
}

/// Receives the parser's events and builds the tree. Members are appended unseen: looking each one up would take
/// quadratic time in an object of many members.
class TreeBuilder
{
public:
    explicit TreeBuilder(Json &root) : m_root(root) {}

    bool null() { return add(Json(nullptr)) != nullptr; }
    bool boolean(bool value) { return add(Json(value)) != nullptr; }
    bool number_integer(Json::number_integer_t value) { return add(Json(value)) != nullptr; }
    bool number_unsigned(Json::number_unsigned_t value) { return add(Json(value)) != nullptr; }
    bool number_float(Json::number_float_t value, const std::string &) { return add(Json(value)) != nullptr; }
    bool string(std::string &value) { return add(Json(std::move(value))) != nullptr; }
    bool binary(Json::binary_t &) { return false; }
    bool start_object(std::size_t) { return open(Json::object()); }
    bool end_object() { return close(); }
    bool start_array(std::size_t) { return open(Json::array()); }
    bool end_array() { return close(); }

    bool key(std::string &name)
    {
        m_key = std::move(name);
        return true;
    }

    bool parse_error(std::size_t, const std::string &, const Json::exception &exception)
    {
        m_error = reasonOf(exception);
        return false;
    }

    const QString &error() const { return m_error; }

private:
    Json *add(Json &&value)
    {
        if (m_open.empty()) {
            m_root = std::move(value);
            return &m_root;
        }
        Json &parent = *m_open.back();
        if (parent.is_array()) {
            auto &elements = *parent.get_ptr<Json::array_t *>();
            elements.push_back(std::move(value));
            return &elements.back();
        }
        auto &members = *parent.get_ptr<Json::object_t *>();
        if (members.size() == members.capacity())
            RyGltfJson::makeRoom(parent);
        members.emplace_back(std::move(m_key), std::move(value));
        return &members.back().second;
    }

    bool open(Json &&value)
    {
        if (int(m_open.size()) >= RyGltfJson::maximumDepth) {
            m_error = QStringLiteral("objects and arrays stand more than %1 deep in one another")
                          .arg(RyGltfJson::maximumDepth);
            return false;
        }
        m_open.push_back(add(std::move(value)));
        return true;
    }

    bool close()
    {
        m_open.pop_back();
        return true;
    }

    Json &m_root;
    std::vector<Json *> m_open;
    std::string m_key;
    QString m_error;
};

} // namespace

Json RyGltfJson::parse(std::string_view text)
{
    if (text.substr(0, 3) == "\xef\xbb\xbf")
        text.remove_prefix(3);
    while (!text.empty() && text.back() == '\0')
        text.remove_suffix(1);
    Json root;
    TreeBuilder builder(root);
    if (!Json::sax_parse(text.data(), text.data() + text.size(), &builder))
        throw RyGltfError{QStringLiteral("the JSON text cannot be read: %1").arg(builder.error())};
    if (!root.is_object())
        throw RyGltfError{QStringLiteral("the JSON text is not an object")};
    return root;
}

const Json *RyGltfJson::find(const Json &object, std::string_view key)
{
    const auto *members = object.get_ptr<const Json::object_t *>();
    if (!members)
        return nullptr;
    for (const auto &[name, value] : *members) {
        if (name == key)
            return &value;
    }
    return nullptr;
}

Json *RyGltfJson::find(Json &object, std::string_view key)
{
    return const_cast<Json *>(find(std::as_const(object), key));
}

void RyGltfJson::makeRoom(Json &object)
{
    auto &members = object.get_ref<Json::object_t &>();
    Json::object_t larger;
    larger.reserve(std::max<std::size_t>(4, 2 * members.size()));
    for (auto &[key, value] : members)
        larger.emplace_back(key, std::move(value));
    members.swap(larger);
}

void RyGltfJson::clear(Json &tree)
{
    if (!tree.is_structured())
        return;
    if (auto *elements = tree.get_ptr<Json::array_t *>()) {
        for (Json &each : *elements)
            clear(each);
    } else {
        for (auto &[key, each] : tree.get_ref<Json::object_t &>())
            clear(each);
    }
    tree.clear();
}

RyGltfJson::Layout RyGltfJson::layoutOf(std::string_view text)
{
    std::size_t at = text.find('{');
    if (at == std::string_view::npos)
        return {};
    ++at;
    if (at < text.size() && text[at] == '\r')
        ++at;
    if (at >= text.size() || text[at] != '\n')
        return {};
    ++at;
    const std::size_t end = text.find_first_not_of(" \t", at);
    if (end == std::string_view::npos)
        return {};
    const int width = int(std::min<std::size_t>(end - at, 16));
    return {width, width > 0 ? text[at] : ' '};
}

QByteArray RyGltfJson::dump(const Json &tree, const Json &changed, Layout layout)
{
    const bool hasLines = layout.width >= 0;
    const std::string lineBreak = hasLines ? '\n' + std::string(std::size_t(layout.width), layout.character) : "";
    QByteArray text("{");
    const auto add = [&](const std::string &key, const Json &value) {
        const auto textOf = [&layout](const Json &json) {
            return json.dump(layout.width, layout.character, false, Json::error_handler_t::strict);
        };
        text.append(text.size() > 1 ? "," : "").append(lineBreak.c_str());
        text.append(textOf(Json(key)).c_str()).append(hasLines ? ": " : ":");
        // Text breaks its lines nowhere within a string.
        const std::string member = textOf(value);
        std::size_t from = 0;
        for (std::size_t end; hasLines && (end = member.find('\n', from)) != std::string::npos; from = end + 1)
            text.append(member.data() + from, int(end - from)).append(lineBreak.c_str());
        text.append(member.data() + from, int(member.size() - from));
    };
    try {
        for (const auto &[key, value] : tree.get_ref<const Json::object_t &>()) {
            const auto other = changed.find(key);
            add(key, other == changed.end() ? value : *other);
        }
        for (const auto &[key, value] : changed.get_ref<const Json::object_t &>()) {
            if (!tree.contains(key))
                add(key, value);
        }
    } catch (const Json::exception &exception) {
        throw RyGltfError{reasonOf(exception)};
    }
    return text.append(hasLines && text.size() > 1 ? "\n}" : "}");
}
