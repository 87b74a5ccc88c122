#include "rycore/skin/RySkinBinding.h"

#include "rycore/base/RyPlaceChange.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShapeNormals.h"
#include "rycore/scene/RyShapePoints.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyLocalStages.h"
#include "rycore/skin/RyNormalMap.h"
#include "rycore/skin/RyWeightNormalizer.h"
#include "rycore/undo/RyValueChange.h"

#include <algorithm>
#include <tuple>
#include <utility>

struct RySkinBinding::BindingList : RyListOf<RySkinBinding, RyBoneBinding>
{
    static bool mayMove(const RySkinBinding &skin, const RyBoneBinding &binding)
    {
        return !binding.getSkin() || binding.getSkin() == &skin;
    }
    static const auto &of(const RySkinBinding &skin) { return skin.m_bindings; }
    static bool has(const RySkinBinding &skin, const RyBoneBinding &binding) { return binding.getSkin() == &skin; }
    static void take(RySkinBinding &skin, RyBoneBinding *binding, int place) { skin.takeBinding(binding, place); }
    static void insert(RySkinBinding &skin, RyBoneBinding *binding, int index) { skin.insertBinding(binding, index); }
};

/// The declared kinds of maps: local, general.
struct RySkinBinding::MapKindsValue : RyValueOf<RySkinBinding, std::pair<bool, bool>>
{
    static Value get(const RySkinBinding &skin) { return {skin.m_localKind, skin.m_generalKind}; }
    static void put(RySkinBinding &skin, Value kinds)
    {
        std::tie(skin.m_localKind, skin.m_generalKind) = kinds;
        skin.announce();
    }
};

RySkinBinding::RySkinBinding()
{
    connect(this, &RySkinBinding::skinChanged, this, &RyModifier::modifierChanged);
}

RySkinBinding::~RySkinBinding()
{
    for (RyBoneBinding *binding : m_bindings) {
        binding->m_skin = nullptr;
        disconnect(binding, nullptr, this, nullptr);
        binding->unref();
    }
}

RySkinBinding *RySkinBinding::findSkinFromNode(const RyNode *node)
{
    return findSkin(node ? node->getSkeleton() : nullptr);
}

RySkinBinding *RySkinBinding::findSkin(const RySkeleton *skeleton, const void *)
{
    const RyObject *object = skeleton ? skeleton->getObject() : nullptr;
    return object ? object->findModifier<RySkinBinding>() : nullptr;
}

bool RySkinBinding::addBoneBinding(RyBoneBinding *binding)
{
    if (!binding || binding->m_skin)
        return false;
    const RyRef<RyBoneBinding> guard(binding);
    RyPlaceChange<BindingList>::record(this, binding, -1);
    insertBinding(binding, getNumBoneBindings());
    return true;
}

bool RySkinBinding::removeBoneBinding(RyBoneBinding *binding)
{
    const auto place = std::find(m_bindings.begin(), m_bindings.end(), binding);
    if (place == m_bindings.end())
        return false;
    const RyRef<RyBoneBinding> guard(binding);
    const int index = int(place - m_bindings.begin());
    RyPlaceChange<BindingList>::record(this, binding, index);
    takeBinding(binding, index);
    return true;
}

void RySkinBinding::insertBinding(RyBoneBinding *binding, int index)
{
    binding->ref();
    binding->m_skin = this;
    m_bindings.insert(m_bindings.begin() + std::min(index, getNumBoneBindings()), binding);
    indexBone(binding);
    connect(binding, &RyBoneBinding::bindingChanged, this, &RySkinBinding::announce);
    ++m_listRevision;
    announce();
}

void RySkinBinding::takeBinding(RyBoneBinding *binding, int index)
{
    m_bindings.erase(m_bindings.begin() + index);
    disconnect(binding, nullptr, this, nullptr);
    dropBone(binding);
    binding->m_skin = nullptr;
    ++m_listRevision;
    announce();
    binding->unref();
}

void RySkinBinding::indexBone(RyBoneBinding *binding)
{
    binding->m_indexedBone = binding->getBone();
    if (binding->m_indexedBone)
        m_bindingsOfBones.insert(binding->m_indexedBone, binding);
}

void RySkinBinding::dropBone(RyBoneBinding *binding)
{
    m_bindingsOfBones.remove(binding->m_indexedBone, binding);
    binding->m_indexedBone = nullptr;
}

RyBoneBinding *RySkinBinding::findBoneBinding(const RyNode *bone) const
{
    if (!bone)
        return nullptr;
    // A bone that was deleted may have had the same address.
    const auto isOfBone = [bone](const RyBoneBinding *binding) { return binding->getBone() == bone; };
    RyBoneBinding *found = nullptr;
    int count = 0;
    m_bindingsOfBones.visit(bone, [&](RyBoneBinding *binding) {
        if (!isOfBone(binding))
            return;
        found = binding;
        ++count;
    });
    return count > 1 ? *std::find_if(m_bindings.begin(), m_bindings.end(), isOfBone) : found;
}

