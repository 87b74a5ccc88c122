#include "support/RyTest.h"

#include "RyParametricToolScene.h"

#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

#include <algorithm>
#include <cmath>
#include <functional>

using Param = RyLegacyJointParam;
using Tool = RyJointEditorTool;

namespace {

/// What stands somewhere in parameter space: the centres of the spheres and the ends of zones, along the axis.
struct Places
{
    RyVec3 centers[2];
    std::vector<float> ends;

    explicit Places(const Param *param)
    {
        const RyLegacyJointSphere *spheres[] = {param->getDynamicSphere(), param->getStaticSphere()};
        for (int i = 0; i < 2; ++i) {
            centers[i] = {spheres[i]->getXTransControl()->getValue(), spheres[i]->getYTransControl()->getValue(),
                          spheres[i]->getZTransControl()->getValue()};
        }
        if (const auto *twist = dynamic_cast<const RyLegacyTwistParam *>(param))
            ends = {twist->getStart(), twist->getEnd()};
        if (const auto *scale = dynamic_cast<const RyLegacySmoothScale *>(param))
            ends = {scale->getHiStart(), scale->getHiEnd(), scale->getLoStart(), scale->getLoEnd()};
    }
    bool isMovedFrom(const Places &before, const RyVec3 &way, int axis) const
    {
        bool fits = ends.size() == before.ends.size();
        for (int i = 0; i < 2; ++i)
            fits = fits && (centers[i] - before.centers[i] - way).length() < 1e-4f;
        for (size_t i = 0; fits && i < ends.size(); ++i)
            fits = qAbs(ends[i] - before.ends[i] - way[axis]) < 1e-4f;
        return fits;
    }
};

/// A doll whose zones lie where an artist puts them, with turned, scaled spheres off their bones.
struct Fixture : RyParametricToolScene
{
    Fixture()
    {
        float number = 20.0f;
        for (Param *param : allParams()) {
            const bool hasZones = param->type() == Param::Twist || param->type() == Param::SmoothScale;
            for (RyFloatProperty *end : hasZones ? param->controllers() : std::vector<RyFloatProperty *>())
                end->setValue(number += 1.3f);
            for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
                for (RyFloatProperty *control : sphere->controls())
                    control->setValue(control->getValue() + (number += 0.7f) * 0.01f);
            }
        }
        select(doll.lHand);
        ryUndoStack()->clearAll();
    }
    std::vector<Param *> allParams() const
    {
        std::vector<Param *> params;
        for (const RyLegacyJoint *joint : doll.binding->joints())
            params.insert(params.end(), joint->params().begin(), joint->params().end());
        return params;
    }
    /// "joint/parameter" of all that went by the way, and "joint/parameter!" of those that changed otherwise.
    QStringList changed(const std::function<void()> &edit, const RyVec3 &way)
    {
        std::vector<Places> before;
        QStringList textsBefore;
        for (const Param *param : allParams()) {
            before.emplace_back(param);
            textsBefore.append(ryParamText(*param));
        }
        edit();
        QStringList names;
        const std::vector<Param *> params = allParams();
        for (size_t i = 0; i < params.size(); ++i) {
            const QString name = params[i]->getJoint()->getName() + '/' + params[i]->getName();
            if (ryParamText(*params[i]) == textsBefore.at(int(i)))
                continue;
            names.append(Places(params[i]).isMovedFrom(before[i], way, params[i]->getAxis()) ? name : name + '!');
        }
        return names;
    }
    /// All that stands around these bones: on their joints but for what children drive, and their copies above.
    QStringList around(const std::vector<RyBone *> &bones) const
    {
        QStringList names;
        for (const Param *param : allParams()) {
            const RyBone *bone = param->getJoint()->getBone();
            const RyBone *driver = param->getDriver();
            const bool isChilds = driver && driver->getNodeParent() == bone;
            const auto has = [&](const RyBone *one) {
                return std::find(bones.begin(), bones.end(), one) != bones.end();
            };
            if (isChilds ? has(driver) : has(bone))
                names.append(param->getJoint()->getName() + '/' + param->getName());
        }
        return names;
    }
};

} // namespace

