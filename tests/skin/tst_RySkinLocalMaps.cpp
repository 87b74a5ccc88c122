#include "skin/SkinFixture.h"

/// Maps for single axes and for the scale, which blend in stages.
class RySkinLocalMapsTest : public QObject
{
    Q_OBJECT

private slots:
    void equalLocalMapsGiveTheGeneralResult();
    void oneLocalMapTurnsAboutItsAxisOnly();
    void localMapsMatchStagesInDoubles();
    void scaleMapWeighsTheScaleAlone();
};

void RySkinLocalMapsTest::equalLocalMapsGiveTheGeneralResult()
{
    SkinFixture f(7, 1000);
    const auto weights = f.randomWeights();
    f.bones[2]->setInheritScale(false);
    f.bones[5]->setInheritScale(false);
    f.poseAll();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    std::vector<RyVec3> general;
    QVERIFY(f.deform(general));
    double size = 0.0;
    for (const RyVec3 &p : general)
        size = std::max(size, double(p.length()));
    for (size_t i = 0; i < f.bones.size(); ++i) {
        RyBoneBinding *binding = f.skin->bindings()[i];
        binding->setWeights(nullptr);
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(ryMapOf(weights[i]), axis);
        if (i % 2)
            binding->setScaleWeights(ryMapOf(weights[i]));
    }
    std::vector<RyVec3> local;
    QVERIFY(f.deform(local));
    QVERIFY(apart(local, f.mesh->getPositions()) > 1.0);
    QVERIFY2(apart(local, general) < 1e-6 * size, qPrintable(QString("%1 of %2").arg(apart(local, general)).arg(size)));
    // A general map goes before local ones.
    f.skin->bindings()[0]->setWeights(ryMapOf(weights[0]));
    f.skin->bindings()[0]->setLocalWeights(ryMapOf(weights[1]), 0);
    QVERIFY(f.deform(local));
    QVERIFY(apart(local, general) < 1e-6 * size);
}

void RySkinLocalMapsTest::oneLocalMapTurnsAboutItsAxisOnly()
{
    // Weights on one axis alone: turns about the other axes leave the vertices where they are.
    for (int axis = 0; axis < 3; ++axis) {
        SkinFixture f(1, 200);
        RyBone *bone = f.bones[0];
        RyBoneBinding *binding = f.skin->bindings()[0];
        for (int k = 0; k < 3; ++k)
            binding->setLocalWeights(ryMapOf(std::vector<quint16>(200, k == axis ? 65535 : 0)), k);
        RyFloatProperty *controls[3] = {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()};
        std::vector<RyVec3> out;
        controls[(axis + 1) % 3]->setValue(40);
        controls[(axis + 2) % 3]->setValue(-70);
        f.deform(out);
        controls[(axis + 1) % 3]->setValue(0);
        controls[(axis + 2) % 3]->setValue(0);
        // Stages share one rest: only the stage of the weighted axis counts, and it does not turn here.
        QVERIFY(apart(out, f.mesh->getPositions()) < 1e-4);
        controls[axis]->setValue(90);
        f.deform(out);
        const RyVec3 direction = bone->getOrientation().multVec(RyVec3::axis(axis));
        const RyVec3 d = direction.normalized();
        for (int v = 0; v < 200; ++v) {
            // A right angle, right-handed, about the bone axis through the origin.
            const RyVec3 r = f.mesh->getVertex(v) - bone->getOrigin();
            const RyVec3 along = d * d.dot(r);
            const RyVec3 turned = along + d.cross(r);
            QVERIFY((out[size_t(v)] - bone->getOrigin() - turned).length() < 1e-3f);
        }
    }
}