bool RySkinBinding::hasLocalMaps() const
{
    return m_localKind ||
           std::any_of(m_bindings.begin(), m_bindings.end(), [](auto *b) { return b->hasLocalWeights(); });
}

bool RySkinBinding::hasGeneralMaps() const
{
    return m_generalKind ||
           std::any_of(m_bindings.begin(), m_bindings.end(), [](auto *b) { return b->getWeights() != nullptr; });
}

void RySkinBinding::setMapKinds(bool local, bool general)
{
    if (local == m_localKind && general == m_generalKind)
        return;
    RyValueChange<MapKindsValue>::record(this);
    m_localKind = local;
    m_generalKind = general;
    announce();
}

void RySkinBinding::announce()
{
    if (editLevel() > 0)
        m_touched = true;
    else
        emit skinChanged();
}

void RySkinBinding::editFinished()
{
    if (std::exchange(m_touched, false))
        emit skinChanged();
}

void RySkinBinding::normalize(int, int types, bool)
{
    const auto normalizeKind = [this](auto mapOf) {
        std::vector<RyWeightMap *> maps;
        for (const RyBoneBinding *binding : m_bindings) {
            if (RyWeightMap *map = mapOf(binding))
                maps.push_back(map);
        }
        RyWeightNormalizer::normalize(maps);
    };
    beginEdit();
    if (types & GeneralWeights)
        normalizeKind([](const RyBoneBinding *b) { return b->getWeights(); });
    for (int axis = 0; axis < 3; ++axis) {
        if (types & (LocalXWeights << axis))
            normalizeKind([axis](const RyBoneBinding *b) { return b->getLocalWeights(axis); });
    }
    if (types & ScaleWeights)
        normalizeKind([](const RyBoneBinding *b) { return b->getScaleWeights(); });
    finishEdit();
}

void RySkinBinding::reduceWeightMemory()
{
    for (const RyBoneBinding *binding : m_bindings) {
        for (RyWeightMap *map : binding->getAllWeightMaps())
            map->compact();
    }
}

void RySkinBinding::buildGeneralWeightMaps(std::vector<RyRef<RyWeightMap>> &maps,
                                           std::vector<RyBoneBinding *> &bindings, int option) const
{
    for (RyBoneBinding *binding : m_bindings) {
        bindings.push_back(binding);
        if (binding->getWeights()) {
            maps.emplace_back(binding->getWeights());
        } else if (option == AverageLocalMaps && binding->hasLocalWeights()) {
            const RyWeightMap *local[3];
            for (int axis = 0; axis < 3; ++axis)
                local[axis] = binding->getLocalWeights(axis);
            maps.emplace_back(RyWeightNormalizer::mean(binding->getName(), local));
        }
    }
}

std::vector<quint64> RySkinBinding::weightsKey() const
{
    std::vector<quint64> key{m_listRevision};
    for (const RyBoneBinding *binding : m_bindings) {
        key.push_back(binding->revision());
        for (const RyWeightMap *map : binding->getAllWeightMaps())
            key.push_back(map->revision());
    }
    return key;
}

bool RySkinBinding::updateInfluences(int vertexCount)
{
    std::vector<quint64> key = weightsKey();
    key.push_back(quint64(vertexCount));
    if (key == m_influencesKey)
        return true;
    for (const RyBoneBinding *binding : m_bindings) {
        for (const RyWeightMap *map : binding->getAllWeightMaps()) {
            if (!map->isEmpty() && map->getNumWeights() != vertexCount)
                return false;
        }
    }
    std::vector<RySkinDeformer::Channel> channels;
    m_mapSources.clear();
    for (const RyBoneBinding *binding : m_bindings) {
        MapSource source;
        source.firstChannel = int(channels.size());
        source.local = !binding->getWeights() && binding->hasLocalWeights();
        if (source.local)
            RyLocalStages::appendChannels(*binding, channels);
        else
            channels.push_back(RySkinDeformer::Channel::fromMap(binding->getWeights()));
        m_mapSources.push_back(source);
    }
    m_maps.assign(channels.size(), RyAffine());
    m_normalMaps = m_maps;
    m_furtherNormals = 0;
    m_bulges.setBindings(m_bindings);
    m_deformer.setInfluences(vertexCount, channels);
    m_influencesKey = std::move(key);
    return true;
}

void RySkinBinding::updateMaps()
{
    for (size_t i = 0; i < m_bindings.size(); ++i) {
        MapSource &source = m_mapSources[i];
        const RyBone *bone = m_bindings[i]->getBone();
        const quint64 revision = bone ? bone->mapRevision() : 0;
        if (bone == source.bone && revision == source.revision)
            continue;
        source.bone = bone;
        source.revision = revision;
        RyAffine *maps = &m_maps[size_t(source.firstChannel)];
        RyAffine *normalMaps = &m_normalMaps[size_t(source.firstChannel)];
        if (source.local) {
            RyLocalStages::fillMaps(bone, maps, normalMaps);
        } else {
            *maps = bone ? bone->figureMap() : RyAffine();
            *normalMaps = RyNormalMap::of(*maps);
        }
    }
}

