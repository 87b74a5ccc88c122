#include "rycore/io/gltf/extras/RyFigureExtras.h"

#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/extras/RyLinkExtras.h"
#include "rycore/io/gltf/extras/RyMapExtras.h"
#include "rycore/io/gltf/extras/RyMeshExtras.h"
#include "rycore/io/gltf/extras/RyMorphExtras.h"
#include "rycore/io/gltf/extras/RyParametricExtras.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <cmath>
#include <map>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

RyFacetShape *shapeOf(const RyNode &node)
{
    return qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
}

RyFacetMesh *meshOf(const RyNode &node)
{
    const RyFacetShape *shape = shapeOf(node);
    return shape ? shape->getFacetMesh() : nullptr;
}

const Json *figureJson(const RyGltfDocument &document, int figure)
{
    const Json *ours = RyExtrasJson::ours(document.json());
    const Json *figures = ours ? find(*ours, "figures") : nullptr;
    return figures && figures->is_array() && figure >= 0 && size_t(figure) < figures->size()
               ? &(*figures)[size_t(figure)]
               : nullptr;
}

} // namespace

double RyFigureExtras::storedUnit(const RyGltfDocument &document)
{
    const Json *ours = RyExtrasJson::ours(document.json());
    const Json *unit = ours ? find(*ours, "unit") : nullptr;
    const double value = unit && unit->is_number() ? unit->get<double>() : 0.0;
    return std::isfinite(value) && value >= 1e-6 && value <= 1e9 ? value : 0.0;
}

bool RyFigureExtras::applyFaceGroups(const RyGltfDocument &document, int figure, RyFacetMesh &mesh,
                                     QStringList *messages)
{
    const Json *stored = figureJson(document, figure);
    return stored && RyMeshExtras::applyFaceGroups(*stored, mesh, messages);
}

void RyFigureExtras::applyFacetOrder(const RyGltfDocument &document, int figure, std::vector<RyFacet> &facets,
                                     std::vector<RyPolygon> &polygons, RyMeshParts &parts, QStringList *messages)
{
    if (const Json *stored = figureJson(document, figure))
        RyMeshExtras::applyFacetOrder(*stored, facets, polygons, parts, messages);
}

void RyFigureExtras::applySelectionMap(const RyGltfOrigin &origin, int figure, RyNode &skeletonNode)
{
    auto *skeleton = qobject_cast<RySkeleton *>(&skeletonNode);
    const RyFacetMesh *mesh = meshOf(skeletonNode);
    if (!skeleton || !mesh)
        return;
    RyRef<RySelectionMap> map(new RySelectionMap);
    const Json *stored = figureJson(*origin.document, figure);
    const Json *pairs = stored ? find(*stored, "selectionMap") : nullptr;
    if (pairs && pairs->is_array()) {
        std::map<int, RyNode *> nodes; // of the file
        for (const RyGltfNodeSource &source : origin.nodes)
            nodes[source.node] = source.sceneNode;
        for (const Json &pair : *pairs) {
            if (!pair.is_array() || pair.size() != 2 || !pair[0].is_string() || !pair[1].is_number_integer())
                continue;
            const auto target = nodes.find(pair[1].get<int>());
            map->addPair(QString::fromStdString(pair[0].get<std::string>()),
                         target == nodes.end() ? nullptr : target->second, false);
        }
    } else if (mesh->getNumFaceGroups() > 0) {
        // Without a stored map a group goes with the bone of its name.
        std::map<QString, RyNode *> bones;
        std::vector<RyNode *> below;
        skeleton->getNodeChildren(below, true);
        for (RyNode *node : below)
            bones.emplace(node->getName(), node);
        for (int g = 0; g < mesh->getNumFaceGroups(); ++g) {
            const auto bone = bones.find(mesh->getFaceGroup(g)->getName());
            if (bone != bones.end())
                map->addPair(bone->first, bone->second, false);
        }
    }
    if (map->getNumPairs() > 0)
        skeleton->setSelectionMap(map.get());
}

RyFigureExtras::Entries::Entries(const RyGltfDocument &document)
{
    const Json *ours = RyExtrasJson::ours(document.json());
    const Json *figures = ours ? RyExtrasJson::find(*ours, "figures") : nullptr;
    m_exist = figures && figures->is_array();
    for (size_t i = 0; m_exist && i < figures->size(); ++i) {
        const Json *of = RyExtrasJson::find((*figures)[i], "of");
        if (of && of->is_number_integer())
            m_entryOf.emplace(of->get<int>(), int(i));
    }
}

int RyFigureExtras::Entries::find(const std::vector<int> &nodes, int number) const
{
    if (!m_exist)
        return -1;
    int first = -1;
    for (const int node : nodes) {
        const auto entry = m_entryOf.find(node);
        if (entry != m_entryOf.end() && (first < 0 || entry->second < first))
            first = entry->second;
    }
    return m_entryOf.empty() ? number : first;
}

