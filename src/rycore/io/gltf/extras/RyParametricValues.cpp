#include "rycore/io/gltf/extras/RyParametricValues.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

#include <algorithm>
#include <cmath>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

struct Flag
{
    RyLegacyJointParam::Flag flag;
    const char *name;
    int kind; // -1: all
};

constexpr Flag Flags[] = {
    {RyLegacyJointParam::ApplyMatrices, "matrices", -1},
    {RyLegacyJointParam::ApplyAngles, "angles", RyLegacyJointParam::Bend},
    {RyLegacyJointParam::ApplyBulges, "bulges", RyLegacyJointParam::Bend},
    {RyLegacyJointParam::ApplyBlend, "blend", RyLegacyJointParam::Twist},
    {RyLegacyJointParam::ApplyZones, "zones", RyLegacyJointParam::SmoothScale},
    {RyLegacyJointParam::HighSide, "hi", RyLegacyJointParam::SmoothScale},
    {RyLegacyJointParam::LowSide, "lo", RyLegacyJointParam::SmoothScale},
};

constexpr const char *Kinds[] = {"bend", "smoothScale", "twist", "curve"};

/// Controllers under the name of their group; those of a sphere without the sphere's name.
struct Place
{
    const char *group;
    std::string name;
    RyFloatProperty *property;
};

std::vector<Place> placesOf(const RyLegacyJointParam &param)
{
    std::vector<Place> places;
    const auto addSphere = [&places](const char *group, const RyLegacyJointSphere &sphere) {
        for (RyFloatProperty *control : sphere.controls())
            places.push_back({group, control->getName().mid(int(qstrlen(group)) + 1).toStdString(), control});
    };
    addSphere("dynamic", *param.getDynamicSphere());
    addSphere("static", *param.getStaticSphere());
    for (RyFloatProperty *controller : param.controllers())
        places.push_back({"values", controller->getName().toStdString(), controller});
    return places;
}

Json controllerJson(const RyFloatProperty &property, const RyFloatProperty &made)
{
    const bool hasLimits = property.getMin() != made.getMin() || property.getMax() != made.getMax() ||
                           property.isClamped() != made.isClamped();
    if (!hasLimits && property.getRawValue() == made.getRawValue() &&
        property.getDefaultValue() == made.getDefaultValue())
        return Json();
    Json json = Json::array({property.getRawValue(), property.getDefaultValue()});
    if (hasLimits) {
        json.push_back(property.getMin());
        json.push_back(property.getMax());
        json.push_back(property.isClamped());
    }
    return json;
}

bool applyController(const Json &stored, RyFloatProperty &property)
{
    if (!stored.is_array() || (stored.size() != 2 && stored.size() != 5))
        return false;
    float numbers[4] = {0, 0, property.getMin(), property.getMax()};
    for (size_t i = 0; i < std::min<size_t>(4, stored.size()); ++i) {
        if (!stored[i].is_number() || !std::isfinite(numbers[i] = stored[i].get<float>()))
            return false;
    }
    if (stored.size() == 5 && !stored[4].is_boolean())
        return false;
    property.setIsClamped(false); // a value may stand outside of its limits, which act when it is written
    property.setMin(numbers[2]);
    property.setMax(numbers[3]);
    property.setDefaultValue(numbers[1]);
    property.setValue(numbers[0]);
    property.setIsClamped(stored.size() == 5 && stored[4].get<bool>());
    return true;
}

int applyFlags(const Json &stored, RyLegacyJointParam &param)
{
    int damaged = 0;
    unsigned flags = param.flags();
    for (auto member = stored.begin(); member != stored.end(); ++member) {
        const auto flag = std::find_if(std::begin(Flags), std::end(Flags), [&](const Flag &each) {
            return member.key() == each.name && (each.kind < 0 || each.kind == param.type());
        });
        if (flag == std::end(Flags) || !member->is_boolean())
            ++damaged;
        else
            flags = *member == Json(true) ? flags | flag->flag : flags & ~unsigned(flag->flag);
    }
    param.setFlags(flags);
    return damaged;
}

} // namespace