/// Parameters of joints go along with their bones.
class RyPropagateParamsTest : public QObject
{
    Q_OBJECT

private slots:
    void translated();
    void rotated();
    void translationTakesAllBelowAlong();
    void translationAlongOneAxis();
    void orientation();
    void rotation();
    void scale();
    void paramDownTheChain();
    void spheres();
    void nothingForNull();
    void typedPoint();
    void drags_data();
    void drags();
    void outAndBack_data();
    void outAndBack();
    void defaultsStay();
    void oneAnnouncement();
};

void RyPropagateParamsTest::translated()
{
    Fixture f;
    const RyVec3 way(1.5f, -2.25f, 3.75f);
    for (const char *name : {"twistx", "jointy", "lArm_smoox", "lTip_smoox"}) {
        Param *param = f.doll.param(f.doll.lHand, name);
        const QStringList changed = f.changed([&] { f.tool->translateParam(param, way); }, way);
        QCOMPARE(changed, QStringList("lHand/" + QString(name)));
    }
    // Angles and bulges stay: a bend moves its spheres alone.
    Param *bend = f.doll.param(f.doll.lHand, "jointz");
    std::vector<float> before;
    for (const RyFloatProperty *value : bend->controllers())
        before.push_back(value->getValue());
    f.tool->translateParam(bend, way);
    for (size_t i = 0; i < before.size(); ++i)
        QCOMPARE(bend->controllers()[i]->getValue(), before[i]);
}

void RyPropagateParamsTest::rotated()
{
    Fixture f;
    Param *param = f.doll.param(f.doll.lHand, "jointy");
    const RyQuat turn(RyVec3(1, -2, 3), 0.7f);
    const RyMatrix4 before[] = {param->getDynamicMatrix(), param->getStaticMatrix()};
    f.tool->rotateParam(param, turn);
    const RyMatrix4 after[] = {param->getDynamicMatrix(), param->getStaticMatrix()};
    for (int i = 0; i < 2; ++i) {
        const RyVec3 center = before[i].translation();
        for (const RyVec3 &point : {RyVec3(), RyVec3(1, 0, 0), RyVec3(0, 1, 0), RyVec3(-0.3f, 0.4f, 1)}) {
            const RyVec3 wanted = center + turn.multVec(before[i].multVecMatrix(point) - center);
            QVERIFY((after[i].multVecMatrix(point) - wanted).length() < 1e-3f);
        }
        QCOMPARE(after[i].translation(), center);
    }
    const QString turned = ryParamText(*param);
    f.tool->rotateParam(param, RyQuat());
    QCOMPARE(ryParamText(*param), turned);
}

void RyPropagateParamsTest::translationTakesAllBelowAlong()
{
    Fixture f;
    const RyVec3 way(3.5f, -1.25f, 0.5f);
    const RyVec3 origin = f.doll.lHand->getOrigin();
    const QStringList changed =
        f.changed([&] { f.tool->performTransPropagation(f.doll.lArm, origin, origin + way); }, way);
    QCOMPARE(changed, f.around({f.doll.lArm, f.doll.lHand, f.doll.lTip}));
    QVERIFY(changed.contains("chest/lArm_twistx") && changed.contains("lArm/chest_smooy"));
    QVERIFY(!changed.contains("chest/rArm_twistx"));
    QCOMPARE(f.changed([&] { f.tool->performTransPropagation(f.doll.lArm, origin, origin); }, {}), QStringList());
}

void RyPropagateParamsTest::translationAlongOneAxis()
{
    Fixture f;
    const RyVec3 way(0, 2.5f, 0);
    const auto move = [&](bool recursive, bool includeGeom) {
        return f.changed([&] { f.tool->performTransPropagation(f.doll.lArm, 1, 2.5f, recursive, includeGeom); }, way);
    };
    QCOMPARE(move(true, false), QStringList());
    QCOMPARE(move(false, false), QStringList());
    QCOMPARE(move(false, true), f.around({f.doll.lArm}));
    QCOMPARE(move(true, true), f.around({f.doll.lArm, f.doll.lHand, f.doll.lTip}));
}

