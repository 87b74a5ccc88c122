#include "rycore/io/gltf/extras/RyRiggingExtras.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyPropertyTriple.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>
#include <utility>

using RyExtrasJson::find;
using RyExtrasJson::readVector;
using RyExtrasJson::vectorJson;
using Json = RyExtrasJson::Json;

namespace {

void writeTriple(RyFloatProperty *const *p, const RyVec3 &v, bool asDefault)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (asDefault)
            p[axis]->setDefaultValue(v[axis]);
        else
            p[axis]->setValue(v[axis]);
    }
}

} // namespace

/// Whether the orientation takes a frame to a symmetric stretch; without a reflection there is one such orientation,
/// that of the node.
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

/// Centimetres now for those that were stored.
static float storedScale(const RyGltfDocument &document, double unit)
{
    const double stored = RyFigureExtras::storedUnit(document);
    return stored > 0.0 ? float(unit / stored) : 1.0f;
}

static const Json *nodeExtras(const RyGltfDocument &document, int node)
{
    const Json *entry = RyExtrasJson::entry(document.json(), "nodes", node);
    return entry ? RyExtrasJson::ours(*entry) : nullptr;
}

static void applyDefaults(const Json &ours, float scale, RyNode &sceneNode)
{
    const RyNodeRigging::Controls &rigging = sceneNode.riggingControls();
    const Json *defaults = find(ours, "defaults");
    RyVec3 v;
    if (defaults && readVector(find(*defaults, "origin"), v))
        writeTriple(rigging.data(), v * scale, true);
    if (defaults && readVector(find(*defaults, "end"), v))
        writeTriple(rigging.data() + 3, v * scale, true);
    if (defaults && readVector(find(*defaults, "orient"), v))
        writeTriple(rigging.data() + 6, v, true);
}

/// What fits whatever the file's matrices say.
static void applyTraits(const Json &ours, RyNode &sceneNode)
{
    if (const Json *order = find(ours, "order"); order && order->is_number_integer())
        sceneNode.setRotationOrder(RyRotationOrder(order->get<int>()));
    if (const Json *label = find(ours, "label"); label && label->is_string())
        sceneNode.setLabel(QString::fromStdString(label->get<std::string>()));
    if (const Json *flags = find(ours, "flags"); flags && flags->is_object()) {
        const auto flag = [&](const char *name, bool otherwise) {
            const Json *value = find(*flags, name);
            return value && value->is_boolean() ? value->get<bool>() : otherwise;
        };
        sceneNode.setHidden(flag("hidden", false));
        sceneNode.setSelectable(flag("selectable", true));
        sceneNode.setPromoteSelection(flag("promote", false));
        sceneNode.setInheritScale(flag("inheritScale", true));
        if (auto *skeleton = qobject_cast<RySkeleton *>(&sceneNode))
            skeleton->setDrawGLBones(flag("drawBones", false));
    }
}

static bool isNumbers(const Json *list, size_t count)
{
    return list && list->is_array() && list->size() == count &&
           std::all_of(list->begin(), list->end(), [](const Json &number) { return number.is_number(); });
}

static void applyLimitsOf(const Json &ours, float scale, RyNode &sceneNode)
{
    const RyNodePose::Controls &pose = sceneNode.poseControls();
    const Json *defaults = find(ours, "defaults");
    const Json *ofPose = defaults ? find(*defaults, "pose") : nullptr;
    for (size_t i = 0; isNumbers(ofPose, pose.size()) && i < pose.size(); ++i)
        pose[i]->setDefaultValue((*ofPose)[i].get<float>() * (i < 3 ? scale : 1.0f));
    const Json *limits = find(ours, "limits");
    if (!limits || !limits->is_object())
        return;
    for (size_t i = 0; i < pose.size(); ++i) {
        const Json *range = find(*limits, pose[i]->getName().toUtf8().constData());
        if (!range || !range->is_array() || range->size() < 2 || !(*range)[0].is_number() || !(*range)[1].is_number())
            continue;
        const float factor = i < 3 ? scale : 1.0f;
        pose[i]->setMin((*range)[0].get<float>() * factor);
        pose[i]->setMax((*range)[1].get<float>() * factor);
        pose[i]->setIsClamped(range->size() == 2 || (*range)[2] != Json(false));
    }
}

