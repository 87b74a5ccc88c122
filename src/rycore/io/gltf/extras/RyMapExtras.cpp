#include "rycore/io/gltf/extras/RyMapExtras.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyBulgeBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

const char *const localNames[3] = {"x", "y", "z"};
/// No text unpacks to more: what claims to is damaged, and memory for it would be asked for nothing.
constexpr quint64 BestPacking = 1100;
constexpr int MostVertices = 1 << 28;

Json mapJson(const RyWeightMap *map)
{
    const int affected = map->getNumAffected();
    QByteArray bytes;
    const auto append = [&bytes](quint32 number, int size) {
        for (int byte = 0; byte < size; ++byte)
            bytes.append(char(number >> (8 * byte)));
    };
    append(quint32(map->getNumWeights()), 4);
    append(quint32(affected), 4);
    int last = 0;
    for (int i = 0; i < affected; ++i) { // steps compress better than places
        append(quint32(map->getAffectedIndices()[i] - last), 4);
        last = map->getAffectedIndices()[i];
    }
    for (int i = 0; i < affected; ++i)
        append(map->getAffectedWeights()[i], 2);
    return qCompress(bytes).toBase64().toStdString();
}

/// False for a text that is none; null without one.
bool readMap(const Json *text, int vertexCount, const QString &name, RyRef<RyWeightMap> &map)
{
    if (!text)
        return true;
    if (!text->is_string())
        return false;
    const QByteArray packed = QByteArray::fromBase64(QByteArray::fromStdString(text->get<std::string>()));
    // The packed bytes begin with the size of the whole: no more than all vertices need.
    quint64 size = 0;
    for (int byte = 0; byte < std::min(4, int(packed.size())); ++byte)
        size = (size << 8) | quint8(packed[byte]);
    if (size < 8 || size > 8 + 6 * quint64(vertexCount) || size > BestPacking * quint64(packed.size()))
        return false;
    const QByteArray bytes = qUncompress(packed);
    const auto read = [&bytes](qsizetype at, int length) {
        quint32 number = 0;
        for (int byte = 0; byte < length; ++byte)
            number |= quint32(quint8(bytes[int(at) + byte])) << (8 * byte);
        return number;
    };
    if (bytes.size() < 8 || read(0, 4) != quint32(vertexCount))
        return false;
    const qsizetype affected = qsizetype(read(4, 4));
    if (affected > vertexCount || bytes.size() != 8 + 6 * affected)
        return false;
    std::vector<int> indices;
    std::vector<quint16> weights;
    qint64 place = 0;
    for (qsizetype i = 0; i < affected; ++i) {
        place += read(8 + 4 * i, 4);
        indices.push_back(int(std::min<qint64>(place, vertexCount)));
        weights.push_back(quint16(read(8 + 4 * affected + 2 * i, 2)));
    }
    map = RyRef<RyWeightMap>(new RyWeightMap(name));
    map->setAffected(vertexCount, std::move(indices), std::move(weights));
    return true;
}

std::vector<std::string> propertyNames(const RyBulgeBinding &bulge)
{
    std::vector<std::string> names;
    for (const RyFloatProperty *property : bulge.controllers())
        names.push_back(property->getName().toStdString());
    return names;
}

std::string nameOf(const RyWeightMap *map)
{
    return map ? map->getName().toStdString() : std::string();
}

Json bulgeJson(const RyBulgeBinding &bulge)
{
    Json entry = Json::object();
    if (bulge.getLeftWeights())
        entry["left"] = mapJson(bulge.getLeftWeights());
    if (bulge.getRightWeights())
        entry["right"] = mapJson(bulge.getRightWeights());
    const std::string names[2] = {nameOf(bulge.getLeftWeights()), nameOf(bulge.getRightWeights())};
    if (!names[0].empty() || !names[1].empty())
        entry["names"] = names;
    if (propertyNames(bulge) != propertyNames(*RyRef<RyBulgeBinding>(new RyBulgeBinding(bulge.getAxis()))))
        entry["properties"] = propertyNames(bulge);
    for (const RyFloatProperty *property : bulge.controllers()) {
        entry["values"].push_back(Json::array({property->getValue(), property->getDefaultValue(), property->getMin(),
                                               property->getMax(), property->isClamped()}));
    }
    return entry;
}

/// As many as there are names; false where they are none. Without any these stay.
bool readNames(const Json *stored, std::vector<QString> &names)
{
    if (!stored)
        return true;
    if (!stored->is_array() || stored->size() != names.size())
        return false;
    for (size_t i = 0; i < names.size(); ++i) {
        if (!(*stored)[i].is_string())
            return false;
        names[i] = QString::fromStdString((*stored)[i].get<std::string>());
    }
    return true;
}

bool isFloat(const Json &number)
{
    return number.is_number() && std::isfinite(number.get<float>());
}