void RyPropagateParamsTest::orientation()
{
    Fixture f;
    const RyQuat turn(RyVec3(0, 0, 1), 0.4f);
    const RyMatrix4 before = f.doll.param(f.doll.lTip, "twistx")->getStaticMatrix();
    const RyVec3 center = before.translation();
    QStringList changed = f.changed([&] { f.tool->performOrientPropagation(f.doll.lArm, turn); }, {});
    QCOMPARE(changed, f.around({f.doll.lHand, f.doll.lTip}));
    const RyVec3 wanted = center + turn.multVec(before.multVecMatrix({1, 2, 3}) - center);
    const RyMatrix4 after = f.doll.param(f.doll.lTip, "twistx")->getStaticMatrix();
    QVERIFY((after.multVecMatrix({1, 2, 3}) - wanted).length() < 1e-3f);
}

void RyPropagateParamsTest::rotation()
{
    Fixture f;
    const auto turn = [&](bool recursive, bool includeGeom) {
        return f.changed([&] { f.tool->performRotPropagation(f.doll.lArm, 2, 0.4f, recursive, includeGeom); }, {});
    };
    QCOMPARE(turn(true, false), QStringList());
    QCOMPARE(turn(false, true), f.around({f.doll.lArm}));
    const RyMatrix4 before = f.doll.param(f.doll.lTip, "jointy")->getDynamicMatrix();
    QCOMPARE(turn(true, true), f.around({f.doll.lArm, f.doll.lHand, f.doll.lTip}));
    // Right-handed about Z, each sphere about its own centre.
    const RyVec3 center = before.translation();
    const RyVec3 point = before.multVecMatrix({1, 0, 0}) - center;
    const RyVec3 wanted = center + RyVec3(point.x * std::cos(0.4f) - point.y * std::sin(0.4f),
                                          point.x * std::sin(0.4f) + point.y * std::cos(0.4f), point.z);
    QVERIFY((f.doll.param(f.doll.lTip, "jointy")->getDynamicMatrix().multVecMatrix({1, 0, 0}) - wanted).length() <
            1e-3f);
    RyVec3 center2 = f.doll.lArm->getOrigin();
    QCOMPARE(f.changed([&] { f.tool->performChildRotPropagation(f.doll.lHand, 0, -0.3f, false, false, center2); }, {}),
             QStringList());
    QCOMPARE(f.changed([&] { f.tool->performChildRotPropagation(f.doll.lHand, 0, -0.3f, false, true, center2); }, {}),
             f.around({f.doll.lHand}));
    QCOMPARE(f.changed([&] { f.tool->performChildRotPropagation(f.doll.lHand, 0, -0.3f, true, true, center2); }, {}),
             f.around({f.doll.lHand, f.doll.lTip}));
}

void RyPropagateParamsTest::scale()
{
    Fixture f;
    Param *twist = f.doll.param(f.doll.lTip, "twistx");
    Param *bend = f.doll.param(f.doll.lTip, "jointy");
    const RyVec3 center = f.doll.lArm->getOrigin();
    const Places twistBefore(twist);
    const Places bendBefore(bend);
    const QString before = RyParametricToolScene::wholeDump();
    RyUndoStackHold hold;
    f.tool->performScalePropagation(f.doll.lArm, 0, 1.5f, true, false);
    QCOMPARE(Places(twist).ends, twistBefore.ends);
    hold.cancel();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    f.tool->performScalePropagation(f.doll.lArm, 0, 1.5f, true, true);
    const auto scaled = [&](float value) { return center.x + (value - center.x) * 1.5f; };
    QVERIFY(qAbs(Places(twist).ends[1] - scaled(twistBefore.ends[1])) < 1e-4f);
    for (int i = 0; i < 2; ++i) {
        const RyVec3 wanted(scaled(bendBefore.centers[i].x), bendBefore.centers[i].y, bendBefore.centers[i].z);
        QVERIFY((Places(bend).centers[i] - wanted).length() < 1e-4f);
    }
    // The node alone, and another axis than the zones'.
    const Places after(twist);
    f.tool->performScalePropagation(f.doll.lArm, 0, 1.5f, false, true);
    QCOMPARE(Places(twist).ends, after.ends);
    f.tool->performScalePropagation(f.doll.lTip, 1, 0.5f, false, true);
    QCOMPARE(Places(twist).ends, after.ends);
    QVERIFY(Places(twist).centers[0].y != after.centers[0].y);
}

