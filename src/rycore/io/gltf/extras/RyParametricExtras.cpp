#include "rycore/io/gltf/extras/RyParametricExtras.h"

#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyParametricValues.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/fit/RyLegacyFit.h"
#include "rycore/scene/RySkeleton.h"

#include <cmath>
#include <memory>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

/// How a bone is called: by its node in files, by its name in texts. Null for none.
using NameOf = std::function<Json(const RyBone *)>;

Json paramJson(const RyLegacyJointParam &param, const NameOf &nameOf)
{
    Json entry{{"type", RyParametricValues::kindOf(param)}, {"name", param.getName().toStdString()}};
    if (param.hasOwnLabel())
        entry["label"] = param.getLabel().toStdString();
    entry["axis"] = param.getAxis();
    Json driver = nameOf(param.getDriver());
    if (!driver.is_null())
        entry["driver"] = std::move(driver);
    if (param.isFlipped())
        entry["flipped"] = true;
    RyParametricValues::add(param, entry);
    return entry;
}

Json jointJson(const RyLegacyJoint &joint, const NameOf &nameOf)
{
    Json entry{{"bone", nameOf(joint.getBone())}, {"name", joint.getName().toStdString()}};
    if (joint.hasOwnLabel())
        entry["label"] = joint.getLabel().toStdString();
    Json params = Json::array();
    for (const RyLegacyJointParam *param : joint.params())
        params.push_back(paramJson(*param, nameOf));
    entry["params"] = std::move(params);
    return entry;
}

class Reader
{
public:
    Reader(const std::map<int, RyBone *> &bones, float unit, RyLegacyBinding &binding)
        : m_bones(bones), m_unit(unit), m_binding(binding)
    {}

    void readJoint(const Json &entry);

    QStringList goneJoints;
    QStringList goneParams;
    int damaged = 0;

private:
    enum Found { None, There, Gone };
    Found findBone(const Json &entry, const char *key, RyBone *&bone) const;
    void readName(const Json &entry, RyElement &element);
    void readParam(const Json &entry, RyLegacyJoint &joint);

    const std::map<int, RyBone *> &m_bones;
    float m_unit;
    RyLegacyBinding &m_binding;
};

QString nameIn(const Json &entry)
{
    const Json *name = find(entry, "name");
    return name && name->is_string() ? QString::fromStdString(name->get<std::string>()) : QString();
}

Reader::Found Reader::findBone(const Json &entry, const char *key, RyBone *&bone) const
{
    const Json *node = find(entry, key);
    if (!node)
        return None;
    const auto found = node->is_number_integer() ? m_bones.find(node->get<int>()) : m_bones.end();
    if (found == m_bones.end())
        return Gone;
    bone = found->second;
    return There;
}

void Reader::readName(const Json &entry, RyElement &element)
{
    element.setName(nameIn(entry));
    const Json *label = find(entry, "label");
    if (label && label->is_string())
        element.setLabel(QString::fromStdString(label->get<std::string>()));
    else if (label)
        ++damaged;
}

void Reader::readJoint(const Json &entry)
{
    const Json *params = find(entry, "params");
    if (!params || !params->is_array()) {
        ++damaged;
        return;
    }
    RyBone *bone = nullptr;
    if (findBone(entry, "bone", bone) != There) {
        goneJoints.append(nameIn(entry));
        return;
    }
    const RyRef<RyLegacyJoint> joint(new RyLegacyJoint);
    readName(entry, *joint);
    joint->setBone(bone);
    for (const Json &param : *params)
        readParam(param, *joint);
    m_binding.addJoint(joint.get());
}

void Reader::readParam(const Json &entry, RyLegacyJoint &joint)
{
    const Json *kind = find(entry, "type");
    const Json *axis = find(entry, "axis");
    const RyRef<RyLegacyJointParam> param(kind ? RyParametricValues::makeParam(*kind) : nullptr);
    RyBone *driver = nullptr;
    if (!param) {
        ++damaged;
        return;
    }
    if (findBone(entry, "driver", driver) == Gone) {
        goneParams.append(nameIn(entry));
        return;
    }
    readName(entry, *param);
    param->setDriver(driver);
    if (axis && axis->is_number_integer())
        param->setAxis(axis->get<int>());
    damaged += !axis || *axis != Json(param->getAxis());
    const Json *flipped = find(entry, "flipped");
    param->setFlipped(flipped && *flipped == Json(true));
    damaged += RyParametricValues::apply(entry, *param);
    if (m_unit != 1.0f)
        RyParametricValues::scaleLengths(*param, m_unit);
    joint.addJointParam(param.get());
}

void renumber(Json &holder, const char *key, const std::function<int(int)> &nodeOf)
{
    const auto node = holder.is_object() ? holder.find(key) : holder.end();
    if (holder.is_object() && node != holder.end() && node->is_number_integer())
        *node = nodeOf(node->get<int>());
}

} // namespace

Json RyParametricExtras::toJson(const RyLegacyBinding &binding, const RyGltfNodeIndex &nodeOf, QStringList *messages)
{
    const auto nodeName = [&nodeOf](const RyBone *bone) {
        const int node = nodeOf.of(bone);
        return node < 0 ? Json() : Json(node);
    };
    Json joints = Json::array();
    for (const RyLegacyJoint *joint : binding.joints()) {
        if (nodeOf.of(joint->getBone()) >= 0)
            joints.push_back(jointJson(*joint, nodeName));
        else if (messages)
            messages->append(QStringLiteral("The joint \"%1\" is not stored: its bone has no place in the file")
                                 .arg(joint->getName()));
    }
    return Json{{"joints", std::move(joints)}};
}

