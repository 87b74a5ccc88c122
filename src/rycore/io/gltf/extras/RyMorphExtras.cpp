#include "rycore/io/gltf/extras/RyMorphExtras.h"

#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyShape.h"

#include <algorithm>
#include <cmath>
#include <map>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

bool readNumber(const Json *value, float &number)
{
    if (!value || !value->is_number())
        return false;
    number = value->get<float>();
    return std::isfinite(number);
}

/// Without what links add.
Json allOf(const RyFloatProperty &control)
{
    Json json{{"own", control.getRawValue()},
              {"default", control.getDefaultValue()},
              {"limits", Json::array({control.getMin(), control.getMax(), control.isClamped()})}};
    if (control.hasOwnLabel())
        json["label"] = control.getLabel().toStdString();
    return json;
}

/// Without what a reader makes of the value alone.
Json othersOf(const RyFloatProperty &control)
{
    const float value = control.getValue();
    const Json all = allOf(control);
    Json json = Json::object();
    if (control.getDefaultValue() != 0.0f)
        json["default"] = all["default"];
    if (control.getMin() != std::min(0.0f, value) || control.getMax() != std::max(1.0f, value) || !control.isClamped())
        json["limits"] = all["limits"];
    if (control.hasOwnLabel())
        json["label"] = all["label"];
    return json;
}

void applyTo(RyFloatProperty &control, const Json &stored)
{
    float number = 0.0f;
    if (readNumber(find(stored, "default"), number))
        control.setDefaultValue(number);
    const Json *limits = find(stored, "limits");
    float min = 0.0f;
    float max = 0.0f;
    if (limits && limits->is_array() && limits->size() == 3 && readNumber(&(*limits)[0], min) &&
        readNumber(&(*limits)[1], max)) {
        control.setMin(min);
        control.setMax(max);
        control.setIsClamped((*limits)[2] != Json(false));
    }
    if (const Json *label = find(stored, "label"); label && label->is_string())
        control.setLabel(QString::fromStdString(label->get<std::string>()));
}

} // namespace

Json RyMorphExtras::toJson(const RyShape &shape)
{
    Json list = Json::array();
    for (const RyMorph *morph : shape.getMorphs()) {
        Json entry{{"name", morph->getName().toStdString()}};
        const Json others = morph->getValueControl() ? othersOf(*morph->getValueControl()) : Json::object();
        if (others.empty())
            continue;
        entry.update(others);
        list.push_back(std::move(entry));
    }
    return list.empty() ? Json() : list;
}

void RyMorphExtras::apply(const RyGltfDocument &document, int figure, const RyShape &shape)
{
    const Json *stored = RyFigureExtras::storedMorphs(document, figure);
    if (!stored || !stored->is_array() || shape.getMorphs().empty())
        return;
    std::map<QString, RyFloatProperty *> controls;
    for (const RyMorph *morph : shape.getMorphs())
        controls.emplace(morph->getName(), morph->getValueControl());
    for (const Json &entry : *stored) {
        const Json *name = find(entry, "name");
        const auto control = name && name->is_string() ? controls.find(QString::fromStdString(name->get<std::string>()))
                                                       : controls.end();
        if (control != controls.end())
            applyTo(*control->second, entry);
    }
}

QString RyMorphExtras::text(const RyShape &shape)
{
    Json list = Json::array();
    for (const RyMorph *morph : shape.getMorphs()) {
        if (morph->getValueControl())
            list.push_back(Json::array({morph->getName().toStdString(), allOf(*morph->getValueControl())}));
    }
    return QString::fromStdString(list.dump(-1, ' ', false, Json::error_handler_t::replace));
}
