#pragma once

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/math/RyVec3.h"

#include <nlohmann/json.hpp>

/// Our key in the extras of a glTF file, and careful ways to read below it: members that are not what they should be
/// read as absent.
namespace RyExtrasJson {

using Json = nlohmann::ordered_json;

constexpr const char *Key = RyGltfDocument::ExtrasKey;
constexpr const char *ReplacedKey = "RYHOST_replaced"; // extras of others that were no object
constexpr int Version = RyGltfDocument::ExtrasVersion;

/// A member of an object; null when there is none.
const Json *find(const Json &object, const char *key);
/// What stands under our key in the extras of a holder; null when there is nothing of our version.
const Json *ours(const Json &holder);
/// An entry of one of the file's lists; null outside of it.
const Json *entry(const Json &tree, const char *list, int index);
/// Puts something under our key; other extras stay. Null takes it away, and extras that are empty then with it. Extras
/// that are no object stand beside it meanwhile, and come back when it goes.
void store(Json &holder, Json value);
/// False for anything but three finite numbers.
bool readVector(const Json *value, RyVec3 &v);
Json vectorJson(const RyVec3 &v);

} // namespace RyExtrasJson
