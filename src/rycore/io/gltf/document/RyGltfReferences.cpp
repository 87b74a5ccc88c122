#include "rycore/io/gltf/document/RyGltfReferences.h"

#include "rycore/io/gltf/file/RyGltfJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

using Json = RyGltfReferences::Json;

namespace {

/// The way to each list: keys one below the other.
const std::array<std::vector<std::string>, ryGltfListCount> listKeys{{
    {"scenes"},
    {"nodes"},
    {"animations"},
    {"skins"},
    {"cameras"},
    {"extensions", "KHR_lights_punctual", "lights"},
    {"extensions", "EXT_lights_image_based", "lights"},
    {"meshes"},
    {"materials"},
    {"extensions", "KHR_materials_variants", "variants"},
    {"textures"},
    {"samplers"},
    {"images"},
    {"accessors"},
    {"bufferViews"},
    {"buffers"},
    {"extensions", "KHR_xmp_json_ld", "packets"},
}};

/// Walks through one entry, constant or not.
template<class Value, class Visit>
class Walk
{
public:
    explicit Walk(const Visit &visit, std::optional<RyGltfList> only = {}) : m_visit(visit), m_only(only) {}

    void visitEntry(RyGltfList list, Value &entry)
    {
        visitPacket(entry);
        switch (list) {
        case RyGltfList::Scenes:
            visitAll(entry, "nodes", RyGltfList::Nodes);
            visitOf(extension(entry, "EXT_lights_image_based"), "light", RyGltfList::ImageLights);
            break;
        case RyGltfList::Nodes:
            visitNode(entry);
            break;
        case RyGltfList::Animations:
            visitAnimation(entry);
            break;
        case RyGltfList::Skins:
            visitOf(&entry, "inverseBindMatrices", RyGltfList::Accessors);
            visitOf(&entry, "skeleton", RyGltfList::Nodes);
            visitAll(entry, "joints", RyGltfList::Nodes);
            break;
        case RyGltfList::ImageLights:
            forEach(member(entry, "specularImages"), [this](Value &level) {
                forEach(&level, [this](Value &image) { visitIndex(image, RyGltfList::Images); });
            });
            break;
        case RyGltfList::Meshes:
            forEach(member(entry, "primitives"), [this](Value &primitive) { visitPrimitive(primitive); });
            break;
        case RyGltfList::Materials:
            visitTextures(entry);
            break;
        case RyGltfList::Textures:
            visitOf(&entry, "sampler", RyGltfList::Samplers);
            visitOf(&entry, "source", RyGltfList::Images);
            for (const char *name : {"KHR_texture_basisu", "EXT_texture_webp", "EXT_texture_avif", "MSFT_texture_dds"})
                visitOf(extension(entry, name), "source", RyGltfList::Images);
            break;
        case RyGltfList::Images:
            visitOf(&entry, "bufferView", RyGltfList::BufferViews);
            break;
        case RyGltfList::Accessors:
            visitOf(&entry, "bufferView", RyGltfList::BufferViews);
            for (const char *part : {"indices", "values"}) {
                if (Value *sparse = member(entry, "sparse"))
                    visitOf(member(*sparse, part), "bufferView", RyGltfList::BufferViews);
            }
            break;
        case RyGltfList::BufferViews:
            visitOf(&entry, "buffer", RyGltfList::Buffers);
            visitOf(extension(entry, "EXT_meshopt_compression"), "buffer", RyGltfList::Buffers);
            break;
        case RyGltfList::Cameras:
        case RyGltfList::Lights:
        case RyGltfList::Variants:
        case RyGltfList::Samplers:
        case RyGltfList::Buffers:
        case RyGltfList::Packets:
            break;
        }
    }

private:
    static Value *member(Value &object, const char *key) { return RyGltfJson::find(object, key); }

    static Value *extension(Value &object, const char *name)
    {
        Value *extensions = member(object, "extensions");
        return extensions ? member(*extensions, name) : nullptr;
    }

    template<class Each>
    static void forEach(Value *list, const Each &each)
    {
        for (std::size_t i = 0; list && list->is_array() && i < list->size(); ++i)
            each((*list)[i]);
    }

    void visitIndex(Value &index, RyGltfList to)
    {
        if (RyGltfReferences::isIndex(index))
            m_visit(to, index);
    }

    void visitOf(Value *object, const char *key, RyGltfList to)
    {
        if (Value *index = object ? member(*object, key) : nullptr)
            visitIndex(*index, to);
    }

    void visitAll(Value &object, const char *key, RyGltfList to)
    {
        forEach(member(object, key), [this, to](Value &index) { visitIndex(index, to); });
    }

    /// Every member is an index: the attributes of a primitive.
    void visitMembers(Value *object, RyGltfList to)
    {
        if (!object || !object->is_object())
            return;
        for (Value &index : *object)
            visitIndex(index, to);
    }

    void visitPacket(Value &entry) { visitOf(extension(entry, "KHR_xmp_json_ld"), "packet", RyGltfList::Packets); }

    void visitNode(Value &node)
    {
        visitOf(&node, "mesh", RyGltfList::Meshes);
        visitOf(&node, "skin", RyGltfList::Skins);
        visitOf(&node, "camera", RyGltfList::Cameras);
        visitAll(node, "children", RyGltfList::Nodes);
        visitOf(extension(node, "KHR_lights_punctual"), "light", RyGltfList::Lights);
        if (Value *instancing = extension(node, "EXT_mesh_gpu_instancing"))
            visitMembers(member(*instancing, "attributes"), RyGltfList::Accessors);
    }

