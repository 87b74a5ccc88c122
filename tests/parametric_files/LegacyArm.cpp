#include "LegacyArm.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/undo/RyUndoStack.h"

#include <cmath>

namespace {

constexpr float Shoulder = 0;
constexpr float Elbow = 30;
constexpr float Wrist = 58;
constexpr float Tip = 78;
constexpr float Level = 140;
constexpr int Around = 16;

RyVec3 onArm(float x)
{
    return {x, Level, 0};
}

} // namespace

LegacyArm::LegacyArm(bool hasTwistZone)
{
    figure = new RyLegacyFigure;
    figure->setName(QStringLiteral("figure"));
    scene.addNode(figure);
    body = addBone("body", figure, {-10, 0, 0}, {-10, float(Height), 0});
    upper = addBone("upper", body, onArm(Shoulder), onArm(Elbow));
    fore = addBone("fore", upper, onArm(Elbow), onArm(Wrist));
    hand = addBone("hand", fore, onArm(Wrist), onArm(Tip));
    buildMesh();
    binding = new RyLegacyBinding;
    for (RyBone *bone : {upper, fore, hand})
        addJoint(bone);
    addParams(upper, false, false);
    addParams(fore, true, hasTwistZone);
    addParams(hand, true, false);
    figure->getObject()->addModifier(binding);
}

LegacyArm::~LegacyArm()
{
    ryUndoStack()->clearAll();
}

RyBone *LegacyArm::addBone(const char *name, RyNode *parent, const RyVec3 &origin, const RyVec3 &end)
{
    auto *bone = new RyBone;
    bone->setName(QLatin1String(name));
    parent->addNodeChild(bone);
    scene.addNode(bone);
    bone->setOrigin(origin, true);
    bone->setOrigin(origin);
    bone->setEndPoint(end, true);
    bone->setEndPoint(end);
    bone->setRotationOrder(RyRotationOrder(RyRotationOrder::XYZ));
    return bone;
}