std::vector<int> RyFigureExtras::storedBindings(const RyGltfDocument &document, int figure, bool *isStored)
{
    const Json *stored = figureJson(document, figure);
    const Json *bindings = stored ? find(*stored, "bindings") : nullptr;
    std::vector<int> nodes;
    *isStored = bindings && bindings->is_array();
    for (const Json &node : *isStored ? *bindings : Json::array()) {
        if (node.is_number_integer())
            nodes.push_back(node.get<int>());
    }
    return nodes;
}

bool RyFigureExtras::hasMaps(const RyGltfDocument &document, int figure)
{
    const Json *stored = figureJson(document, figure);
    return stored && find(*stored, "maps");
}

void RyFigureExtras::applyMaps(const RyGltfDocument &document, int figure, const RyMapExtras::Fingerprint &influences,
                               int vertexCount, const RyGltfNodeIndex &nodeOf, RySkinBinding &skin,
                               QStringList *messages)
{
    const Json *stored = figureJson(document, figure);
    const Json *maps = stored ? find(*stored, "maps") : nullptr;
    if (maps && !RyMapExtras::apply(*maps, influences, vertexCount, nodeOf, skin) && messages) {
        messages->append(
            QStringLiteral("The stored local, scale and bulge maps do not fit the weights of the file and are "
                           "left out"));
    }
}

const Json *RyFigureExtras::storedSkin(const RyGltfDocument &document, int figure)
{
    const Json *stored = figureJson(document, figure);
    return stored ? find(*stored, "skin") : nullptr;
}

const Json *RyFigureExtras::storedParametric(const RyGltfDocument &document, int figure)
{
    const Json *stored = figureJson(document, figure);
    return stored ? find(*stored, "parametric") : nullptr;
}

const Json *RyFigureExtras::storedMorphs(const RyGltfDocument &document, int figure)
{
    const Json *stored = figureJson(document, figure);
    return stored ? find(*stored, "morphs") : nullptr;
}

void RyFigureExtras::applyToFigure(const RyGltfDocument &document, int figure, double unit, bool withPlace,
                                   RyNode &node)
{
    const Json *stored = figureJson(document, figure);
    if (const Json *ours = stored ? find(*stored, "node") : nullptr)
        RyRiggingExtras::applyFigure(*ours, unit, withPlace, node);
}

QString RyFigureExtras::storedFigureName(const RyGltfDocument &document, int figure)
{
    const Json *stored = figureJson(document, figure);
    const Json *name = stored ? find(*stored, "name") : nullptr;
    return name && name->is_string() ? QString::fromStdString(name->get<std::string>()) : QString();
}

QString RyFigureExtras::objectName(const RyGltfDocument &document, int figure, const RyNode &node)
{
    const Json *stored = figureJson(document, figure);
    const Json *name = stored ? find(*stored, "object") : nullptr;
    return name && name->is_string() ? QString::fromStdString(name->get<std::string>()) : node.getName();
}

/// The bones of a figure's bindings, where they are not its joints in their order.
static Json bindingsJson(const RySkinBinding &skin, const RySkeleton &skeleton, const RyGltfNodeIndex &nodeOf,
                         const std::set<int> &joints)
{
    Json expected = Json::array();
    for (const RyBone *bone : ryOwnBones(skeleton)) {
        const int node = nodeOf.of(bone);
        if (joints.count(node))
            expected.push_back(node);
    }
    Json list = Json::array();
    for (const RyBoneBinding *binding : skin.bindings()) {
        const int node = nodeOf.of(binding->getBone());
        if (node >= 0)
            list.push_back(node);
    }
    return list != expected ? list : Json();
}

void RyFigureExtras::applyFollowTargets(const RyGltfDocument &document, const std::map<int, RyNode *> &figures,
                                        QStringList *messages)
{
    for (const auto &[entry, node] : figures) {
        auto *skeleton = qobject_cast<RySkeleton *>(node);
        const Json *stored = figureJson(document, entry);
        const Json *follows = stored ? find(*stored, "follows") : nullptr;
        if (!skeleton || !follows)
            continue;
        const auto found = follows->is_number_integer() ? figures.find(follows->get<int>()) : figures.end();
        if (found != figures.end()) {
            skeleton->setFollowTarget(qobject_cast<RySkeleton *>(found->second));
        } else if (messages) {
            const QString name =
                follows->is_number_integer() ? storedFigureName(document, follows->get<int>()) : QString();
            messages->append(QStringLiteral("\"%1\" follows no figure any more: %2 does not stand in the scene")
                                 .arg(skeleton->getName(), name.isEmpty()
                                                               ? QStringLiteral("the stored one")
                                                               : QLatin1Char('"') + name + QLatin1Char('"')));
        }
    }
}

/// The place of the figure that a skeleton follows; null where it follows none that is stored.
static Json followsJson(const RySkeleton &skeleton, const std::vector<const RyNode *> &figures, QStringList *messages)
{
    const RySkeleton *target = skeleton.getFollowTarget();
    const auto found = std::find(figures.begin(), figures.end(), target);
    if (target && found != figures.end())
        return int(found - figures.begin());
    if (target && messages) {
        messages->append(QStringLiteral("That \"%1\" follows \"%2\" is not stored: the latter has no place in the file")
                             .arg(skeleton.getName(), target->getName()));
    }
    return Json();
}