static bool applyPoseOf(const Json &ours, float scale, RyNode &sceneNode)
{
    const Json *pose = find(ours, "pose");
    const RyNodePose::Controls &controls = sceneNode.poseControls();
    if (!isNumbers(pose, controls.size()))
        return false;
    for (size_t i = 0; i < controls.size(); ++i)
        controls[i]->setValue((*pose)[i].get<float>() * (i < 3 ? scale : 1.0f));
    return true;
}

bool RyRiggingExtras::applyToNode(const RyGltfDocument &document, int node, double unit, float tolerance,
                                  const RyAffine &bind, RyNode &sceneNode, QStringList *messages)
{
    const Json *ours = nodeExtras(document, node);
    if (!ours)
        return false;
    const float scale = storedScale(document, unit);
    const RyNodeRigging::Controls &rigging = sceneNode.riggingControls();
    RyVec3 origin, end, orientation;
    if (!rigging[0] || !readVector(find(*ours, "origin"), origin) || !readVector(find(*ours, "end"), end))
        return false;
    RyVec3 place = origin;
    readVector(find(*ours, "place"), place);
    if ((place * scale - sceneNode.getOrigin()).length() > tolerance) {
        if (messages) {
            messages->append(
                QStringLiteral("\"%1\" was moved since its end point was stored; the stored values are left out")
                    .arg(sceneNode.getName()));
        }
        return false;
    }
    // Exactly the numbers that were saved, where they agree with what the file's matrices say.
    writeTriple(rigging.data(), origin * scale, true);
    writeTriple(rigging.data(), origin * scale, false);
    RyVec3 axes;
    const bool hasOrientation = readVector(find(*ours, "orient"), orientation);
    if (!readVector(find(*ours, "axes"), axes))
        axes = orientation;
    if (hasOrientation && fitsFrame(bind, RyQuat::fromEulerXYZ(axes), sceneNode.getOrientation())) {
        writeTriple(rigging.data() + 6, orientation, true);
        writeTriple(rigging.data() + 6, orientation, false);
    }
    writeTriple(rigging.data() + 3, end * scale, true);
    writeTriple(rigging.data() + 3, end * scale, false);
    applyDefaults(*ours, scale, sceneNode);
    applyTraits(*ours, sceneNode);
    return true;
}

void RyRiggingExtras::applyLimits(const RyGltfDocument &document, int node, double unit, RyNode &sceneNode)
{
    if (const Json *ours = nodeExtras(document, node))
        applyLimitsOf(*ours, storedScale(document, unit), sceneNode);
}

bool RyRiggingExtras::findStoredPose(const RyGltfDocument &document, int node, double unit, RyAffine &map)
{
    const Json *ours = nodeExtras(document, node);
    if (!ours || !find(*ours, "pose"))
        return false;
    const RyRef<RyNode> like(new RyNode);
    const float scale = storedScale(document, unit);
    RyVec3 origin, orientation;
    if (!readVector(find(*ours, "origin"), origin) || !readVector(find(*ours, "orient"), orientation) ||
        !applyPoseOf(*ours, scale, *like)) {
        return false;
    }
    like->setOrigin(origin * scale);
    like->setOrientation(RyQuat::fromEulerXYZ(orientation));
    applyTraits(*ours, *like);
    map = like->getLocalMap();
    return true;
}

RyAffine RyRiggingExtras::restOf(const RyGltfDocument &document, int node, double unit, const RyAffine &posed)
{
    RyAffine pose, unposed;
    if (!findStoredPose(document, node, unit, pose) || !pose.invert(unposed))
        return posed;
    const Json *ours = nodeExtras(document, node);
    RyVec3 place;
    if (!readVector(find(*ours, "place"), place) && !readVector(find(*ours, "origin"), place))
        return posed;
    const RyAffine rest = posed * unposed;
    place *= storedScale(document, unit);
    return (rest.translation() - place).length() <= 1e-4f * std::max(1.0f, place.length()) ? rest : posed;
}

