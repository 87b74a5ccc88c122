#include "rycore/io/gltf/document/RyGltfCursor.h"

#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/io/gltf/file/RyGltfJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

using Json = nlohmann::ordered_json;

namespace {

const Json missingValue(Json::value_t::discarded);

QString shown(const Json &value)
{
    if (value.is_structured())
        return value.is_object() ? QStringLiteral("an object") : QStringLiteral("an array");
    QString text = QString::fromStdString(value.dump(-1, ' ', false, Json::error_handler_t::replace));
    if (text.size() > 40)
        text = text.left(37) + QStringLiteral("...");
    return text;
}

} // namespace

RyGltfCursor::RyGltfCursor(const Json &root) : m_value(&root) {}

QString RyGltfCursor::path() const
{
    QString result;
    for (int i = 0; i < m_depth; ++i) {
        if (m_path[i].key) {
            if (!result.isEmpty())
                result += QLatin1Char('.');
            result += QString::fromUtf8(m_path[i].key);
        } else {
            result += QStringLiteral("[%1]").arg(m_path[i].index);
        }
    }
    return result;
}

void RyGltfCursor::refuse(const QString &reason) const
{
    const QString where = path();
    throw RyGltfError{where.isEmpty() ? reason : where + QStringLiteral(": ") + reason};
}

RyGltfCursor RyGltfCursor::step(const Json *value, const char *key, int index) const
{
    RyGltfCursor result(*value);
    std::copy_n(m_path.begin(), m_depth, result.m_path.begin());
    result.m_depth = m_depth;
    if (m_depth < int(m_path.size()))
        result.m_path[std::size_t(result.m_depth++)] = {key, index};
    return result;
}

bool RyGltfCursor::exists() const
{
    return !m_value->is_discarded();
}

bool RyGltfCursor::isObject() const
{
    return m_value->is_object();
}

bool RyGltfCursor::has(const char *key) const
{
    return RyGltfJson::find(*m_value, key) != nullptr;
}

RyGltfCursor RyGltfCursor::member(const char *key) const
{
    const Json *found = RyGltfJson::find(*m_value, key);
    return step(found ? found : &missingValue, key, -1);
}

RyGltfCursor RyGltfCursor::object(const char *key) const
{
    const RyGltfCursor result = member(key);
    if (result.exists() && !result.m_value->is_object())
        result.refuse(QStringLiteral("is %1, not an object").arg(shown(*result.m_value)));
    return result;
}

RyGltfCursor RyGltfCursor::array(const char *key) const
{
    const RyGltfCursor result = member(key);
    if (result.exists() && !result.m_value->is_array())
        result.refuse(QStringLiteral("is %1, not an array").arg(shown(*result.m_value)));
    return result;
}

int RyGltfCursor::size() const
{
    return m_value->is_array() ? int(m_value->size()) : 0;
}

RyGltfCursor RyGltfCursor::element(int index) const
{
    return step(&(*m_value)[std::size_t(index)], nullptr, index);
}

RyGltfCursor RyGltfCursor::objectAt(int index) const
{
    const RyGltfCursor result = element(index);
    if (!result.m_value->is_object())
        result.refuse(QStringLiteral("is %1, not an object").arg(shown(*result.m_value)));
    return result;
}

bool RyGltfCursor::asCount(std::uint64_t &result) const
{
    constexpr std::uint64_t limit = std::uint64_t(1) << 53;
    if (m_value->is_number_unsigned()) {
        result = m_value->get<std::uint64_t>();
        return result <= limit;
    }
    if (m_value->is_number_integer()) {
        const std::int64_t number = m_value->get<std::int64_t>();
        result = std::uint64_t(number);
        return number >= 0 && result <= limit;
    }
    if (m_value->is_number_float()) {
        const double number = m_value->get<double>();
        if (!(number >= 0.0 && number <= double(limit)) || number != std::floor(number))
            return false;
        result = std::uint64_t(number);
        return true;
    }
    return false;
}

std::uint64_t RyGltfCursor::asSize() const
{
    std::uint64_t result = 0;
    if (!asCount(result))
        refuse(QStringLiteral("%1 is not a valid size").arg(shown(*m_value)));
    return result;
}

std::uint64_t RyGltfCursor::count(const char *key, std::uint64_t absent) const
{
    const RyGltfCursor found = member(key);
    return found.exists() ? found.asSize() : absent;
}

std::uint64_t RyGltfCursor::count(const char *key) const
{
    const RyGltfCursor found = member(key);
    if (!found.exists())
        refuse(QStringLiteral("has no \"%1\"").arg(QString::fromUtf8(key)));
    return found.asSize();
}

int RyGltfCursor::asIndex(int limit, const char *kind) const
{
    std::uint64_t result = 0;
    if (!asCount(result))
        refuse(QStringLiteral("%1 is not the index of a %2").arg(shown(*m_value), QString::fromUtf8(kind)));
    if (result >= std::uint64_t(limit)) {
        refuse(
            QStringLiteral("%1 %2 does not exist (there are %3)").arg(QString::fromUtf8(kind)).arg(result).arg(limit));
    }
    return int(result);
}

int RyGltfCursor::index(const char *key, int limit, const char *kind) const
{
    const RyGltfCursor found = member(key);
    return found.exists() ? found.asIndex(limit, kind) : -1;
}

bool RyGltfCursor::peekIndex(int limit, int &index) const
{
    std::uint64_t result = 0;
    if (!exists() || !asCount(result) || result >= std::uint64_t(limit))
        return false;
    index = int(result);
    return true;
}

bool RyGltfCursor::flag(const char *key) const
{
    const RyGltfCursor found = member(key);
    if (!found.exists())
        return false;
    if (!found.m_value->is_boolean())
        found.refuse(QStringLiteral("%1 is neither true nor false").arg(shown(*found.m_value)));
    return found.m_value->get<bool>();
}

double RyGltfCursor::asNumber() const
{
    if (!m_value->is_number())
        refuse(QStringLiteral("%1 is not a number").arg(shown(*m_value)));
    const double result = m_value->get<double>();
    if (!(std::abs(result) <= Largest))
        refuse(QStringLiteral("%1 is too large").arg(shown(*m_value)));
    return result;
}

double RyGltfCursor::number(const char *key, double absent) const
{
    const RyGltfCursor found = member(key);
    return found.exists() ? found.asNumber() : absent;
}

bool RyGltfCursor::numbers(const char *key, double *out, int count) const
{
    const RyGltfCursor found = array(key);
    if (!found.exists())
        return false;
    if (found.size() != count)
        found.refuse(QStringLiteral("has %1 numbers, not %2").arg(found.size()).arg(count));
    for (int i = 0; i < count; ++i)
        out[i] = found.element(i).asNumber();
    return true;
}

const std::string *RyGltfCursor::rawText(const char *key) const
{
    const RyGltfCursor found = member(key);
    if (!found.exists())
        return nullptr;
    if (!found.m_value->is_string())
        found.refuse(QStringLiteral("%1 is not a text").arg(shown(*found.m_value)));
    return found.m_value->get_ptr<const std::string *>();
}

QString RyGltfCursor::text(const char *key) const
{
    const std::string *raw = rawText(key);
    return raw ? QString::fromUtf8(raw->data(), int(raw->size())) : QString();
}