const char *RyParametricValues::kindOf(const RyLegacyJointParam &param)
{
    return Kinds[param.type()];
}

RyLegacyJointParam *RyParametricValues::makeParam(const Json &kind)
{
    if (kind == Json(Kinds[RyLegacyJointParam::Bend]))
        return new RyLegacyBendParam;
    if (kind == Json(Kinds[RyLegacyJointParam::SmoothScale]))
        return new RyLegacySmoothScale;
    if (kind == Json(Kinds[RyLegacyJointParam::Twist]))
        return new RyLegacyTwistParam;
    return kind == Json(Kinds[RyLegacyJointParam::Curve]) ? new RyLegacyCurve : nullptr;
}

void RyParametricValues::add(const RyLegacyJointParam &param, Json &entry)
{
    const RyRef<RyLegacyJointParam> made(makeParam(Json(kindOf(param))));
    for (const Flag &each : Flags) {
        const bool isSet = param.flags() & each.flag;
        if ((each.kind < 0 || each.kind == param.type()) && isSet != bool(made->flags() & each.flag))
            entry["flags"][each.name] = isSet;
    }
    const std::vector<Place> places = placesOf(param);
    const std::vector<Place> fresh = placesOf(*made);
    for (size_t i = 0; i < places.size(); ++i) {
        Json json = controllerJson(*places[i].property, *fresh[i].property);
        if (!json.is_null())
            entry[places[i].group][places[i].name] = std::move(json);
    }
    for (size_t i = 0; i < places.size(); ++i) {
        if (places[i].property->getLabel() != fresh[i].property->getLabel())
            entry["labels"][places[i].property->getName().toStdString()] = places[i].property->getLabel().toStdString();
    }
}

int RyParametricValues::apply(const Json &entry, RyLegacyJointParam &param)
{
    int damaged = 0;
    if (const Json *flags = find(entry, "flags"))
        damaged += flags->is_object() ? applyFlags(*flags, param) : 1;
    const std::vector<Place> places = placesOf(param);
    for (const char *group : {"dynamic", "static", "values"}) {
        const Json *stored = find(entry, group);
        if (!stored)
            continue;
        if (!stored->is_object()) {
            ++damaged;
            continue;
        }
        for (auto member = stored->begin(); member != stored->end(); ++member) {
            const auto place = std::find_if(places.begin(), places.end(), [&](const Place &each) {
                return qstrcmp(each.group, group) == 0 && each.name == member.key();
            });
            damaged += place == places.end() || !applyController(*member, *place->property);
        }
    }
    const Json *labels = find(entry, "labels");
    for (const Place &place : places) {
        const Json *label = labels ? find(*labels, place.property->getName().toUtf8().constData()) : nullptr;
        if (label && label->is_string())
            place.property->setLabel(QString::fromStdString(label->get<std::string>()));
    }
    return damaged;
}

void RyParametricValues::scaleLengths(RyLegacyJointParam &param, float factor)
{
    const auto scale = [factor](RyFloatProperty &property) {
        const auto scaled = [factor](float length) {
            return std::abs(length) < RyLegacyTwistParam::Far ? length * factor : length;
        };
        const bool isClamped = property.isClamped();
        property.setIsClamped(false);
        property.setMin(scaled(property.getMin()));
        property.setMax(scaled(property.getMax()));
        property.setDefaultValue(scaled(property.getDefaultValue()));
        property.setValue(scaled(property.getRawValue()));
        property.setIsClamped(isClamped);
    };
    for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()}) {
        for (RyFloatProperty *control : {sphere->getXTransControl(), sphere->getYTransControl(),
                                         sphere->getZTransControl(), sphere->getScaleControl()})
            scale(*control);
    }
    if (param.type() == RyLegacyJointParam::Twist || param.type() == RyLegacyJointParam::SmoothScale) {
        for (RyFloatProperty *controller : param.controllers())
            scale(*controller);
    }
}