bool RyRiggingExtras::applyPose(const RyGltfDocument &document, int node, double unit, const RyAffine &localPose,
                                float tolerance, RyNode &sceneNode)
{
    RyAffine stored;
    if (!findStoredPose(document, node, unit, stored))
        return false;
    const RyVec3 origin = sceneNode.getOrigin();
    double worst = 0.0;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            worst = std::max(worst, std::abs(stored.m[row][column] - localPose.m[row][column]));
    }
    if (worst > 1e-4 || (stored.mapPoint(origin) - localPose.mapPoint(origin)).length() > tolerance)
        return false;
    return applyPoseOf(*nodeExtras(document, node), storedScale(document, unit), sceneNode);
}

void RyRiggingExtras::applyFigure(const Json &ours, double unit, bool withPlace, RyNode &figure)
{
    const double stored =
        find(ours, "unit") && find(ours, "unit")->is_number() ? find(ours, "unit")->get<double>() : unit;
    const float scale = float(unit / stored);
    const RyNodeRigging::Controls &rigging = figure.riggingControls();
    RyVec3 v;
    applyTraits(ours, figure);
    if (rigging[0] && readVector(find(ours, "end"), v)) {
        writeTriple(rigging.data() + 3, v * scale, true);
        writeTriple(rigging.data() + 3, v * scale, false);
    }
    if (!withPlace)
        return;
    if (rigging[0] && readVector(find(ours, "origin"), v)) {
        writeTriple(rigging.data(), v * scale, true);
        writeTriple(rigging.data(), v * scale, false);
    }
    if (rigging[0] && readVector(find(ours, "orient"), v)) {
        writeTriple(rigging.data() + 6, v, true);
        writeTriple(rigging.data() + 6, v, false);
    }
    if (rigging[0])
        applyDefaults(ours, scale, figure);
    applyPoseOf(ours, scale, figure);
    applyLimitsOf(ours, scale, figure);
}

/// Whether the defaults of pose controls are others than those of a new node.
static bool hasOtherDefaults(const RyNodePose::Controls &pose)
{
    for (size_t i = 0; i < pose.size(); ++i) {
        if (pose[i]->getDefaultValue() != (i < 6 ? 0.0f : 1.0f))
            return true;
    }
    return false;
}

/// Whether a control may become what those of a new node may.
static bool hasPlainLimits(const RyFloatProperty &control)
{
    static const std::pair<float, float> plain = [] {
        const RyFloatProperty fresh(nullptr, QString());
        return std::pair(fresh.getMin(), fresh.getMax());
    }();
    return !control.isClamped() && control.getMin() == plain.first && control.getMax() == plain.second;
}

