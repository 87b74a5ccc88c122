#include "rycore/io/gltf/RyRiggingExtras.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <nlohmann/json.hpp>

#include <QSet>

#include <algorithm>
#include <map>

using Json = nlohmann::ordered_json;

namespace {

constexpr const char *Key = "RYHOST_rigging";
constexpr int Version = 1;

const Json *find(const Json &object, const char *key)
{
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

const Json *ourExtras(const Json &holder)
{
    const Json *extras = find(holder, "extras");
    const Json *ours = extras ? find(*extras, Key) : nullptr;
    const Json *version = ours ? find(*ours, "version") : nullptr;
    return version && version->is_number_integer() && version->get<int>() == Version ? ours : nullptr;
}

bool readVector(const Json *value, RyVec3 &v)
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

Json vectorJson(const RyVec3 &v)
{
    return Json::array({v.x, v.y, v.z});
}

std::array<RyFloatProperty *, 9> riggingOf(const RyNode &node)
{
    return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
            node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
            node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
}

std::array<RyFloatProperty *, 10> poseOf(const RyNode &node)
{
    return {node.getXTransControl(), node.getYTransControl(), node.getZTransControl(), node.getXRotControl(),
            node.getYRotControl(),   node.getZRotControl(),   node.getScaleControl(),  node.getXScaleControl(),
            node.getYScaleControl(), node.getZScaleControl()};
}

RyVec3 readTriple(RyFloatProperty *const *p, bool byDefault)
{
    return byDefault ? RyVec3(p[0]->getDefaultValue(), p[1]->getDefaultValue(), p[2]->getDefaultValue())
                     : RyVec3(p[0]->getValue(), p[1]->getValue(), p[2]->getValue());
}

void writeTriple(RyFloatProperty *const *p, const RyVec3 &v, bool asDefault)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (asDefault)
            p[axis]->setDefaultValue(v[axis]);
        else
            p[axis]->setValue(v[axis]);
    }
}

/// Number of the first triangle of each facet, and behind them that of all triangles: a file holds quads as two.
std::vector<int> firstTriangles(const RyFacetMesh &mesh)
{
    std::vector<int> first{0};
    for (const RyFacet &facet : mesh.getFacets())
        first.push_back(first.back() + facet.count() - 2);
    return first;
}

/// Runs of triangles per group, in the order of the groups.
Json groupsJson(const RyFacetMesh &mesh)
{
    const std::vector<int> triangles = firstTriangles(mesh);
    Json groups = Json::array();
    for (int g = 0; g < mesh.getNumFaceGroups(); ++g) {
        const RyFaceGroup &group = *mesh.getFaceGroup(g);
        Json runs = Json::array();
        const RyIndexList &facets = group.getFacets();
        for (int i = 0; i < facets.count();) {
            int last = i;
            while (last + 1 < facets.count() && facets.getIndex(last + 1) == facets.getIndex(last) + 1)
                ++last;
            const int first = triangles[size_t(facets.getIndex(i))];
            runs.push_back(Json::array({first, triangles[size_t(facets.getIndex(last)) + 1] - first}));
            i = last + 1;
        }
        groups.push_back(Json{{"name", group.getName().toStdString()}, {"runs", std::move(runs)}});
    }
    return groups;
}

RyFacetMesh *meshOf(const RyNode &node)
{
    auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    return shape ? shape->getFacetMesh() : nullptr;
}

const Json *figureJson(const RyGltfDocument &document, int figure)
{
    const Json *ours = ourExtras(document.json());
    const Json *figures = ours ? find(*ours, "figures") : nullptr;
    return figures && figures->is_array() && figure >= 0 && size_t(figure) < figures->size() ? &(*figures)[size_t(figure)]
                                                                                         : nullptr;
}

} // namespace

double RyRiggingExtras::storedUnit(const RyGltfDocument &document)
{
    const Json *ours = ourExtras(document.json());
    const Json *unit = ours ? find(*ours, "unit") : nullptr;
    const double value = unit && unit->is_number() ? unit->get<double>() : 0.0;
    return std::isfinite(value) && value >= 1e-6 && value <= 1e9 ? value : 0.0;
}

