#include "PlainChain.h"

using namespace PlainChain;

namespace {

/// A chain of eight bones reaches some thousand centimetres; single precision holds that to a tenth of a millimetre.
constexpr double Tolerance = 2e-6;

/// Length by which a difference of two images of a point is measured.
double sizeOf(const Map &map)
{
    return 1.0 + map.offset.norm() + 100.0 * map.linear.norm();
}

Vec image(const RyMatrix4 &m, const Vec &p)
{
    Vec result;
    for (int column = 0; column < 3; ++column) {
        result[column] = p[0] * double(m[0][column]) + p[1] * double(m[1][column]) + p[2] * double(m[2][column]) +
                         double(m[3][column]);
    }
    return result;
}

} // namespace

class RyNodeTransformsTest : public QObject
{
    Q_OBJECT

private slots:
    /// Bone axis k points along the orientation's image of the axis.
    void orientationMapsBoneAxesToFigureAxes()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Mat expected = Values::of(*chain.last()).orientationMatrix();
            for (int k = 0; k < 3; ++k)
                QVERIFY((vec(chain.last()->getOrientation().multVec(RyVec3::axis(k))) - expected.col(k)).norm() < 1e-6);
        }
    }

    void localRotation()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Mat got = columns(RyMatrix3(chain.last()->getLocalRot()));
            QVERIFY((got - Values::of(*chain.last()).localRotation()).norm() < 2e-6);
        }
    }

    /// Turning about one control alone turns right-handed about that bone axis.
    void oneControlTurnsAboutItsBoneAxis()
    {
        Random random;
        const RyRef<RyNode> bone(new RyBone);
        RyFloatProperty *const controls[3] = {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()};
        for (int i = 0; i < Cases; ++i) {
            bone->clearPose();
            bone->setOrientation(random.rotation());
            bone->setRotationOrder(RyRotationOrder(random.integer(0, 5)));
            const int axis = random.integer(0, 2);
            const double degrees = random.number(-180, 180);
            controls[axis]->setValue(float(degrees));
            const Vec boneAxis = Values::of(*bone).orientationMatrix().col(axis);
            const Vec point = 10.0 * random.direction();
            const Vec expected = Eigen::AngleAxisd(degrees * M_PI / 180.0, boneAxis) * point;
            QVERIFY((vec(bone->getLocalRot().multVec({float(point[0]), float(point[1]), float(point[2])})) - expected)
                        .norm() < 5e-5);
        }
    }

    void localScale()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            QVERIFY((columns(chain.last()->getLocalScale()) - Values::of(*chain.last()).localScale()).norm() < 2e-6);
        }
    }

    /// The map of rest points to the world, scale inheritance included.
    void worldMap()
    {
        RandomChain chain;
        double worst = 0.0;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Map expected = mapOf(chain.nodes);
            const Vec p = 100.0 * chain.random.direction();
            const double in[3] = {p[0], p[1], p[2]};
            double out[3];
            chain.last()->worldMap().mapPoint(in, out);
            worst = std::max(worst, (Vec(out[0], out[1], out[2]) - expected(p)).norm() / sizeOf(expected));
        }
        qInfo("largest error of a world map: %.3g of its size", worst);
        QVERIFY(worst < Tolerance);
    }

    /// The world transform maps what is counted from the origin.
    void worldTransform()
    {
        RandomChain chain;
        double worst = 0.0;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Map expected = mapOf(chain.nodes);
            const Vec origin = Values::of(*chain.last()).origin;
            const Vec p = 100.0 * chain.random.direction();
            const Vec got = image(chain.last()->getWSTransform(), p - origin);
            worst = std::max(worst, (got - expected(p)).norm() / sizeOf(expected));
        }
        qInfo("largest error of a world transform: %.3g of its size", worst);
        QVERIFY(worst < Tolerance);
    }

    void unposedWorldTransformIsTheOrigin()
    {
        RandomChain chain;
        for (int i = 0; i < 500; ++i) {
            chain.next();
            for (RyNode *node : chain.nodes) {
                for (RyFloatProperty *p : {node->getXTransControl(), node->getYTransControl(), node->getZTransControl(),
                                           node->getXRotControl(), node->getYRotControl(), node->getZRotControl()}) {
                    p->setDefaultValue(0.0f);
                    p->setValue(0.0f);
                }
                for (RyFloatProperty *p : {node->getScaleControl(), node->getXScaleControl(), node->getYScaleControl(),
                                           node->getZScaleControl()}) {
                    p->setDefaultValue(1.0f);
                    p->setValue(1.0f);
                }
            }
            RyMatrix4 expected(true);
            expected.translate(chain.last()->getOrigin());
            for (int n = 0; n < 16; ++n)
                QVERIFY(std::fabs(chain.last()->getWSTransform().data()[n] - expected.data()[n]) < 2e-4f);
        }
    }

    void worldPositionAndRotation()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Map expected = mapOf(chain.nodes);
            const Vec origin = Values::of(*chain.last()).origin;
            QVERIFY((vec(chain.last()->getWSPos()) - expected(origin)).norm() < Tolerance * sizeOf(expected));
            QVERIFY((columns(RyMatrix3(chain.last()->getWSRot())) - expected.rotation).norm() < 5e-6);
            // The rotation is the node's own turn, then its parent's.
            const RyQuat product = chain.last()->getLocalRot() * chain.last()->getNodeParent()->getWSRot();
            QVERIFY((columns(RyMatrix3(product)) - expected.rotation).norm() < 5e-6);
        }
    }

    void partsOfTheWorldTransform()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Map expected = mapOf(chain.nodes);
            RyVec3 position;
            RyQuat rotation;
            RyMatrix3 scale;
            chain.last()->getWSTransform(position, rotation, scale);
            // scale part = linear * inverse rotation, the linear part acting first
            const Mat scalePart = expected.rotation.transpose() * expected.linear;
            QVERIFY((columns(scale) - scalePart).norm() < 1e-5 * (1.0 + scalePart.norm()));
            QVERIFY(position == chain.last()->getWSPos());
            QVERIFY(rotation == chain.last()->getWSRot());
        }
    }

    /// Translate, rotate by minus the rotation, multiply by the scale part: what a fixed pipeline would draw.
    void drawnInThreeSteps()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Map expected = mapOf(chain.nodes);
            RyVec3 position;
            RyQuat rotation;
            RyMatrix3 scale;
            chain.last()->getWSTransform(position, rotation, scale);
            RyVec3 axis;
            float angle = 0.0f;
            rotation.getValue(axis, angle);
            const Eigen::Affine3d drawn = Eigen::Translation3d(vec(position)) *
                                          Eigen::AngleAxisd(-double(angle), vec(axis)) *
                                          Eigen::Affine3d(columns(scale));
            const Vec origin = Values::of(*chain.last()).origin;
            const Vec p = 100.0 * chain.random.direction();
            QVERIFY((drawn * (p - origin) - expected(p)).norm() < 5e-6 * sizeOf(expected));
        }
    }

    void posedEndPoint()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Map expected = mapOf(chain.nodes);
            const Values v = Values::of(*chain.last());
            const Vec tip = expected(v.end);
            QVERIFY((vec(chain.last()->getWSEndPoint()) - tip).norm() < Tolerance * sizeOf(expected));
            const RyVec3 along = chain.last()->getEndPoint() - chain.last()->getOrigin();
            QVERIFY((vec(chain.last()->getWSTransform().multVecMatrix(along)) - tip).norm() < 3e-6 * sizeOf(expected));
        }
    }

    /// A child that does not inherit scale keeps its parent's turn, and its own place in the parent's full map.
    void childWithoutInheritedScale()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            chain.last()->setInheritScale(false);
            const Map parent = mapOf(chain.above());
            const Values v = Values::of(*chain.last());
            const Map full = mapOf(chain.nodes);
            const Mat linear = parent.rotation * v.localRotation() * v.localScale();
            const RyMatrix4 got = chain.last()->getWSTransform();
            QVERIFY((columns(got.linear()) - linear).norm() < 5e-6 * (1.0 + linear.norm()));
            QVERIFY((vec(got.translation()) - parent(v.origin + v.translation)).norm() < Tolerance * sizeOf(full));
        }
    }

    /// Default rigging and default pose, with the skeleton's own transform as it is.
    void defaultPose()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            Map expected;
            for (size_t n = 0; n < chain.nodes.size(); ++n)
                expected = expected.below(Values::of(*chain.nodes[n], n > chain.skeleton));
            const Vec origin = Values::of(*chain.last(), true).origin;
            const Vec p = 100.0 * chain.random.direction();
            const Vec got = image(chain.last()->getWSTransform(RyTime(), true), p - origin);
            QVERIFY((got - expected(p)).norm() < 5e-6 * sizeOf(expected));
            QVERIFY(chain.last()->getWSTransform(RyTime(), false) == chain.last()->getWSTransform());
        }
    }

    /// The same chain without the skeleton and what is above it.
    void figureMap()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            const Map expected = mapOf({chain.nodes.begin() + std::ptrdiff_t(chain.skeleton) + 1, chain.nodes.end()});
            const Vec p = 100.0 * chain.random.direction();
            const double in[3] = {p[0], p[1], p[2]};
            double out[3];
            chain.last()->figureMap().mapPoint(in, out);
            QVERIFY((Vec(out[0], out[1], out[2]) - expected(p)).norm() < Tolerance * sizeOf(expected));
        }
    }

    /// The orientation controls have a fixed order; only the pose follows the rotation order.
    void rotationOrderLeavesTheOrientation()
    {
        RandomChain chain;
        for (int i = 0; i < 1000; ++i) {
            chain.next();
            RyNode *node = chain.last();
            const Values before = Values::of(*node);
            const RyQuat orientation = node->getOrientation();
            node->setRotationOrder(RyRotationOrder((before.order + chain.random.integer(1, 5)) % 6));
            const Values after = Values::of(*node);
            QVERIFY(node->getOrientation() == orientation);
            QVERIFY(after.origin == before.origin && after.end == before.end &&
                    after.orientation == before.orientation);
            QVERIFY(after.rotation == before.rotation && after.scale == before.scale);
            QVERIFY((columns(RyMatrix3(node->getLocalRot())) - after.localRotation()).norm() < 2e-6);
        }
    }

    /// The setter of the local transform is the inverse of the getter.
    void localTransformRoundTrip()
    {
        RandomChain chain;
        for (int i = 0; i < Cases; ++i) {
            chain.next();
            RyNode *node = chain.last();
            const Map before = mapOf(chain.nodes);
            RyVec3 position;
            RyQuat rotation;
            RyMatrix3 scale;
            float general = 0.0f;
            node->getLocalTransform(position, rotation, scale, general);
            node->clearPose();
            node->setLocalTransform(position, rotation, scale, general);
            const Map after = mapOf(chain.nodes);
            QVERIFY((after.linear - before.linear).norm() < 1e-5 * (1.0 + before.linear.norm()));
            QVERIFY((after.offset - before.offset).norm() < 1e-5 * sizeOf(before));
        }
        const RyRef<RyNode> bone(new RyBone);
        chain.random.fill(*bone, false);
        bone->setLocalTransform(RyVec3(), RyQuat(), RyMatrix3(), 1.0f);
        QVERIFY(!bone->isPosed());
    }
};

RY_TEST(RyNodeTransformsTest)
#include "tst_RyNodeTransforms.moc"