void LegacyArm::buildMesh()
{
    mesh = new RyFacetMesh;
    std::vector<RyVec3> positions;
    std::vector<RyFacet> facets;
    std::vector<int> groups;
    for (int corner = 0; corner < 8; ++corner)
        positions.push_back(
            {corner & 1 ? -5.0f : -15.0f, corner & 2 ? float(Height) : 0.0f, corner & 4 ? 5.0f : -5.0f});
    for (const std::array<int, 4> &side :
         {std::array<int, 4>{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}) {
        facets.push_back(RyFacet{{side[0], side[1], side[2], side[3]}});
        groups.push_back(0);
    }
    for (int ring = 0; ring <= int(Tip); ++ring) {
        for (int i = 0; i < Around; ++i) {
            const double angle = 2.0 * M_PI * (i + 0.25) / Around;
            positions.push_back({float(ring), Level + float(4.0 * std::cos(angle)), float(4.0 * std::sin(angle))});
        }
    }
    for (int ring = 0; ring < int(Tip); ++ring) {
        for (int i = 0; i < Around; ++i) {
            const int at = 8 + ring * Around;
            const int next = (i + 1) % Around;
            facets.push_back(RyFacet{{at + i, at + Around + i, at + Around + next, at + next}});
            groups.push_back(ring < Elbow ? 1 : ring < Wrist ? 2 : 3);
        }
    }
    mesh->setPositions(positions);
    mesh->setFacets(facets);
    const RyBone *bones[] = {body, upper, fore, hand};
    auto *map = new RySelectionMap;
    for (const RyBone *bone : bones) {
        mesh->createFaceGroup(bone->getName());
        map->addPair(bone->getName(), const_cast<RyBone *>(bone), false);
    }
    mesh->setGroupsOfFacets(groups);
    auto *object = new RyObject;
    object->setName(figure->getName());
    object->addShape(new RyFacetShape(mesh));
    figure->setObject(object);
    figure->setSelectionMap(map);
}

RyLegacyJoint *LegacyArm::addJoint(RyBone *bone)
{
    auto *joint = new RyLegacyJoint;
    joint->setBone(bone, true);
    binding->addJoint(joint);
    return joint;
}

void LegacyArm::addParams(RyBone *bone, bool hasAngles, bool hasTwistZone)
{
    const auto add = [&](RyBone *holder, RyLegacyJointParam *param) {
        RyLegacyJoint *joint = binding->findJoint(holder);
        param->setFlipped(holder != bone);
        if (joint)
            joint->addJointParam(param);
        else
            delete param;
    };
    auto *above = qobject_cast<RyBone *>(bone->getNodeParent());
    for (RyBone *holder : {bone, above}) {
        const QString prefix = holder == bone ? QString() : bone->getName() + QLatin1Char('_');
        auto *twist = new RyLegacyTwistParam(prefix + QStringLiteral("twistx"), 0, bone);
        if (hasTwistZone) {
            twist->setApplyBlend(true);
            twist->setStart(bone->getOrigin().x);
            twist->setEnd(bone->getEndPoint().x);
        }
        add(holder, twist);
        for (const int axis : {1, 2}) {
            auto *bend = new RyLegacyBendParam(prefix + (axis == 1 ? "jointy" : "jointz"), axis, bone);
            bend->setApplyAngles(hasAngles);
            add(holder, bend);
        }
    }
}

void LegacyArm::makeUntidy()
{
    figure->getXTransControl()->setValue(12);
    figure->getYRotControl()->setValue(35);
    figure->getScaleControl()->setValue(1.1f);
    fore->setOrientation(RyQuat(RyVec3(1, 0, 0), 0.4f));
    fore->setOrientation(RyQuat(RyVec3(1, 0, 0), 0.2f), true);
    hand->setOrientation(RyQuat(RyVec3(1, 0.2f, 0.1f).normalized(), -0.3f));
    fore->setOrigin({30.25f, 140.5f, 0.25f});
    fore->setRotationOrder(RyRotationOrder(RyRotationOrder::XZY));
    fore->getZRotControl()->setValue(40);
    fore->getYRotControl()->setMin(-80);
    fore->getYRotControl()->setMax(20);
    fore->getYRotControl()->setIsClamped(true);
    hand->getXRotControl()->setValue(-20);
    hand->getXScaleControl()->setValue(1.2f);
    hand->setInheritScale(false);

    RyLegacyJoint *joint = binding->findJoint(fore);
    joint->setName(QStringLiteral("a joint / \"quoted\" \u00e4"));
    joint->setLabel(QStringLiteral("Elbow"));
    RyLegacyJointParam *bend = joint->findParam(RyLegacyJointParam::Bend, fore, 1);
    bend->setLabel(QStringLiteral("Bend It"));
    bend->controllers()[0]->setValue(101.125f);
    bend->controllers()[0]->setDefaultValue(95);
    bend->controllers()[1]->setMin(-44);
    bend->controllers()[1]->setMax(60);
    bend->controllers()[1]->setIsClamped(true);
    bend->controllers()[4]->setValue(0.3f);
    bend->controllers()[4]->setLabel(QStringLiteral("Biceps"));
    bend->setFlags(bend->flags() | RyLegacyJointParam::ApplyBulges | RyLegacyJointParam::ApplyMatrices);
    int number = 0;
    for (RyFloatProperty *control : bend->getDynamicSphere()->controls())
        control->setValue(control->getValue() + 0.125f * float(++number));
    bend->getStaticSphere()->getScaleControl()->setValue(9);
    bend->getStaticSphere()->getScaleControl()->setDefaultValue(8);
    bend->getStaticSphere()->getXTransControl()->setValue(30);

    auto *smooth = new RyLegacySmoothScale(QStringLiteral("upper_smoox"), 0, upper);
    smooth->setHiValid(false);
    smooth->setLoValid(true);
    smooth->setApplyZones(true);
    smooth->setLoStart(34);
    smooth->setLoEnd(26);
    joint->addJointParam(smooth);
    auto *twist = new RyLegacyTwistParam(QStringLiteral("second"), 2, nullptr);
    twist->setApplyBlend(true);
    twist->setStart(40);
    joint->addJointParam(twist);
    binding->findJoint(hand)->addJointParam(new RyLegacyCurve(QStringLiteral("plane"), 5, hand));
    // One of a name that is there, and both linked to another value.
    auto *same = new RyLegacyBendParam(QStringLiteral("jointz"), 2, hand);
    same->controllers()[2]->setValue(-30);
    binding->findJoint(hand)->addJointParam(same);
    RyERCLink::create(upper->getXRotControl(), same->controllers()[2]);
    RyERCLink::create(same->controllers()[0], bend->controllers()[5]);
    upper->getXRotControl()->setValue(7);
}

void LegacyArm::pose(RyBone &bone, const std::array<float, 3> &degrees)
{
    bone.getXRotControl()->setValue(degrees[0]);
    bone.getYRotControl()->setValue(degrees[1]);
    bone.getZRotControl()->setValue(degrees[2]);
}

void LegacyArm::poseAtRandom(std::mt19937 &random)
{
    for (RyBone *bone : {fore, hand}) {
        std::array<float, 3> degrees;
        constexpr float Most[3] = {60, 45, 110};
        for (size_t axis = 0; axis < 3; ++axis)
            degrees[axis] = std::uniform_real_distribution<float>(-Most[axis], Most[axis])(random);
        pose(*bone, degrees);
    }
}

RyLegacyFigure *LegacyArm::figureOf(const RyScene &scene)
{
    for (RyNode *node : scene.getNodes()) {
        if (auto *figure = qobject_cast<RyLegacyFigure *>(node))
            return figure;
    }
    return nullptr;
}

RyLegacyBinding *LegacyArm::bindingOf(const RyScene &scene)
{
    return RyLegacyBinding::findBinding(figureOf(scene));
}

QString LegacyArm::dump(const RyScene &scene)
{
    QString joints;
    bool isOfJoints = false;
    for (const QString &line : rySceneDump(scene).split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1String("    ")))
            isOfJoints = line.endsWith(QLatin1String("modifier RyLegacyBinding"));
        else if (isOfJoints)
            joints += line + QLatin1Char('\n');
    }
    return joints;
}