void RyPropagateParamsTest::paramDownTheChain()
{
    Fixture f;
    const auto move = [&](RyBone *bone, const char *name, int axis) {
        const RyVec3 way = RyVec3::axis(axis) * 1.75f;
        return f.changed([&] { f.tool->propagateParamTranslation(bone, f.doll.param(bone, name), 1.75f, axis); }, way);
    };
    QCOMPARE(move(f.doll.lArm, "twistx", 0), QStringList({"lArm/twistx", "lHand/twistx", "lTip/twistx"}));
    QCOMPARE(move(f.doll.lArm, "twistx", 1), QStringList({"lArm/twistx", "lHand/twistx", "lTip/twistx"}));
    QCOMPARE(move(f.doll.lHand, "jointz", 2), QStringList({"lHand/jointz", "lTip/jointz"}));
    QCOMPARE(move(f.doll.lHand, "lArm_smoox", 0), QStringList({"lHand/lArm_smoox", "lTip/lHand_smoox"}));
    QCOMPARE(move(f.doll.lArm, "lHand_jointy", 0), QStringList("lArm/lHand_jointy"));
    // The chain ends where no child has such a one.
    f.doll.joint(f.doll.lHand)->removeJointParam(f.doll.param(f.doll.lHand, "twistx"));
    QCOMPARE(move(f.doll.lArm, "twistx", 2), QStringList("lArm/twistx"));
}

void RyPropagateParamsTest::spheres()
{
    Fixture f;
    RyLegacyJointSphere *sphere = f.doll.param(f.doll.lHand, "jointy")->getStaticSphere();
    for (int axis = 0; axis < 3; ++axis) {
        const RyFloatProperty *control = sphere->controls()[size_t(axis)];
        const float before = control->getValue();
        const QString rest = RyParametricToolScene::wholeDump();
        RyUndoStackHold hold;
        f.tool->propagateSphereTranslation(sphere, 2.5f, axis);
        QCOMPARE(control->getValue(), before + 2.5f);
        hold.cancel();
        QCOMPARE(RyParametricToolScene::wholeDump(), rest);
    }
}

void RyPropagateParamsTest::nothingForNull()
{
    Fixture f;
    Param *param = f.doll.param(f.doll.lHand, "jointy");
    const QString before = RyParametricToolScene::wholeDump();
    f.tool->translateParam(nullptr, {1, 2, 3});
    f.tool->rotateParam(nullptr, RyQuat(RyVec3(0, 1, 0), 0.3f));
    f.tool->propagateParamTranslation(f.doll.lHand, nullptr, 1, 1);
    f.tool->propagateSphereTranslation(nullptr, 1, 1);
    for (const int axis : {-1, 3, 70}) {
        f.tool->propagateParamTranslation(f.doll.lHand, param, 1, axis);
        f.tool->propagateSphereTranslation(param->getDynamicSphere(), 1, axis);
        f.tool->performScalePropagation(f.doll.lHand, axis, 2, true, true);
        f.tool->performRotPropagation(f.doll.lHand, axis, 2, true, true);
    }
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    f.tool->propagateParamTranslation(nullptr, param, 1.5f, 1);
    QVERIFY(RyParametricToolScene::wholeDump() != before);
}

