#include "evaluator/GltfTransform.h"
#include "support/RyTest.h"

#include "rycore/io/gltf/clips/RyGltfParts.h"

#include <random>

/// What becomes of maps that translation, rotation and scale cannot say.
class RyGltfPartsTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsNearer_data();
    void nothingIsNearer();
    void whatTheyCanSayComesBack();
};

void RyGltfPartsTest::nothingIsNearer_data()
{
    QTest::addColumn<double>("shear");
    for (const double shear : {1e-6, 1e-3, 0.05, 0.2, 0.4})
        QTest::addRow("%g", shear) << shear;
}

void RyGltfPartsTest::nothingIsNearer()
{
    QFETCH(double, shear);
    std::mt19937 random(ryTestSeed());
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    for (int n = 0; n < 200; ++n) {
        RyGltfTransform any;
        for (double &part : any.rotation)
            part = number(random);
        for (double &factor : any.scale)
            factor = 1.0 + 0.3 * number(random);
        Eigen::Matrix3d skew;
        skew << 1, shear * number(random), shear * number(random), 0, 1, shear * number(random), 0, 0, 1;
        Eigen::Affine3d map = RyGltfParts::of(any).map();
        map.linear() *= skew;
        map.translation() = Eigen::Vector3d(number(random), number(random), number(random));
        const Eigen::Matrix4d found = RyGltfParts::nearest(map).map().matrix();
        const Eigen::Matrix4d wanted = GltfTransform::nearestTo(map.matrix()).matrix();
        const double off = (found - wanted).cwiseAbs().maxCoeff();
        QVERIFY2(off < 1e-7, qPrintable(QString::number(off)));
        // Mirrored along an axis it is the mirrored one.
        map.linear().col(n % 3) *= -1.0;
        Eigen::Vector3d signs = Eigen::Vector3d::Ones();
        signs[n % 3] = -1.0;
        const RyGltfParts mirrored = RyGltfParts::nearest(map, signs);
        Eigen::Matrix4d wantedMirrored = wanted;
        wantedMirrored.col(n % 3) *= -1.0;
        QVERIFY((mirrored.map().matrix() - wantedMirrored).cwiseAbs().maxCoeff() < 1e-7);
        QVERIFY((mirrored.scale.cwiseProduct(signs).array() > 0.0).all());
    }
}

void RyGltfPartsTest::whatTheyCanSayComesBack()
{
    std::mt19937 random(ryTestSeed());
    std::uniform_real_distribution<double> number(-2.0, 2.0);
    for (int n = 0; n < 200; ++n) {
        RyGltfTransform any;
        for (int part = 0; part < 4; ++part)
            any.rotation[size_t(part)] = number(random);
        for (size_t axis = 0; axis < 3; ++axis) {
            any.scale[axis] = n % 7 == 0 ? number(random) : 0.1 + std::abs(number(random));
            any.translation[axis] = number(random);
        }
        const RyGltfParts parts = RyGltfParts::of(any);
        const RyGltfParts again = RyGltfParts::nearest(parts.map(), parts.scale);
        QVERIFY((again.map().matrix() - parts.map().matrix()).cwiseAbs().maxCoeff() < 1e-12);
        QVERIFY((again.scale - parts.scale).cwiseAbs().maxCoeff() < 1e-12);
    }
}

RY_TEST(RyGltfPartsTest)

#include "tst_RyGltfParts.moc"