bool readBulge(const Json &entry, int axis, int vertexCount, RyRef<RyBulgeBinding> &bulge)
{
    RyRef<RyWeightMap> left, right;
    std::vector<QString> names(2);
    const Json *values = find(entry, "values");
    bulge = RyRef<RyBulgeBinding>(new RyBulgeBinding(axis));
    if (!readNames(find(entry, "names"), names) || !readMap(find(entry, "left"), vertexCount, names[0], left) ||
        !readMap(find(entry, "right"), vertexCount, names[1], right) || !values || !values->is_array() ||
        values->size() != 4) {
        return false;
    }
    bulge->setLeftWeights(left.get());
    bulge->setRightWeights(right.get());
    const auto &controllers = bulge->controllers();
    std::vector<QString> properties;
    for (const RyFloatProperty *controller : controllers)
        properties.push_back(controller->getName());
    if (!readNames(find(entry, "properties"), properties))
        return false;
    for (size_t i = 0; i < controllers.size(); ++i) {
        controllers[i]->setName(properties[i]);
        const Json &row = (*values)[i];
        if (!row.is_array() || row.size() != 5 || !row[4].is_boolean() ||
            !std::all_of(row.begin(), row.begin() + 4, isFloat)) {
            return false;
        }
        controllers[i]->setMin(row[2].get<float>());
        controllers[i]->setMax(row[3].get<float>());
        controllers[i]->setDefaultValue(row[1].get<float>());
        controllers[i]->setValue(row[0].get<float>());
        controllers[i]->setIsClamped(row[4].get<bool>());
    }
    return true;
}

/// Whether turns of its bone show it.
bool pushes(const RyBulgeBinding &bulge)
{
    const auto hasWeights = [](const RyWeightMap *map) { return map && map->getNumAffected() > 0; };
    float posLeft, negLeft, posRight, negRight;
    bulge.getBulgeValues(posLeft, negLeft, posRight, negRight);
    return (hasWeights(bulge.getLeftWeights()) && (posLeft != 0.0f || negLeft != 0.0f)) ||
           (hasWeights(bulge.getRightWeights()) && (posRight != 0.0f || negRight != 0.0f));
}

/// Null for a binding with a general map alone.
Json bindingJson(const RyBoneBinding &binding)
{
    Json entry = Json::object();
    for (int axis = 0; axis < 3; ++axis) {
        if (binding.getLocalWeights(axis))
            entry[localNames[axis]] = mapJson(binding.getLocalWeights(axis));
        if (binding.getBulgeBinding(axis))
            entry["bulges"][localNames[axis]] = bulgeJson(*binding.getBulgeBinding(axis));
    }
    if (binding.getScaleWeights())
        entry["scale"] = mapJson(binding.getScaleWeights());
    if (!binding.getWeights())
        entry["general"] = false;
    return entry.empty() ? Json() : entry;
}

struct StoredBinding
{
    void giveTo(RyBoneBinding &binding) const
    {
        for (int axis = 0; axis < 3; ++axis) {
            binding.setLocalWeights(local[axis].get(), axis);
            if (bulges[axis])
                binding.setBulgeBinding(axis, bulges[axis].get());
        }
        binding.setScaleWeights(scale.get());
    }

    RyRef<RyWeightMap> general; // of a skin without a mesh
    RyRef<RyWeightMap> local[3];
    RyRef<RyWeightMap> scale;
    RyRef<RyBulgeBinding> bulges[3];
    bool hasGeneral = true;
};

bool readBinding(const Json &entry, int vertexCount, StoredBinding &stored)
{
    const Json *bulges = find(entry, "bulges");
    if (bulges && !bulges->is_object())
        return false;
    for (int axis = 0; axis < 3; ++axis) {
        const Json *bulge = bulges ? find(*bulges, localNames[axis]) : nullptr;
        if (!readMap(find(entry, localNames[axis]), vertexCount, QString(), stored.local[axis]) ||
            (bulge && !readBulge(*bulge, axis, vertexCount, stored.bulges[axis]))) {
            return false;
        }
    }
    const Json *general = find(entry, "general");
    stored.hasGeneral = !general || *general != Json(false);
    return readMap(find(entry, "scale"), vertexCount, QString(), stored.scale);
}

} // namespace

void RyMapExtras::Fingerprint::add(int node, int vertex, int weight)
{
    quint64 mixed = (quint64(quint32(vertex)) << 32) ^ (quint64(quint32(node)) << 16) ^ quint64(quint32(weight));
    mixed = (mixed ^ (mixed >> 31)) * 0x7fb5d329728ea185ull;
    mixed = (mixed ^ (mixed >> 27)) * 0x81dadef4bc2dd44dull;
    m_value += mixed ^ (mixed >> 33);
}