/// The joints of a parametric figure with the fit that the file's weights are.
static Json parametricJson(const RySkeleton &skeleton, const RyGltfNodeIndex &nodeOf, QStringList *messages)
{
    const RyLegacyBinding *binding = RyLegacyBinding::findBinding(&skeleton);
    if (!binding)
        return Json();
    const RyFacetMesh *mesh = meshOf(skeleton);
    const bool hasMesh = mesh && mesh->getNumFacets() > 0; // a file holds no vertices without facets
    const RyGltfInfluences influences(&skeleton, hasMesh ? mesh->getNumVertices() : 0);
    Json json = RyParametricExtras::toJson(*binding, nodeOf, messages);
    json["fit"] = RyParametricExtras::fitJson(*binding, influences.fingerprint(nodeOf));
    return json;
}

static void storeSkin(const RySkeleton &skeleton, const RyGltfNodeIndex &nodeOf, const std::set<int> &joints,
                      Json &entry)
{
    const RySkinBinding *skin = RySkinBinding::findSkin(&skeleton);
    if (!skin)
        return;
    const RyFacetMesh *mesh = meshOf(skeleton);
    if (!mesh) {
        entry["skin"] = RyMapExtras::skinToJson(*skin, nodeOf);
        return;
    }
    Json bindings = bindingsJson(*skin, skeleton, nodeOf, joints);
    if (!bindings.is_null())
        entry["bindings"] = std::move(bindings);
    Json maps = RyMapExtras::toJson(*skin, mesh->getNumVertices(), nodeOf);
    if (!maps.is_null())
        entry["maps"] = std::move(maps);
}

void RyFigureExtras::storeFile(RyGltfDocument &document, double unit, const std::vector<const RyNode *> &figures,
                               const RyGltfNodeIndex &nodeOf, const std::set<int> &joints,
                               const std::map<const RyNode *, QString> &keptParametric, QStringList *messages)
{
    Json list = Json::array();
    for (const RyNode *figure : figures) {
        Json entry = Json::object();
        // By its node, or that of its first bone, it is found again.
        const auto *skeleton = qobject_cast<const RySkeleton *>(figure);
        const RyNode *bone = figure ? ryFirstOwnBone(*figure) : nullptr;
        const int of = nodeOf.of(bone ? bone : figure);
        if (of >= 0)
            entry["of"] = of;
        const RyObject *object = figure ? figure->getObject() : nullptr;
        if (object && object->getName() != figure->getName())
            entry["object"] = object->getName().toStdString();
        if (const RyFacetMesh *mesh = figure ? meshOf(*figure) : nullptr)
            RyMeshExtras::store(*mesh, shapeOf(*figure)->getParts().get(), entry);
        const RyFacetShape *shape = figure ? shapeOf(*figure) : nullptr;
        Json morphs = shape ? RyMorphExtras::toJson(*shape) : Json();
        if (!morphs.is_null())
            entry["morphs"] = std::move(morphs);
        if (skeleton) {
            entry["name"] = skeleton->getName().toStdString();
            entry["node"] = RyRiggingExtras::nodeJson(*skeleton, nullptr);
            entry["node"]["unit"] = unit;
            Json follows = followsJson(*skeleton, figures, messages);
            if (!follows.is_null())
                entry["follows"] = std::move(follows);
            storeSkin(*skeleton, nodeOf, joints, entry);
            if (const RySkinBinding *skin = RySkinBinding::findSkin(skeleton))
                RyMapExtras::reportBulges(*skin, messages);
            Json parametric = parametricJson(*skeleton, nodeOf, messages);
            const auto kept = keptParametric.find(skeleton);
            if (!parametric.is_null())
                entry["parametric"] = std::move(parametric);
            else if (kept != keptParametric.end())
                entry["parametric"] = Json::parse(kept->second.toStdString());
        }
        if (const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr) {
            Json pairs = Json::array();
            for (int i = 0; i < map->getNumPairs(); ++i)
                pairs.push_back(Json::array({map->getPairGroup(i).toStdString(), nodeOf.of(map->getPairNode(i))}));
            entry["selectionMap"] = std::move(pairs);
        }
        list.push_back(std::move(entry));
    }
    Json ours{{"version", RyExtrasJson::Version}, {"unit", unit}, {"figures", std::move(list)}};
    Json links = RyLinkExtras::toJson(figures, nodeOf, messages);
    if (!links.is_null())
        ours["links"] = std::move(links);
    RyExtrasJson::store(document.json(), std::move(ours));
}

QString RyFigureExtras::selectionText(const RyNode &node)
{
    const auto *skeleton = qobject_cast<const RySkeleton *>(&node);
    const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    QString text;
    for (int i = 0; map && i < map->getNumPairs(); ++i) {
        const RyNode *paired = map->getPairNode(i);
        text += map->getPairGroup(i) + QLatin1Char('\t') + (paired ? paired->getName() : QString()) + QLatin1Char('\n');
    }
    return text;
}