/// Whether the orientation takes a frame to a symmetric stretch; without a reflection there is one such orientation, that of
/// the node.
static bool fitsFrame(const RyAffine &frame, const RyQuat &orientation, const RyQuat &ofNode)
{
    if (frame.determinant() > 0.0)
        return std::abs(ofNode.dot(orientation)) > 0.999999f;
    const RyAffine stretch = frame * RyAffine::fromRotation(orientation.inverse());
    double size = 0.0;
    double skew = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            size = std::max(size, std::abs(stretch.m[i][j]));
            skew = std::max(skew, std::abs(stretch.m[i][j] - stretch.m[j][i]));
        }
    }
    return skew <= 1e-4 * size;
}

bool RyRiggingExtras::applyToNode(const RyGltfDocument &document, int node, double unit, float tolerance,
                                  const RyAffine &bind, RyNode &sceneNode, QStringList *messages)
{
    const Json *nodes = find(document.json(), "nodes");
    const Json *ours = nodes && size_t(node) < nodes->size() ? ourExtras((*nodes)[size_t(node)]) : nullptr;
    if (!ours)
        return false;
    const double stored = storedUnit(document);
    const float scale = stored > 0.0 ? float(unit / stored) : 1.0f;
    const std::array<RyFloatProperty *, 9> rigging = riggingOf(sceneNode);
    RyVec3 origin, end, orientation;
    if (!rigging[0] || !readVector(find(*ours, "origin"), origin) || !readVector(find(*ours, "end"), end))
        return false;
    RyVec3 place = origin;
    readVector(find(*ours, "place"), place);
    if ((place * scale - sceneNode.getOrigin()).length() > tolerance) {
        if (messages) {
            messages->append(QStringLiteral("\"%1\" was moved since its end point was stored; the stored values are left out")
                                 .arg(sceneNode.getName()));
        }
        return false;
    }
    // Exactly the numbers that were saved, where they agree with what the file's matrices say.
    writeTriple(rigging.data(), origin * scale, true);
    writeTriple(rigging.data(), origin * scale, false);
    if (readVector(find(*ours, "orient"), orientation)) {
        if (fitsFrame(bind, RyQuat::fromEulerXYZ(orientation), sceneNode.getOrientation())) {
            writeTriple(rigging.data() + 6, orientation, true);
            writeTriple(rigging.data() + 6, orientation, false);
        }
    }
    writeTriple(rigging.data() + 3, end * scale, true);
    writeTriple(rigging.data() + 3, end * scale, false);
    if (const Json *defaults = find(*ours, "defaults")) {
        RyVec3 v;
        if (readVector(find(*defaults, "origin"), v))
            for (int axis = 0; axis < 3; ++axis)
                rigging[size_t(axis)]->setDefaultValue(v[axis] * scale);
        if (readVector(find(*defaults, "end"), v))
            for (int axis = 0; axis < 3; ++axis)
                rigging[size_t(3 + axis)]->setDefaultValue(v[axis] * scale);
        if (readVector(find(*defaults, "orient"), v))
            writeTriple(rigging.data() + 6, v, true);
    }
    if (const Json *order = find(*ours, "order"); order && order->is_number_integer())
        sceneNode.setRotationOrder(RyRotationOrder(order->get<int>()));
    if (const Json *label = find(*ours, "label"); label && label->is_string())
        sceneNode.setLabel(QString::fromStdString(label->get<std::string>()));
    if (const Json *flags = find(*ours, "flags"); flags && flags->is_object()) {
        const auto flag = [&](const char *name, bool otherwise) {
            const Json *value = find(*flags, name);
            return value && value->is_boolean() ? value->get<bool>() : otherwise;
        };
        sceneNode.setHidden(flag("hidden", false));
        sceneNode.setSelectable(flag("selectable", true));
        sceneNode.setPromoteSelection(flag("promote", false));
        sceneNode.setInheritScale(flag("inheritScale", true));
    }
    return true;
}

void RyRiggingExtras::applyLimits(const RyGltfDocument &document, int node, RyNode &sceneNode)
{
    const Json *nodes = find(document.json(), "nodes");
    const Json *ours = nodes && size_t(node) < nodes->size() ? ourExtras((*nodes)[size_t(node)]) : nullptr;
    const Json *limits = ours ? find(*ours, "limits") : nullptr;
    if (limits && limits->is_object()) {
        for (RyFloatProperty *property : poseOf(sceneNode)) {
            const Json *range = find(*limits, property->getName().toUtf8().constData());
            if (!range || !range->is_array() || range->size() != 2 || !(*range)[0].is_number() || !(*range)[1].is_number())
                continue;
            property->setMin((*range)[0].get<float>());
            property->setMax((*range)[1].get<float>());
            property->setIsClamped(true);
        }
    }
}

