#include "rycore/script/prototypes/RyLegacyJointParamPrototype.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacySpheres.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/parametric/RyLegacyParamPair.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeLookup.h"

#include <cmath>

namespace {

struct FlagName
{
    const char *name;
    RyLegacyJointParam::Flag flag;
    int kind; // -1: every kind has it
};

constexpr FlagName FlagNames[] = {
    {"flipped", RyLegacyJointParam::Flipped, -1},
    {"matrices", RyLegacyJointParam::ApplyMatrices, -1},
    {"angles", RyLegacyJointParam::ApplyAngles, RyLegacyJointParam::Bend},
    {"bulges", RyLegacyJointParam::ApplyBulges, RyLegacyJointParam::Bend},
    {"blend", RyLegacyJointParam::ApplyBlend, RyLegacyJointParam::Twist},
    {"zones", RyLegacyJointParam::ApplyZones, RyLegacyJointParam::SmoothScale},
    {"high", RyLegacyJointParam::HighSide, RyLegacyJointParam::SmoothScale},
    {"low", RyLegacyJointParam::LowSide, RyLegacyJointParam::SmoothScale},
};

bool isFlagOf(const RyLegacyJointParam &param, const FlagName &flag)
{
    return flag.kind < 0 || flag.kind == param.type();
}

constexpr unsigned OneSided = RyLegacyJointParam::Flipped | RyLegacyJointParam::HighSide | RyLegacyJointParam::LowSide;

} // namespace

QString RyLegacyJointParamPrototype::getKind() const
{
    constexpr const char *Kinds[] = {"bend", "smoothScale", "twist", "curve"};
    const auto *param = self<RyLegacyJointParam>();
    return param ? QLatin1String(Kinds[param->type()]) : QString();
}

QString RyLegacyJointParamPrototype::getName() const
{
    const auto *param = self<RyLegacyJointParam>();
    return param ? param->getName() : QString();
}

RyLegacyJoint *RyLegacyJointParamPrototype::getJoint() const
{
    const auto *param = self<RyLegacyJointParam>();
    return param ? param->getJoint() : nullptr;
}

RyLegacyJointParam *RyLegacyJointParamPrototype::getPartner() const
{
    const auto *param = self<RyLegacyJointParam>();
    return param ? param->findPartner() : nullptr;
}

int RyLegacyJointParamPrototype::getAxis() const
{
    const auto *param = self<RyLegacyJointParam>();
    return param ? param->getAxis() : 0;
}

void RyLegacyJointParamPrototype::setAxis(int axis) const
{
    auto *param = self<RyLegacyJointParam>();
    if (!param)
        return;
    param->setAxis(axis);
    if (param->getAxis() != axis)
        fail(tr("\"%1\" has no axis %2.").arg(param->getName()).arg(axis));
}

RyBone *RyLegacyJointParamPrototype::getDriver() const
{
    const auto *param = self<RyLegacyJointParam>();
    return param ? param->getDriver() : nullptr;
}

void RyLegacyJointParamPrototype::setDriver(RyBone *bone) const
{
    auto *param = self<RyLegacyJointParam>();
    if (param && !bone)
        fail(tr("A driver is a bone."));
    else if (param)
        param->setDriver(bone);
}

QStringList RyLegacyJointParamPrototype::getFlagNames() const
{
    QStringList names;
    if (const auto *param = self<RyLegacyJointParam>()) {
        for (const FlagName &flag : FlagNames) {
            if (isFlagOf(*param, flag))
                names.append(QLatin1String(flag.name));
        }
    }
    return names;
}

unsigned RyLegacyJointParamPrototype::flag(const RyLegacyJointParam &param, const QString &name) const
{
    for (const FlagName &each : FlagNames) {
        if (isFlagOf(param, each) && name == QLatin1String(each.name))
            return each.flag;
    }
    fail(tr("\"%1\" has no flag called \"%2\".").arg(param.getName(), name));
    return 0;
}

bool RyLegacyJointParamPrototype::getFlag(const QString &name) const
{
    const auto *param = self<RyLegacyJointParam>();
    return param && (param->flags() & flag(*param, name));
}

void RyLegacyJointParamPrototype::setFlag(const QString &name, bool onOff, bool both) const
{
    auto *param = self<RyLegacyJointParam>();
    const unsigned bit = param ? flag(*param, name) : 0;
    if (!bit)
        return;
    if (both && (bit & OneSided))
        fail(tr("The sides of a joint differ in \"%1\".").arg(name));
    else
        RyLegacyParamPair(param, both ? param->findPartner() : nullptr).setFlag(RyLegacyJointParam::Flag(bit), onOff);
}

std::vector<RyFloatProperty *> RyLegacyJointParamPrototype::values() const
{
    const auto *param = self<RyLegacyJointParam>();
    if (!param)
        return {};
    std::vector<RyFloatProperty *> values = param->controllers();
    for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()})
        values.insert(values.end(), sphere->controls().begin(), sphere->controls().end());
    return values;
}

