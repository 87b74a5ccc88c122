#pragma once

#include <nlohmann/json_fwd.hpp>

#include <QString>

#include <array>
#include <cstdint>
#include <string>

/// A value of the tree together with the way to it, so that whoever finds it wrong can say where it stands.
/// Every getter checks the kind of what it finds and throws RyGltfError with the path; members that are absent give
/// the default. Copies are cheap and stay valid as long as the tree does.
class RyGltfCursor
{
public:
    explicit RyGltfCursor(const nlohmann::ordered_json &root);

    const nlohmann::ordered_json &value() const { return *m_value; }
    /// "skins[0].joints[3]", empty for the root.
    QString path() const;
    [[noreturn]] void refuse(const QString &reason) const;

    bool exists() const;
    bool isObject() const;
    bool has(const char *key) const;
    /// The member as it is; one that does not exist where there is none.
    RyGltfCursor member(const char *key) const;
    /// The member, which must be an object (an array) where it exists.
    RyGltfCursor object(const char *key) const;
    RyGltfCursor array(const char *key) const;
    /// Elements of an array; 0 where it does not exist.
    int size() const;
    RyGltfCursor element(int index) const;
    /// The same, and the element must be an object.
    RyGltfCursor objectAt(int index) const;

    /// A whole number from 0 to 2^53.
    std::uint64_t count(const char *key, std::uint64_t absent) const;
    std::uint64_t count(const char *key) const;
    /// An index below `limit`; -1 where there is none. `kind` names what it points at ("node").
    int index(const char *key, int limit, const char *kind) const;
    /// This value itself as such an index.
    int asIndex(int limit, const char *kind) const;
    /// True, and the index, when this is a whole number below `limit`; never throws.
    bool peekIndex(int limit, int &index) const;
    bool flag(const char *key) const;
    static constexpr double Largest = 1e30;
    /// A finite number no larger than `Largest`.
    double asNumber() const;
    double number(const char *key, double absent) const;
    /// True when the member exists, which must then hold exactly `count` numbers.
    bool numbers(const char *key, double *out, int count) const;
    QString text(const char *key) const;
    /// The text as it stands; null where there is none.
    const std::string *rawText(const char *key) const;

private:
    struct Segment
    {
        const char *key;
        int index;
    };
    RyGltfCursor step(const nlohmann::ordered_json *value, const char *key, int index) const;
    bool asCount(std::uint64_t &result) const;
    std::uint64_t asSize() const;

    const nlohmann::ordered_json *m_value;
    std::array<Segment, 10> m_path;
    int m_depth = 0;
};