void RySkinBinding::updateFurtherNormals(const RyShapeNormals *places)
{
    if (!places || places->layoutRevision() == m_furtherNormals)
        return;
    m_deformer.setFurtherNormals(places->vertexOfFurther());
    m_furtherNormals = places->layoutRevision();
}

bool RySkinBinding::deform(RyShapePoints &points)
{
    if (!updateInfluences(int(points.positions->size())))
        return false;
    if (m_bulges.areAny())
        m_bulges.push(points, getObject() ? getObject()->getCurrentShape() : nullptr);
    updateFurtherNormals(points.places);
    updateMaps();
    const quint64 revision = points.changes ? points.changes->revision() : 0;
    points.positions = &m_deformer.deform(*points.positions, m_maps, points.changes, revision,
                                          {points.normals, &m_normalMaps}, points.changes);
    if (points.normals)
        points.normals = &m_deformer.normals();
    points.changes = &m_deformer.changes();
    return true;
}

bool RySkinBinding::deformBase(const std::vector<RyVec3> &positions, std::vector<RyVec3> &deformed,
                               std::vector<RyMatrix3> *linear)
{
    RyShapePoints points;
    points.positions = &positions;
    if (!deform(points))
        return false;
    deformed = *points.positions;
    if (linear)
        *linear = linearParts(positions.size());
    return true;
}

/// 1 + sum of w * (X - 1) over the channels that move each vertex, as the last `deform` had them.
std::vector<RyMatrix3> RySkinBinding::linearParts(size_t vertexCount) const
{
    std::vector<RyMatrix3> parts(vertexCount);
    std::vector<RySkinDeformer::Channel> channels;
    for (size_t i = 0; i < m_bindings.size(); ++i) {
        channels.clear();
        if (m_mapSources[i].local)
            RyLocalStages::appendChannels(*m_bindings[i], channels);
        else
            channels.push_back(RySkinDeformer::Channel::fromMap(m_bindings[i]->getWeights()));
        for (size_t k = 0; k < channels.size(); ++k) {
            const RyAffine &map = m_maps[size_t(m_mapSources[i].firstChannel) + k];
            for (size_t e = 0; e < channels[k].vertices.size(); ++e) {
                RyMatrix3 &part = parts[size_t(channels[k].vertices[e])];
                for (int row = 0; row < 3; ++row) {
                    for (int column = 0; column < 3; ++column)
                        part[row][column] +=
                            channels[k].weights[e] * float(map.m[row][column] - (row == column ? 1.0 : 0.0));
                }
            }
        }
    }
    return parts;
}

std::vector<const RyElement *> RySkinBinding::parts() const
{
    std::vector<const RyElement *> parts;
    for (const RyBoneBinding *binding : m_bindings) {
        for (int axis = 0; axis < 3; ++axis) {
            if (const RyBulgeBinding *bulge = binding->getBulgeBinding(axis))
                parts.push_back(bulge);
        }
    }
    return parts;
}

std::vector<RyNode *> RySkinBinding::bones() const
{
    std::vector<RyNode *> bones;
    for (const RyBoneBinding *binding : m_bindings)
        bones.push_back(binding->getBone());
    return bones;
}

RyVertexBones RySkinBinding::vertexBones(int vertexCount) const
{
    RyVertexBones strongest = RyModifier::vertexBones(vertexCount);
    for (size_t bone = 0; bone < m_bindings.size(); ++bone) {
        const RyBoneBinding *binding = m_bindings[bone];
        std::vector<const RyWeightMap *> maps{binding->getWeights()};
        if (!maps[0])
            maps = {binding->getLocalWeights(0), binding->getLocalWeights(1), binding->getLocalWeights(2)};
        for (const RyWeightMap *map : maps) {
            if (!map || map->getNumWeights() != vertexCount)
                continue;
            const int *indices = map->getAffectedIndices();
            const quint16 *weights = map->getAffectedWeights();
            for (int i = 0; i < map->getNumAffected(); ++i) {
                const auto vertex = size_t(indices[i]);
                if (weights[i] > strongest.weights[vertex]) {
                    strongest.weights[vertex] = weights[i];
                    strongest.bones[vertex] = int(bone);
                }
            }
        }
    }
    return strongest;
}

std::vector<quint64> RySkinBinding::vertexBonesKey() const
{
    std::vector<quint64> key = weightsKey();
    for (const RyBoneBinding *binding : m_bindings)
        key.push_back(quint64(quintptr(binding)));
    return key;
}