bool RyRiggingExtras::applyFaceGroups(const RyGltfDocument &document, int figure, RyFacetMesh &mesh,
                                      QStringList *messages)
{
    const Json *stored = figureJson(document, figure);
    const Json *groups = stored ? find(*stored, "faceGroups") : nullptr;
    if (!groups || !groups->is_array() || groups->empty())
        return false;
    std::vector<int> groupOfFacet(size_t(mesh.getNumFacets()), -1);
    QStringList names;
    const auto fits = [&] {
        const Json *facets = find(*stored, "facets");
        if (facets && (!facets->is_number_integer() || facets->get<long long>() != mesh.getNumFacets()))
            return false;
        for (const Json &group : *groups) {
            const Json *name = find(group, "name");
            const Json *runs = find(group, "runs");
            if (!name || !name->is_string() || !runs || !runs->is_array())
                return false;
            for (const Json &run : *runs) {
                if (!run.is_array() || run.size() != 2 || !run[0].is_number_integer() || !run[1].is_number_integer())
                    return false;
                const long long first = run[0].get<long long>();
                const long long count = run[1].get<long long>();
                if (first < 0 || count < 0 || first > mesh.getNumFacets() || count > mesh.getNumFacets() - first)
                    return false;
                std::fill_n(groupOfFacet.begin() + first, count, names.size());
            }
            names.append(QString::fromStdString(name->get<std::string>()));
        }
        return names.size() == QSet<QString>(names.begin(), names.end()).size();
    };
    if (!fits()) {
        if (messages)
            messages->append(QStringLiteral("The stored face groups do not fit the mesh and are left out"));
        return false;
    }
    for (const QString &name : names)
        mesh.createFaceGroup(name);
    mesh.setGroupsOfFacets(groupOfFacet);
    return true;
}

