#pragma once

#include <nlohmann/json_fwd.hpp>

#include <QString>

#include <functional>
#include <optional>
#include <string>

/// The lists of a document that indices point into, in an order in which what points stands before what it points at
/// (nodes point at nodes as well).
enum class RyGltfList {
    Scenes,
    Nodes,
    Animations,
    Skins,
    Cameras,
    Lights,      // of KHR_lights_punctual
    ImageLights, // of EXT_lights_image_based
    Meshes,
    Materials,
    Variants, // of KHR_materials_variants
    Textures,
    Samplers,
    Images,
    Accessors,
    BufferViews,
    Buffers,
    Packets // of KHR_xmp_json_ld
};
constexpr int ryGltfListCount = int(RyGltfList::Packets) + 1;

/// All places in a document where an index into one of its lists stands: those of the format itself and of the
/// extensions that are known here.
namespace RyGltfReferences {

using Json = nlohmann::ordered_json;

/// Where a list lies in the tree; null where there is none. `make`: it is added then, and
/// takes the place of what is no list.
const Json *findList(const Json &tree, RyGltfList list);
Json &makeList(Json &tree, RyGltfList list);

/// Whether a value can be an index: a whole number, which may be written as 3.0, as readers take it.
bool isIndex(const Json &value);

/// Called with every index that stands in an entry of a list, and the list it points into. Indices of a wrong kind are
/// passed over. With `only`, those into other lists are passed over where that saves time.
using Visit = std::function<void(RyGltfList to, Json &index)>;
using ConstVisit = std::function<void(RyGltfList to, const Json &index)>;
void visit(RyGltfList list, Json &entry, const Visit &visit);
void visit(RyGltfList list, const Json &entry, const ConstVisit &visit, std::optional<RyGltfList> only = {});

/// A list that a member of an object holds; an empty one where there is none.
const Json &listIn(const Json &object, const char *key);

/// A pointer of KHR_animation_pointer ("/materials/3/emissiveFactor") taken apart: the list and the index that it
/// begins with, and what follows them. False for one that begins with neither.
bool splitPointer(const std::string &pointer, RyGltfList &list, int &index, std::string &rest);
std::string joinPointer(RyGltfList list, int index, const std::string &rest);

/// Whether all indices that an extension can hold are known here.
bool knowsExtension(const QString &name);

} // namespace RyGltfReferences
