#include "evaluator/GltfDifferences.h"

#include <nlohmann/json.hpp>

#include <set>

using nlohmann::json;

namespace {

std::vector<std::string> split(const std::string &path)
{
    std::vector<std::string> steps;
    for (std::size_t at = 0; at < path.size();) {
        std::size_t end = path.find('/', at + 1);
        end = end == std::string::npos ? path.size() : end;
        steps.push_back(path.substr(at + 1, end - at - 1));
        at = end;
    }
    return steps;
}

bool matches(const std::vector<std::string> &pattern, const std::vector<std::string> &path)
{
    if (pattern.size() != path.size())
        return false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != "*" && pattern[i] != path[i])
            return false;
    }
    return true;
}

using Patterns = std::vector<std::vector<std::string>>;

void compare(const json *a, const json *b, std::vector<std::string> &path, const Patterns &leaveOut,
             std::vector<std::string> &found)
{
    for (const auto &pattern : leaveOut) {
        if (matches(pattern, path))
            return;
    }
    // A container that one side lacks is gone through as well: what it holds may be left out.
    const json *present = a ? a : b;
    const bool sameKind = a && b ? (a->is_object() && b->is_object()) || (a->is_array() && b->is_array())
                                 : present->is_structured() && !present->empty();
    if (!sameKind) {
        if (!a || !b || *a != *b) {
            std::string pointer;
            for (const std::string &step : path)
                pointer += '/' + step;
            found.push_back(pointer);
        }
        return;
    }
    std::set<std::string> keys;
    const bool isObject = present->is_object();
    for (const json *side : {a, b}) {
        if (!side)
            continue;
        if (isObject) {
            for (const auto &[key, value] : side->items())
                keys.insert(key);
        } else {
            for (std::size_t i = 0; i < side->size(); ++i)
                keys.insert(std::to_string(i));
        }
    }
    const auto at = [isObject](const json *side, const std::string &key) -> const json * {
        if (!side)
            return nullptr;
        if (isObject)
            return side->contains(key) ? &(*side)[key] : nullptr;
        const std::size_t index = std::stoul(key);
        return index < side->size() ? &(*side)[index] : nullptr;
    };
    for (const std::string &key : keys) {
        path.push_back(key);
        compare(at(a, key), at(b, key), path, leaveOut, found);
        path.pop_back();
    }
}

} // namespace

std::vector<std::string> gltfDifferences(const json &a, const json &b, const std::vector<std::string> &leaveOut)
{
    Patterns patterns;
    for (const std::string &path : leaveOut)
        patterns.push_back(split(path));
    std::vector<std::string> found;
    std::vector<std::string> path;
    compare(&a, &b, path, patterns, found);
    return found;
}