void RyRiggingExtras::applySelectionMap(const RyGltfSceneDocument &scene, int figure, RyNode &skeletonNode)
{
    auto *skeleton = qobject_cast<RySkeleton *>(&skeletonNode);
    const RyFacetMesh *mesh = meshOf(skeletonNode);
    if (!skeleton || !mesh)
        return;
    RyRef<RySelectionMap> map(new RySelectionMap);
    const Json *stored = figureJson(*scene.document, figure);
    const Json *pairs = stored ? find(*stored, "selectionMap") : nullptr;
    if (pairs && pairs->is_array()) {
        for (const Json &pair : *pairs) {
            if (!pair.is_array() || pair.size() != 2 || !pair[0].is_string() || !pair[1].is_number_integer())
                continue;
            const int node = pair[1].get<int>();
            RyNode *target = nullptr;
            for (const RyGltfNodeSource &source : scene.nodes) {
                if (source.node == node)
                    target = source.sceneNode;
            }
            map->addPair(QString::fromStdString(pair[0].get<std::string>()), target, false);
        }
    } else {
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

QString RyRiggingExtras::storedFigureName(const RyGltfDocument &document, int figure)
{
    const Json *stored = figureJson(document, figure);
    const Json *name = stored ? find(*stored, "name") : nullptr;
    return name && name->is_string() ? QString::fromStdString(name->get<std::string>()) : QString();
}

bool RyRiggingExtras::findRestMap(const RyNode &node, const AnchorOf &anchorOf, RyAffine &map)
{
    map = RyAffine();
    bool moved = false;
    for (const RyNode *at = &node; at; at = at->getNodeParent()) {
        if (qobject_cast<const RyBone *>(at))
            at = anchorOf(*at);
        if (!at->isPosed())
            continue;
        map = map * at->getLocalMap();
        moved = true;
    }
    return moved;
}

static Json nodeJson(const RyNode &sceneNode, const RyAffine *moved, const RyVec3 *place)
{
    const std::array<RyFloatProperty *, 9> rigging = riggingOf(sceneNode);
    Json ours{{"version", Version}};
    const char *const names[3] = {"origin", "end", "orient"};
    Json defaults = Json::object();
    const auto toFile = [moved](const RyVec3 &v, int triple) {
        if (!moved)
            return v;
        if (triple < 2)
            return moved->mapPoint(v);
        RyAffine stretch;
        RyQuat turn;
        (RyAffine::fromRotation(RyQuat::fromEulerXYZ(v)) * *moved).decomposePolar(stretch, turn);
        return turn.toEulerXYZ();
    };
    for (int triple = 0; triple < 3; ++triple) {
        const RyVec3 current = readTriple(rigging.data() + 3 * triple, false);
        const RyVec3 byDefault = readTriple(rigging.data() + 3 * triple, true);
        ours[names[triple]] = vectorJson(toFile(current, triple));
        if (byDefault != current)
            defaults[names[triple]] = vectorJson(toFile(byDefault, triple));
    }
    if (place && *place != readTriple(rigging.data(), false))
        ours["place"] = vectorJson(toFile(*place, 0));
    if (!defaults.empty())
        ours["defaults"] = std::move(defaults);
    ours["order"] = sceneNode.getRotationOrder().order();
    if (sceneNode.hasOwnLabel())
        ours["label"] = sceneNode.getLabel().toStdString();
    Json flags = Json::object();
    if (sceneNode.isHidden())
        flags["hidden"] = true;
    if (!sceneNode.isSelectable())
        flags["selectable"] = false;
    if (sceneNode.isSelectionPromoted())
        flags["promote"] = true;
    if (!sceneNode.inheritsScale())
        flags["inheritScale"] = false;
    if (!flags.empty())
        ours["flags"] = std::move(flags);
    Json limits = Json::object();
    for (const RyFloatProperty *property : poseOf(sceneNode)) {
        if (property->isClamped())
            limits[property->getName().toStdString()] = Json::array({property->getMin(), property->getMax()});
    }
    if (!limits.empty())
        ours["limits"] = std::move(limits);
    return ours;
}

QString RyRiggingExtras::nodeText(const RyNode &node)
{
    return riggingOf(node)[0] ? QString::fromStdString(nodeJson(node, nullptr, nullptr).dump()) : QString();
}

void RyRiggingExtras::storeNode(RyGltfDocument &document, int node, const RyNode &sceneNode, const AnchorOf &anchorOf,
                                const RyVec3 *place)
{
    if (!riggingOf(sceneNode)[0])
        return;
    RyAffine map;
    const bool moved = findRestMap(sceneNode, anchorOf, map);
    Json &extras = document.json()["nodes"][size_t(node)]["extras"];
    if (!extras.is_object())
        extras = Json::object();
    extras[Key] = nodeJson(sceneNode, moved ? &map : nullptr, place);
}

void RyRiggingExtras::storeFile(RyGltfDocument &document, double unit, const std::vector<const RyNode *> &figures,
                                const std::vector<int> &nodes, const std::vector<const RyNode *> &sceneNodes)
{
    std::map<const RyNode *, int> nodeOf;
    for (size_t i = 0; i < sceneNodes.size(); ++i)
        nodeOf[sceneNodes[i]] = nodes[i];
    Json list = Json::array();
    for (const RyNode *figure : figures) {
        Json entry = Json::object();
        if (const RyFacetMesh *mesh = figure ? meshOf(*figure) : nullptr) {
            entry["facets"] = firstTriangles(*mesh).back();
            entry["faceGroups"] = groupsJson(*mesh);
        }
        const auto *skeleton = qobject_cast<const RySkeleton *>(figure);
        if (skeleton)
            entry["name"] = skeleton->getName().toStdString();
        if (const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr) {
            Json pairs = Json::array();
            for (int i = 0; i < map->getNumPairs(); ++i) {
                const auto node = nodeOf.find(map->getPairNode(i));
                pairs.push_back(Json::array({map->getPairGroup(i).toStdString(), node == nodeOf.end() ? -1 : node->second}));
            }
            entry["selectionMap"] = std::move(pairs);
        }
        list.push_back(std::move(entry));
    }
    Json &extras = document.json()["extras"];
    if (!extras.is_object())
        extras = Json::object();
    extras[Key] = Json{{"version", Version}, {"unit", unit}, {"figures", std::move(list)}};
}

QString RyRiggingExtras::groupsText(const RyFacetMesh &mesh)
{
    return QString::fromStdString(groupsJson(mesh).dump());
}

QString RyRiggingExtras::selectionText(const RyNode &node)
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