void RySkinLocalMapsTest::localMapsMatchStagesInDoubles()
{
    // One bone with order YZX under a turned parent, all four maps different: the stages written out with turns of
    // vectors.
    SkinFixture f(2, 300);
    RyBone *parent = f.bones[0];
    RyBone *bone = f.bones[1];
    parent->getZRotControl()->setValue(35);
    parent->getXTransControl()->setValue(4);
    bone->setRotationOrder(RyRotationOrder(RyRotationOrder::YZX));
    bone->setOrientation(RyQuat(), true);
    bone->getXRotControl()->setValue(20);
    bone->getYRotControl()->setValue(-50);
    bone->getZRotControl()->setValue(75);
    bone->getYTransControl()->setValue(-3);
    bone->getXScaleControl()->setValue(1.5f);
    RyBoneBinding *binding = f.skin->bindings()[1];
    std::vector<std::vector<quint16>> weights(4, std::vector<quint16>(300));
    for (auto &list : weights) {
        for (quint16 &w : list)
            w = quint16(f.random() % 65536u);
    }
    for (int axis = 0; axis < 3; ++axis)
        binding->setLocalWeights(ryMapOf(weights[size_t(axis)]), axis);
    binding->setScaleWeights(ryMapOf(weights[3]));

    using Vec = std::array<double, 3>;
    const auto turned = [](const Vec &v, int axis, double degrees) {
        const double s = std::sin(degrees * 3.14159265358979 / 180);
        const double c = std::cos(degrees * 3.14159265358979 / 180);
        const size_t a = size_t(axis + 1) % 3;
        const size_t b = size_t(axis + 2) % 3;
        Vec r = v;
        r[a] = c * v[a] - s * v[b];
        r[b] = s * v[a] + c * v[b];
        return r;
    };
    const RyMatrix4 parentWorld = parent->getWSTransform();
    const RyVec3 parentOrigin = parent->getOrigin();
    const RyVec3 origin = bone->getOrigin();
    const auto toFigure = [&](const Vec &v) {
        const Vec p{v[0] + origin.x - parentOrigin.x, v[1] + origin.y - 3.0 - parentOrigin.y,
                    v[2] + origin.z - parentOrigin.z};
        Vec r;
        for (int j = 0; j < 3; ++j)
            r[size_t(j)] =
                p[0] * parentWorld[0][j] + p[1] * parentWorld[1][j] + p[2] * parentWorld[2][j] + parentWorld[3][j];
        return r;
    };
    std::vector<RyVec3> out;
    QVERIFY(f.deform(out));
    for (int v = 0; v < 300; ++v) {
        const RyVec3 p = f.mesh->getVertex(v);
        const Vec r{double(p.x) - origin.x, double(p.y) - origin.y, double(p.z) - origin.z};
        const Vec stages[5] = {
            toFigure(r),
            toFigure(turned(r, 0, 20)),
            toFigure(turned(turned(r, 2, 75), 0, 20)),
            toFigure(turned(turned(turned(r, 1, -50), 2, 75), 0, 20)),
            toFigure(turned(turned(turned({r[0] * 1.5, r[1], r[2]}, 1, -50), 2, 75), 0, 20)),
        };
        const auto weight = [&](size_t k) { return weights[k][size_t(v)] / 65535.0; };
        const double shares[5] = {(weight(0) + weight(1) + weight(2)) / 3, weight(0), weight(2), weight(1), weight(3)};
        Vec expected{p.x, p.y, p.z};
        for (size_t j = 0; j < 3; ++j) {
            const double from = expected[j];
            for (size_t k = 0; k < 5; ++k)
                expected[j] += shares[k] * (stages[k][j] - (k == 0 ? from : stages[k - 1][j]));
        }
        QVERIFY(apart(out[size_t(v)], expected.data()) < 1e-3);
    }
}

void RySkinLocalMapsTest::scaleMapWeighsTheScaleAlone()
{
    SkinFixture f(1, 100);
    RyBone *bone = f.bones[0];
    RyBoneBinding *binding = f.skin->bindings()[0];
    for (int axis = 0; axis < 3; ++axis)
        binding->setLocalWeights(ryMapOf(std::vector<quint16>(100, 65535)), axis);
    binding->setScaleWeights(ryMapOf(std::vector<quint16>(100, 0)));
    bone->getScaleControl()->setValue(2);
    std::vector<RyVec3> out;
    QVERIFY(f.deform(out));
    QVERIFY(apart(out, f.mesh->getPositions()) < 1e-4);
    binding->getScaleWeights()->beginEdit();
    std::fill_n(binding->getScaleWeights()->getWeights(), 100, quint16(13107));
    binding->getScaleWeights()->finishEdit();
    QVERIFY(f.deform(out));
    for (int v = 0; v < 100; ++v) {
        const RyVec3 r = f.mesh->getVertex(v) - bone->getOrigin();
        QVERIFY((out[size_t(v)] - (bone->getOrigin() + r * 1.2f)).length() < 1e-3f);
    }
}

RY_TEST(RySkinLocalMapsTest)
#include "tst_RySkinLocalMaps.moc"