Json RyRiggingExtras::nodeJson(const RyNode &sceneNode, const RyVec3 *place)
{
    Json ours = Json::object();
    auto &members = ours.get_ref<Json::object_t &>();
    members.reserve(8); // an object without room grows by copying what it holds
    members.emplace_back("version", RyExtrasJson::Version);
    const RyNodeRigging::Controls &rigging = sceneNode.riggingControls();
    const char *const names[3] = {"origin", "end", "orient"};
    Json defaults = Json::object();
    for (int triple = 0; rigging[0] && triple < 3; ++triple) {
        const RyVec3 current = RyPropertyTriple::read(rigging.data() + 3 * triple, false);
        const RyVec3 byDefault = RyPropertyTriple::read(rigging.data() + 3 * triple, true);
        members.emplace_back(names[triple], vectorJson(current));
        if (byDefault != current)
            defaults[names[triple]] = vectorJson(byDefault);
    }
    if (place && *place != RyPropertyTriple::read(rigging.data(), false))
        ours["place"] = vectorJson(*place);
    const bool hasPoseDefaults = hasOtherDefaults(sceneNode.poseControls());
    if (hasPoseDefaults) {
        for (const RyFloatProperty *property : sceneNode.poseControls())
            defaults["pose"].push_back(property->getDefaultValue());
    }
    if (!defaults.empty())
        ours["defaults"] = std::move(defaults);
    ours["order"] = sceneNode.getRotationOrder().order();
    if (sceneNode.isPosed() || hasPoseDefaults) {
        Json pose = Json::array();
        for (const RyFloatProperty *property : sceneNode.poseControls())
            pose.push_back(property->getValue());
        ours["pose"] = std::move(pose);
    }
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
    if (const auto *skeleton = qobject_cast<const RySkeleton *>(&sceneNode); skeleton && skeleton->drawsGLBones())
        flags["drawBones"] = true;
    if (!flags.empty())
        ours["flags"] = std::move(flags);
    Json limits = Json::object();
    for (const RyFloatProperty *property : sceneNode.poseControls()) {
        if (hasPlainLimits(*property))
            continue;
        Json &range = limits[property->getName().toStdString()];
        range = Json::array({property->getMin(), property->getMax()});
        if (!property->isClamped())
            range.push_back(false);
    }
    if (!limits.empty())
        ours["limits"] = std::move(limits);
    return ours;
}

// Every member begins with a letter that says which one it is, and has a length of its own.
QByteArray RyRiggingExtras::nodeState(const RyNode &node)
{
    QByteArray state;
    state.reserve(64);
    const auto add = [&state](char member, const auto &value) {
        state += member;
        state.append(reinterpret_cast<const char *>(&value), int(sizeof(value)));
    };
    const RyNodeRigging::Controls &rigging = node.riggingControls();
    for (size_t triple = 0; rigging[0] && triple < 9; triple += 3) {
        const RyVec3 current = RyPropertyTriple::read(rigging.data() + triple, false);
        const RyVec3 byDefault = RyPropertyTriple::read(rigging.data() + triple, true);
        add('r', current);
        if (byDefault != current)
            add('d', byDefault);
    }
    const RyNodePose::Controls &pose = node.poseControls();
    const bool hasPoseDefaults = hasOtherDefaults(pose);
    const bool hasPose = hasPoseDefaults || node.isPosed();
    for (size_t i = 0; i < pose.size(); ++i) {
        if (hasPoseDefaults)
            add('D', pose[i]->getDefaultValue());
        if (hasPose)
            add('p', pose[i]->getValue());
        if (hasPlainLimits(*pose[i]))
            continue;
        add(pose[i]->isClamped() ? 'c' : 'l', char(i));
        add('<', pose[i]->getMin());
        add('>', pose[i]->getMax());
    }
    add('o', char(node.getRotationOrder().order()));
    const auto *skeleton = qobject_cast<const RySkeleton *>(&node);
    add('f', char(int(node.isHidden()) | int(!node.isSelectable()) << 1 | int(node.isSelectionPromoted()) << 2 |
                  int(!node.inheritsScale()) << 3 | int(skeleton && skeleton->drawsGLBones()) << 4));
    if (node.hasOwnLabel())
        state += 'n' + node.getLabel().toUtf8();
    return state;
}

void RyRiggingExtras::storeNode(RyGltfDocument &document, int node, const RyNode &sceneNode, const RyVec3 *place,
                                const RyAffine *bind)
{
    if (!sceneNode.riggingControls()[0])
        return;
    Json ours = nodeJson(sceneNode, place);
    RyAffine stretch;
    RyQuat rotation;
    if (bind)
        bind->decomposePolar(stretch, rotation);
    if (bind && !fitsFrame(*bind, sceneNode.getOrientation(), rotation))
        ours["axes"] = vectorJson(rotation.toEulerXYZ());
    RyExtrasJson::store(document.json()["nodes"][size_t(node)], std::move(ours));
}