Json RyMapExtras::toJson(const RySkinBinding &skin, int vertexCount, const RyGltfNodeIndex &nodeOf)
{
    Json list = Json::array();
    for (const RyBoneBinding *binding : skin.bindings()) {
        const int node = nodeOf.of(binding->getBone());
        Json entry = bindingJson(*binding);
        if (node < 0 || entry.is_null())
            continue;
        entry["bone"] = node;
        list.push_back(std::move(entry));
    }
    if (list.empty())
        return Json();
    const RyNode *figure = skin.getObject() ? skin.getObject()->getNode() : nullptr;
    const Fingerprint fingerprint = RyGltfInfluences(figure, vertexCount).fingerprint(nodeOf);
    return Json{{"weights", fingerprint.text()}, {"bindings", std::move(list)}};
}

bool RyMapExtras::apply(const Json &stored, const Fingerprint &influences, int vertexCount,
                        const RyGltfNodeIndex &nodeOf, RySkinBinding &skin)
{
    const Json *weights = find(stored, "weights");
    const Json *list = find(stored, "bindings");
    if (!weights || !list || !list->is_array() || *weights != Json(influences.text()))
        return false;
    std::vector<std::pair<RyBoneBinding *, StoredBinding>> all;
    for (const Json &entry : *list) {
        const Json *bone = find(entry, "bone");
        RyBoneBinding *binding = nullptr;
        for (RyBoneBinding *each : skin.bindings()) {
            const int node = nodeOf.of(each->getBone());
            if (bone && node >= 0 && *bone == Json(node))
                binding = each;
        }
        all.emplace_back(binding, StoredBinding());
        if (!binding || !readBinding(entry, vertexCount, all.back().second))
            return false;
    }
    for (auto &[binding, maps] : all) {
        maps.giveTo(*binding);
        if (!maps.hasGeneral)
            binding->setWeights(nullptr);
    }
    return true;
}

Json RyMapExtras::skinToJson(const RySkinBinding &skin, const RyGltfNodeIndex &nodeOf)
{
    Json list = Json::array();
    int vertexCount = 0;
    for (const RyBoneBinding *binding : skin.bindings()) {
        const int node = nodeOf.of(binding->getBone());
        if (node < 0)
            continue;
        Json entry = bindingJson(*binding);
        entry["bone"] = node; // makes an object of null
        if (binding->getWeights())
            entry["weights"] = mapJson(binding->getWeights());
        for (const RyWeightMap *map : binding->getAllWeightMaps())
            vertexCount = std::max(vertexCount, map->getNumWeights());
        list.push_back(std::move(entry));
    }
    return Json{{"vertices", vertexCount}, {"bindings", std::move(list)}};
}

bool RyMapExtras::readSkin(const Json &stored, const std::map<int, RyBone *> &bones, RySkinBinding &skin)
{
    const Json *vertices = find(stored, "vertices");
    const Json *list = find(stored, "bindings");
    const auto isCount = [](const Json &json) {
        return json.is_number_integer() && json >= Json(0) && json <= Json(MostVertices);
    };
    if (!vertices || !isCount(*vertices) || !list || !list->is_array())
        return false;
    const int vertexCount = vertices->get<int>();
    std::map<RyBone *, bool> isBound;
    std::vector<std::pair<RyBone *, StoredBinding>> all;
    for (const Json &entry : *list) {
        const Json *node = find(entry, "bone");
        const auto bone = node && isCount(*node) ? bones.find(node->get<int>()) : bones.end();
        if (bone == bones.end() || std::exchange(isBound[bone->second], true))
            return false;
        StoredBinding binding;
        if (!readBinding(entry, vertexCount, binding) ||
            !readMap(find(entry, "weights"), vertexCount, bone->second->getName(), binding.general) ||
            binding.hasGeneral != bool(binding.general)) {
            return false;
        }
        all.emplace_back(bone->second, std::move(binding));
    }
    for (auto &[bone, maps] : all) {
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        binding->setWeights(maps.general.get());
        maps.giveTo(*binding);
        skin.addBoneBinding(binding);
    }
    return true;
}

void RyMapExtras::reportBulges(const RySkinBinding &skin, QStringList *messages)
{
    const auto bulges = [](const RyBoneBinding *binding) {
        for (int axis = 0; axis < 3; ++axis) {
            if (const RyBulgeBinding *bulge = binding->getBulgeBinding(axis); bulge && pushes(*bulge))
                return true;
        }
        return false;
    };
    const auto count = std::count_if(skin.bindings().begin(), skin.bindings().end(), bulges);
    const RyNode *figure = skin.getObject() ? skin.getObject()->getNode() : nullptr;
    if (count == 0 || !figure || !messages)
        return;
    messages->append((count == 1 ? QStringLiteral("%1 bone of \"%2\" bulges; other programs do not see that")
                                 : QStringLiteral("%1 bones of \"%2\" bulge; other programs do not see that"))
                         .arg(count)
                         .arg(figure->getName()));
}

QString RyMapExtras::text(const RySkinBinding *skin)
{
    QString result;
    for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
        const Json entry = bindingJson(*binding);
        if (!entry.is_null() && binding->getBone())
            result += binding->getBone()->getName() + QString::fromStdString(entry.dump()) + QLatin1Char('\n');
    }
    return result;
}
