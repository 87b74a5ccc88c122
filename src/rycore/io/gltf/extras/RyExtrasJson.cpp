#include "rycore/io/gltf/extras/RyExtrasJson.h"

#include "rycore/io/gltf/file/RyGltfJson.h"

#include <cmath>

using Json = RyExtrasJson::Json;

const Json *RyExtrasJson::find(const Json &object, const char *key)
{
    return RyGltfJson::find(object, key);
}

const Json *RyExtrasJson::ours(const Json &holder)
{
    const Json *extras = find(holder, "extras");
    const Json *ours = extras ? find(*extras, Key) : nullptr;
    const Json *version = ours ? find(*ours, "version") : nullptr;
    return version && version->is_number_integer() && version->get<int>() == Version ? ours : nullptr;
}

const Json *RyExtrasJson::entry(const Json &tree, const char *list, int index)
{
    const Json *entries = find(tree, list);
    return entries && entries->is_array() && index >= 0 && size_t(index) < entries->size() ? &(*entries)[size_t(index)]
                                                                                           : nullptr;
}

void RyExtrasJson::store(Json &holder, Json value)
{
    const Json *known = ours(holder);
    if (known && find(*known, "made")) { // by us, whatever else is said of it
        if (value.is_null())
            value = Json{{"version", Version}};
        value["made"] = true;
    }
    if (value.is_null()) {
        const auto extras = holder.find("extras");
        if (extras == holder.end() || !extras->is_object() || extras->erase(Key) == 0)
            return;
        if (extras->empty()) {
            holder.erase("extras");
        } else if (const auto replaced = extras->find(ReplacedKey); replaced != extras->end() && extras->size() == 1) {
            Json before = std::move(*replaced);
            *extras = std::move(before);
        }
        return;
    }
    const bool hadExtras = holder.contains("extras");
    if (const auto *members = holder.get_ptr<const Json::object_t *>();
        !hadExtras && members && members->size() == members->capacity()) {
        RyGltfJson::makeRoom(holder);
    }
    Json &extras = holder["extras"];
    if (!extras.is_object()) {
        Json before = std::move(extras);
        extras = Json::object();
        if (hadExtras)
            extras[ReplacedKey] = std::move(before);
    }
    extras[Key] = std::move(value);
}

bool RyExtrasJson::readVector(const Json *value, RyVec3 &v)
{
    if (!value || !value->is_array() || value->size() != 3)
        return false;
    for (int axis = 0; axis < 3; ++axis) {
        const Json &number = (*value)[size_t(axis)];
        if (!number.is_number() || !std::isfinite(number.get<double>()))
            return false;
        v[axis] = number.get<float>();
    }
    return true;
}

Json RyExtrasJson::vectorJson(const RyVec3 &v)
{
    return Json::array({v.x, v.y, v.z});
}