void RyPropagateParamsTest::typedPoint()
{
    Fixture f;
    const RyVec3 way(2.5f, -1.5f, 0.75f);
    const auto type = [&] {
        const RyVec3 origin = f.doll.lHand->getOrigin();
        RyUndoStackHold hold;
        f.doll.lHand->setOrigin(origin + way);
        hold.accept("Type");
    };
    QCOMPARE(f.changed(type, way), QStringList());
    ryUndoStack()->undo();
    f.tool->setPropagateTranslation(true);
    const QString before = RyParametricToolScene::wholeDump();
    QCOMPARE(f.changed(type, way), f.around({f.doll.lHand, f.doll.lTip}));
    const QString after = RyParametricToolScene::wholeDump();
    ryUndoStack()->undo();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    ryUndoStack()->redo();
    QCOMPARE(RyParametricToolScene::wholeDump(), after);
}

void RyPropagateParamsTest::drags_data()
{
    QTest::addColumn<int>("id");
    for (const int id : {1, 2, 41, 42, 43, 44, 45, 46})
        QTest::addRow("%d", id) << id;
}

void RyPropagateParamsTest::drags()
{
    QFETCH(int, id);
    Fixture f;
    const bool ofOrigin = id == 1 || (id >= 41 && id <= 43);
    const auto point = [&] { return ofOrigin ? f.doll.lHand->getOrigin() : f.doll.lHand->getEndPoint(); };
    f.tool->setPropagateTranslation(true);
    const QString before = RyParametricToolScene::wholeDump();
    const RyVec3 start = point();
    f.drag(id, {400, 300}, {480, 230});
    const RyVec3 way = point() - start;
    QVERIFY(way.length() > 0.1f);
    const QString after = RyParametricToolScene::wholeDump();
    ryUndoStack()->undo();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    // What the origin does not move stays: the joint at the end point is the next bone's.
    QCOMPARE(
        f.changed([] { ryUndoStack()->redo(); }, way),
        f.around(ofOrigin ? std::vector<RyBone *>{f.doll.lHand, f.doll.lTip} : std::vector<RyBone *>{f.doll.lTip}));
    QCOMPARE(RyParametricToolScene::wholeDump(), after);
}

void RyPropagateParamsTest::outAndBack_data()
{
    drags_data();
}

void RyPropagateParamsTest::outAndBack()
{
    QFETCH(int, id);
    Fixture f;
    f.tool->setPropagateTranslation(true);
    const QString before = RyParametricToolScene::wholeDump();
    f.press(id, {380, 290});
    f.move({500, 90});
    QVERIFY(RyParametricToolScene::wholeDump() != before);
    f.move({13, 580});
    f.move({380, 290});
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    f.move({100, 100});
    f.press(id, {100, 100}, Qt::RightButton);
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
}

void RyPropagateParamsTest::defaultsStay()
{
    Fixture f;
    const auto defaults = [&] {
        std::vector<float> values;
        for (const Param *param : f.allParams()) {
            for (const RyFloatProperty *value : param->controllers())
                values.push_back(value->getDefaultValue());
            for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
                for (const RyFloatProperty *value : sphere->controls())
                    values.push_back(value->getDefaultValue());
            }
        }
        return values;
    };
    const std::vector<float> before = defaults();
    f.tool->performTransPropagation(f.doll.lArm, {}, {1, 2, 3});
    f.tool->performRotPropagation(f.doll.lArm, 1, 0.5f, true, true);
    f.tool->performScalePropagation(f.doll.lArm, 1, 0.5f, true, true);
    f.tool->performOrientPropagation(f.doll.lArm, RyQuat(RyVec3(0, 1, 0), 0.3f));
    QCOMPARE(defaults(), before);
}

void RyPropagateParamsTest::oneAnnouncement()
{
    Fixture f;
    QSignalSpy changes(f.doll.binding, SIGNAL(bindingChanged()));
    f.tool->performTransPropagation(f.doll.lArm, 0, 2.5f, false, true);
    QCOMPARE(changes.count(), 1);
    f.tool->performRotPropagation(f.doll.lArm, 0, 0.5f, true, true);
    QCOMPARE(changes.count(), 2);
}

RY_TEST(RyPropagateParamsTest)

#include "tst_propagateParams.moc"