    void visitAnimation(Value &animation)
    {
        if (m_only != RyGltfList::Accessors) {
            forEach(member(animation, "channels"), [this](Value &channel) {
                if (Value *target = member(channel, "target"))
                    visitOf(target, "node", RyGltfList::Nodes);
            });
        }
        forEach(member(animation, "samplers"), [this](Value &sampler) {
            visitOf(&sampler, "input", RyGltfList::Accessors);
            visitOf(&sampler, "output", RyGltfList::Accessors);
        });
    }

    void visitPrimitive(Value &primitive)
    {
        visitMembers(member(primitive, "attributes"), RyGltfList::Accessors);
        visitOf(&primitive, "indices", RyGltfList::Accessors);
        visitOf(&primitive, "material", RyGltfList::Materials);
        forEach(member(primitive, "targets"), [this](Value &target) { visitMembers(&target, RyGltfList::Accessors); });
        visitOf(extension(primitive, "KHR_draco_mesh_compression"), "bufferView", RyGltfList::BufferViews);
        if (Value *variants = extension(primitive, "KHR_materials_variants")) {
            forEach(member(*variants, "mappings"), [this](Value &mapping) {
                visitOf(&mapping, "material", RyGltfList::Materials);
                visitAll(mapping, "variants", RyGltfList::Variants);
            });
        }
    }

    /// Textures of a material and of its extensions are members whose names end so, each with an index.
    void visitTextures(Value &object)
    {
        static const std::string ending = "Texture";
        if (!object.is_object())
            return;
        for (auto at = object.begin(); at != object.end(); ++at) {
            const std::string &key = at.key();
            if (key == "extras" || !at.value().is_object())
                continue;
            const bool isTexture =
                key.size() >= ending.size() && key.compare(key.size() - ending.size(), ending.size(), ending) == 0;
            if (isTexture)
                visitOf(&at.value(), "index", RyGltfList::Textures);
            else
                visitTextures(at.value());
        }
    }

    const Visit &m_visit;
    std::optional<RyGltfList> m_only;
};

} // namespace

const Json *RyGltfReferences::findList(const Json &tree, RyGltfList list)
{
    const Json *at = &tree;
    for (const std::string &key : listKeys[std::size_t(list)]) {
        if (!at->is_object())
            return nullptr;
        const auto found = at->find(key);
        if (found == at->end())
            return nullptr;
        at = &*found;
    }
    return at->is_array() ? at : nullptr;
}

Json &RyGltfReferences::makeList(Json &tree, RyGltfList list)
{
    Json *at = &tree;
    for (const std::string &key : listKeys[std::size_t(list)]) {
        if (!at->is_object())
            *at = Json::object();
        at = &(*at)[key];
    }
    if (!at->is_array())
        *at = Json::array();
    return *at;
}

bool RyGltfReferences::isIndex(const Json &value)
{
    constexpr double Limit = 9007199254740992.0; // 2^53
    if (!value.is_number())
        return false;
    const double number = value.get<double>();
    return number >= 0.0 && number <= Limit && number == std::floor(number);
}

void RyGltfReferences::visit(RyGltfList list, Json &entry, const Visit &visit)
{
    Walk<Json, Visit>(visit).visitEntry(list, entry);
}

void RyGltfReferences::visit(RyGltfList list, const Json &entry, const ConstVisit &visit,
                             std::optional<RyGltfList> only)
{
    Walk<const Json, ConstVisit>(visit, only).visitEntry(list, entry);
}

const RyGltfReferences::Json &RyGltfReferences::listIn(const Json &object, const char *key)
{
    static const Json none = Json::array();
    const Json *found = RyGltfJson::find(object, key);
    return found && found->is_array() ? *found : none;
}

bool RyGltfReferences::splitPointer(const std::string &pointer, RyGltfList &list, int &index, std::string &rest)
{
    for (int i = 0; i < ryGltfListCount; ++i) {
        const std::string prefix = joinPointer(RyGltfList(i), -1, {});
        if (pointer.compare(0, prefix.size(), prefix) != 0)
            continue;
        const std::size_t end = std::min(pointer.find('/', prefix.size()), pointer.size());
        const std::string number = pointer.substr(prefix.size(), end - prefix.size());
        if (number.empty() || number.size() > 9 || number.find_first_not_of("0123456789") != std::string::npos)
            return false;
        list = RyGltfList(i);
        index = std::stoi(number);
        rest = pointer.substr(end);
        return true;
    }
    return false;
}

std::string RyGltfReferences::joinPointer(RyGltfList list, int index, const std::string &rest)
{
    std::string pointer = "/";
    for (const std::string &key : listKeys[std::size_t(list)])
        pointer += key + "/";
    return index < 0 ? pointer : pointer + std::to_string(index) + rest;
}

bool RyGltfReferences::knowsExtension(const QString &name)
{
    static const QString names[] = {
        QStringLiteral("KHR_texture_transform"),      QStringLiteral("KHR_texture_basisu"),
        QStringLiteral("EXT_texture_webp"),           QStringLiteral("EXT_texture_avif"),
        QStringLiteral("MSFT_texture_dds"),           QStringLiteral("KHR_lights_punctual"),
        QStringLiteral("EXT_lights_image_based"),     QStringLiteral("KHR_mesh_quantization"),
        QStringLiteral("KHR_animation_pointer"),      QStringLiteral("KHR_xmp_json_ld"),
        QStringLiteral("EXT_mesh_gpu_instancing"),    QStringLiteral("EXT_meshopt_compression"),
        QStringLiteral("KHR_draco_mesh_compression"),
    };
    // What KHR_materials_... point at are textures, and the variants.
    return name.startsWith(QLatin1String("KHR_materials_")) ||
           std::find(std::begin(names), std::end(names), name) != std::end(names);
}
