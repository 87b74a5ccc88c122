#pragma once

#include <nlohmann/json_fwd.hpp>

#include <QByteArray>

#include <string_view>

/// Text to tree and back. The order of members is kept, also members that stand twice.
class RyGltfJson
{
public:
    /// Objects and arrays may stand this deep in one another; a deeper text is refused before it costs any stack.
    static constexpr int maximumDepth = 512;

    /// Throws RyGltfError with line and column of what is wrong. A byte order mark and trailing zeros are passed over.
    static nlohmann::ordered_json parse(std::string_view text);

    /// The member of an object; null where there is none, or no object. Compares lengths first, which the library does
    /// not: most of reading a tree is looking members up.
    static const nlohmann::ordered_json *find(const nlohmann::ordered_json &object, std::string_view key);
    static nlohmann::ordered_json *find(nlohmann::ordered_json &object, std::string_view key);

    /// Makes room for as many members again. Where there is none, an object grows by copying all that its members hold,
    /// which in the root is the whole tree.
    static void makeRoom(nlohmann::ordered_json &object);

    /// Empties a tree from its leaves up. Left to its destructor it is first gathered into one list, value by value.
    static void clear(nlohmann::ordered_json &tree);

    /// How a text is laid out: `width` characters `character` for each level, or -1 for all in one line.
    struct Layout
    {
        int width = -1;
        char character = ' ';
    };
    static Layout layoutOf(std::string_view text);
    /// With the members of `changed` in place of those of the tree, or behind them. Throws RyGltfError when a text is
    /// not UTF-8.
    static QByteArray dump(const nlohmann::ordered_json &tree, const nlohmann::ordered_json &changed, Layout layout);
};