RyFloatProperty *RyLegacyJointParamPrototype::value(const QString &name) const
{
    const auto *param = self<RyLegacyJointParam>();
    if (!param)
        return nullptr;
    for (RyFloatProperty *property : values()) {
        if (property->getName() == name)
            return property;
    }
    fail(tr("\"%1\" has no value called \"%2\".").arg(param->getName(), name));
    return nullptr;
}

void RyLegacyJointParamPrototype::setValue(const QString &name, double value, bool both) const
{
    auto *param = self<RyLegacyJointParam>();
    RyFloatProperty *property = this->value(name);
    if (!property || !isNumber(name, value))
        return;
    const std::vector<RyFloatProperty *> properties =
        RyLegacyParamPair(param, both ? param->findPartner() : nullptr).both(property);
    for (const RyFloatProperty *each : properties) {
        QString error;
        if (!RyNodeLookup::canBecome(*each, float(value), &error)) {
            fail(error);
            return;
        }
    }
    // As fields write them: who follows the first one has the last word.
    for (auto each = properties.rbegin(); each != properties.rend(); ++each)
        (*each)->adjustValue(float(value));
}

QScriptValue RyLegacyJointParamPrototype::getAngles() const
{
    const auto *bend = self<RyLegacyBendParam>();
    if (!bend)
        return {};
    const RyBendAngles::Values degrees = bend->angleValues();
    QScriptValue array = engine()->newArray(uint(degrees.size()));
    for (size_t i = 0; i < degrees.size(); ++i)
        array.setProperty(quint32(i), double(degrees[i]));
    return array;
}

void RyLegacyJointParamPrototype::setAngles(double staticA, double dynamicB, double dynamicC, double staticD) const
{
    auto *bend = self<RyLegacyBendParam>();
    if (!bend)
        return;
    if (!std::isfinite(staticA) || !std::isfinite(dynamicB) || !std::isfinite(dynamicC) || !std::isfinite(staticD)) {
        fail(tr("Angles are four numbers."));
        return;
    }
    const auto radians = [](double degrees) { return float(degrees * RyFastMath::RadiansPerDegree); };
    bend->setAngles(radians(staticA), radians(dynamicB), radians(dynamicC), radians(staticD));
}

void RyLegacyJointParamPrototype::setAngle(int index, double degrees, bool push) const
{
    auto *bend = self<RyLegacyBendParam>();
    if (!bend)
        return;
    if (index < 0 || index > 3 || !std::isfinite(degrees))
        fail(tr("An angle has an index from 0 to 3, and is a number."));
    else
        bend->setAngleValuePushing(index, float(degrees), push, bend->angleValues());
}

QScriptValue RyLegacyJointParamPrototype::toNumbers(const RyMatrix4 &matrix) const
{
    QScriptValue array = engine()->newArray(16);
    for (quint32 i = 0; i < 16; ++i)
        array.setProperty(i, double(matrix.data()[i]));
    return array;
}

bool RyLegacyJointParamPrototype::toMatrix(const QScriptValue &numbers, RyMatrix4 *matrix) const
{
    for (quint32 i = 0; i < 16; ++i) {
        const QScriptValue number = numbers.property(i);
        if (!number.isNumber() || !std::isfinite(float(number.toNumber()))) {
            fail(tr("A matrix is an array of sixteen numbers."));
            return false;
        }
        matrix->data()[i] = float(number.toNumber());
    }
    return true;
}

QScriptValue RyLegacyJointParamPrototype::getDynamicMatrix() const
{
    const auto *param = self<RyLegacyJointParam>();
    return param ? toNumbers(param->getDynamicMatrix()) : QScriptValue();
}

QScriptValue RyLegacyJointParamPrototype::getStaticMatrix() const
{
    const auto *param = self<RyLegacyJointParam>();
    return param ? toNumbers(param->getStaticMatrix()) : QScriptValue();
}

void RyLegacyJointParamPrototype::setDynamicMatrix(const QScriptValue &numbers) const
{
    auto *param = self<RyLegacyJointParam>();
    RyMatrix4 matrix;
    if (param && toMatrix(numbers, &matrix))
        param->setDynamicMatrix(matrix);
}

void RyLegacyJointParamPrototype::setStaticMatrix(const QScriptValue &numbers) const
{
    auto *param = self<RyLegacyJointParam>();
    RyMatrix4 matrix;
    if (param && toMatrix(numbers, &matrix))
        param->setStaticMatrix(matrix);
}

void RyLegacyJointParamPrototype::resetMatrices(bool both) const
{
    auto *param = self<RyLegacyJointParam>();
    const RyLegacyJoint *joint = param ? param->getJoint() : nullptr;
    if (!joint || !joint->getBone()) {
        if (param)
            fail(tr("\"%1\" is on no joint.").arg(param->getName()));
        return;
    }
    (both ? RyLegacySpheres::resetBoth : RyLegacySpheres::reset)(*param, *joint->getBone());
}

RyWeightMap *RyLegacyJointParamPrototype::getWeights() const
{
    auto *param = self<RyLegacyJointParam>();
    const RyLegacyJoint *joint = param ? param->getJoint() : nullptr;
    const RyBone *bone = joint ? joint->getBone() : nullptr;
    return bone ? param->getWeights(bone->getSkeleton()) : nullptr;
}