Json RyParametricExtras::fitJson(const RyLegacyBinding &binding, const RyMapExtras::Fingerprint &influences)
{
    Json json{{"fingerprint", influences.text()}};
    const RyLegacyFit *fit = binding.keptFit().get();
    if (!fit)
        return json;
    const auto rounded = [](double percent) { return std::round(percent * 1e4) / 1e4; };
    const RyLegacyFitReport &report = fit->report;
    json.update(Json{{"poses", report.poses},
                     {"rms", rounded(report.rms)},
                     {"rmsPartly", rounded(report.rmsPartly)},
                     {"max", rounded(report.max)},
                     {"bulges", rounded(report.bulges)},
                     {"bone", report.bone.toStdString()},
                     {"pose", report.pose.toStdString()}});
    if (fit->isPlain)
        json["plain"] = true;
    return json;
}

bool RyParametricExtras::fits(const Json &stored, const RyMapExtras::Fingerprint &influences)
{
    const Json *fit = find(stored, "fit");
    const Json *fingerprint = fit ? find(*fit, "fingerprint") : nullptr;
    return fingerprint && *fingerprint == Json(influences.text());
}

void RyParametricExtras::readReport(const Json &stored, RyLegacyFit &fit)
{
    const Json *json = find(stored, "fit");
    const auto read = [json](const char *key, auto &number) {
        const Json *value = json ? find(*json, key) : nullptr;
        if (value && value->is_number())
            number = value->get<std::decay_t<decltype(number)>>();
    };
    const auto readText = [json](const char *key, QString &text) {
        const Json *value = json ? find(*json, key) : nullptr;
        if (value && value->is_string())
            text = QString::fromStdString(value->get<std::string>());
    };
    RyLegacyFitReport &report = fit.report;
    read("poses", report.poses);
    read("rms", report.rms);
    read("rmsPartly", report.rmsPartly);
    read("max", report.max);
    read("bulges", report.bulges);
    readText("bone", report.bone);
    readText("pose", report.pose);
    const Json *plain = json ? find(*json, "plain") : nullptr;
    fit.isPlain = plain && *plain == Json(true);
}

bool RyParametricExtras::isReadable(const Json &stored)
{
    const Json *joints = find(stored, "joints");
    return joints && joints->is_array();
}

RyLegacyBinding *RyParametricExtras::read(const Json &stored, const std::map<int, RyBone *> &bones, float unit,
                                          const QString &figure, bool *isWhole, QStringList *messages)
{
    const auto say = [messages](const QString &message) {
        if (messages)
            messages->append(message);
    };
    auto binding = std::make_unique<RyLegacyBinding>();
    Reader reader(bones, unit, *binding);
    for (const Json &joint : *find(stored, "joints"))
        reader.readJoint(joint);
    *isWhole = reader.goneJoints.isEmpty() && reader.goneParams.isEmpty() && reader.damaged == 0;
    if (!reader.goneJoints.isEmpty())
        say(QStringLiteral("Joints of \"%1\" are left out, since their bones are gone: %2")
                .arg(figure, reader.goneJoints.join(QStringLiteral(", "))));
    if (!reader.goneParams.isEmpty())
        say(QStringLiteral("Joint parameters of \"%1\" are left out, since what drove them is gone: %2")
                .arg(figure, reader.goneParams.join(QStringLiteral(", "))));
    if (reader.damaged > 0)
        say(QStringLiteral("%1 stored values of the joints of \"%2\" are damaged and left out")
                .arg(reader.damaged)
                .arg(figure));
    return binding.release();
}

QString RyParametricExtras::text(const RyNode &figure)
{
    const RyLegacyBinding *binding = RyLegacyBinding::findBinding(qobject_cast<const RySkeleton *>(&figure));
    if (!binding)
        return QString();
    const auto name = [](const RyBone *bone) { return bone ? Json(bone->getName().toStdString()) : Json(); };
    QString result = QStringLiteral("joints\n");
    for (const RyLegacyJoint *joint : binding->joints()) {
        const std::string entry = jointJson(*joint, name).dump(-1, ' ', false, Json::error_handler_t::replace);
        result += QString::fromStdString(entry) + QLatin1Char('\n');
    }
    return result;
}

QString RyParametricExtras::renumbered(const QString &entry, const std::function<int(int)> &nodeOf)
{
    Json parsed = Json::parse(entry.toStdString(), nullptr, false);
    const auto joints = parsed.is_object() ? parsed.find("joints") : parsed.end();
    if (!parsed.is_object() || joints == parsed.end() || !joints->is_array())
        return entry;
    for (Json &joint : *joints) {
        renumber(joint, "bone", nodeOf);
        const auto params = joint.is_object() ? joint.find("params") : joint.end();
        if (!joint.is_object() || params == joint.end() || !params->is_array())
            continue;
        for (Json &param : *params)
            renumber(param, "driver", nodeOf);
    }
    return QString::fromStdString(parsed.dump(-1, ' ', false, Json::error_handler_t::replace));
}
