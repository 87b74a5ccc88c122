#include "rycore/io/gltf/extras/RyTreeExtras.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"

#include <cmath>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

/// What is stored in an entry of a list, with our version at least, to add to.
Json storedOrNew(const Json &holder)
{
    const Json *stored = RyExtrasJson::ours(holder);
    return stored ? *stored : Json{{"version", RyExtrasJson::Version}};
}

const Json *primitiveJson(const RyGltfDocument &document, int mesh, int primitive)
{
    const Json *entry = RyExtrasJson::entry(document.json(), "meshes", mesh);
    return entry ? RyExtrasJson::entry(*entry, "primitives", primitive) : nullptr;
}

} // namespace

void RyTreeExtras::markRemoved(RyGltfDocument &document, const char *list, int index)
{
    RyExtrasJson::store(document.json()[list][size_t(index)],
                        Json{{"version", RyExtrasJson::Version}, {"removed", true}});
}

bool RyTreeExtras::isRemoved(const RyGltfDocument &document, const char *list, int index)
{
    const Json *entry = RyExtrasJson::entry(document.json(), list, index);
    const Json *ours = entry ? RyExtrasJson::ours(*entry) : nullptr;
    const Json *removed = ours ? find(*ours, "removed") : nullptr;
    return removed && *removed == Json(true);
}

void RyTreeExtras::markFigure(RyGltfDocument &document, int node)
{
    RyExtrasJson::store(document.json()["nodes"][size_t(node)],
                        Json{{"version", RyExtrasJson::Version}, {"figure", true}});
}

bool RyTreeExtras::isFigure(const RyGltfDocument &document, int node)
{
    const Json *entry = RyExtrasJson::entry(document.json(), "nodes", node);
    const Json *ours = entry ? RyExtrasJson::ours(*entry) : nullptr;
    const Json *figure = ours ? find(*ours, "figure") : nullptr;
    return figure && *figure == Json(true);
}

void RyTreeExtras::storeToFigure(RyGltfDocument &document, int skin, const RyAffine &toFigure)
{
    Json numbers = Json::array();
    for (const auto &row : toFigure.m) {
        for (const double number : row)
            numbers.push_back(number);
    }
    Json &holder = document.json()["skins"][size_t(skin)];
    Json ours = storedOrNew(holder);
    ours["toFigure"] = std::move(numbers);
    RyExtrasJson::store(holder, std::move(ours));
}

bool RyTreeExtras::findToFigure(const RyGltfDocument &document, int skin, RyAffine &toFigure)
{
    const Json *entry = RyExtrasJson::entry(document.json(), "skins", skin);
    const Json *ours = entry ? RyExtrasJson::ours(*entry) : nullptr;
    const Json *numbers = ours ? find(*ours, "toFigure") : nullptr;
    if (!numbers || !numbers->is_array() || numbers->size() != 12)
        return false;
    RyAffine map, inverse;
    for (size_t i = 0; i < 12; ++i) {
        if (!(*numbers)[i].is_number() || !std::isfinite((*numbers)[i].get<double>()))
            return false;
        map.m[i / 3][i % 3] = (*numbers)[i].get<double>();
    }
    if (!map.invert(inverse))
        return false;
    toFigure = map;
    return true;
}

/// A list of numbers in the extras of a primitive; an empty one is taken away.
static void storeList(RyGltfDocument &document, int mesh, int primitive, const char *key, const std::vector<int> &list)
{
    Json &holder = document.json()["meshes"][size_t(mesh)]["primitives"][size_t(primitive)];
    Json ours = storedOrNew(holder);
    if (!list.empty())
        ours[key] = list;
    else
        ours.erase(key);
    RyExtrasJson::store(holder, ours.size() > 1 ? std::move(ours) : Json());
}

static std::vector<int> findList(const RyGltfDocument &document, int mesh, int primitive, const char *key)
{
    const Json *entry = primitiveJson(document, mesh, primitive);
    const Json *ours = entry ? RyExtrasJson::ours(*entry) : nullptr;
    const Json *list = ours ? find(*ours, key) : nullptr;
    std::vector<int> result;
    for (const Json &number : list && list->is_array() ? *list : Json::array()) {
        if (!number.is_number_integer())
            return {};
        result.push_back(number.get<int>());
    }
    return result;
}

void RyTreeExtras::storeApart(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &pairs)
{
    storeList(document, mesh, primitive, "apart", pairs);
}

std::vector<int> RyTreeExtras::findApart(const RyGltfDocument &document, int mesh, int primitive)
{
    return findList(document, mesh, primitive, "apart");
}

void RyTreeExtras::storeFree(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &splits)
{
    storeList(document, mesh, primitive, "free", splits);
}

std::vector<int> RyTreeExtras::findFree(const RyGltfDocument &document, int mesh, int primitive)
{
    return findList(document, mesh, primitive, "free");
}

void RyTreeExtras::storeFirstCorners(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &pairs)
{
    storeList(document, mesh, primitive, "firstCorners", pairs);
}

std::vector<int> RyTreeExtras::findFirstCorners(const RyGltfDocument &document, int mesh, int primitive)
{
    return findList(document, mesh, primitive, "firstCorners");
}

void RyTreeExtras::storeWithoutUv(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &splits)
{
    storeList(document, mesh, primitive, "withoutUv", splits);
}

std::vector<int> RyTreeExtras::findWithoutUv(const RyGltfDocument &document, int mesh, int primitive)
{
    return findList(document, mesh, primitive, "withoutUv");
}

void RyTreeExtras::copySurface(RyGltfDocument &document, std::pair<int, int> from, std::pair<int, int> to)
{
    const Json *entry = primitiveJson(document, from.first, from.second);
    const Json *said = entry ? RyExtrasJson::ours(*entry) : nullptr;
    if (!said)
        return;
    Json &holder = document.json()["meshes"][size_t(to.first)]["primitives"][size_t(to.second)];
    Json ours = storedOrNew(holder);
    for (const char *key : {"madeNormals", "firstCorners", "withoutUv"}) {
        if (const Json *value = find(*said, key))
            ours[key] = *value;
    }
    RyExtrasJson::store(holder, ours.size() > 1 ? std::move(ours) : Json());
}

void RyTreeExtras::storeMadeNormals(RyGltfDocument &document, int mesh, int primitive)
{
    Json &holder = document.json()["meshes"][size_t(mesh)]["primitives"][size_t(primitive)];
    Json ours = storedOrNew(holder);
    ours["madeNormals"] = true;
    RyExtrasJson::store(holder, std::move(ours));
}

bool RyTreeExtras::hasMadeNormals(const RyGltfDocument &document, int mesh, int primitive)
{
    const Json *entry = primitiveJson(document, mesh, primitive);
    const Json *ours = entry ? RyExtrasJson::ours(*entry) : nullptr;
    const Json *made = ours ? find(*ours, "madeNormals") : nullptr;
    return made && *made == Json(true);
}
