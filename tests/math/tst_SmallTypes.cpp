#include "PlainMath.h"
#include "rycore/math/RyBox3.h"
#include "rycore/math/RyColorGradient.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/math/RyIndexList.h"
#include "rycore/math/RyRotationOrder.h"
#include "rycore/math/RyTime.h"

#include <set>

using namespace Plain;

class MathSmallTypesTest : public QObject
{
    Q_OBJECT
private slots:
    void boxGrowsAroundItsPoints();
    void emptyBoxIsZero();
    void orientedBoxMapsItsCorners();
    void gradientIsLinearAndClamped();
    void indexListStaysSortedAndUnique();
    void rotationOrders();
    void sineAndCosine();
    void toFloatKeepsNumbersFinite();
    void timeIsAnInt();
};

void MathSmallTypesTest::boxGrowsAroundItsPoints()
{
    Random random;
    for (int n = 0; n < 1000; ++n) {
        RyBox3 box;
        RyBox3 other;
        double low[3] = {1e9, 1e9, 1e9};
        double high[3] = {-1e9, -1e9, -1e9};
        for (int k = 0; k < 10; ++k) {
            const RyVec3 p = random.vector();
            (k % 2 ? box : other).include(p);
            for (int i = 0; i < 3; ++i) {
                low[i] = std::min(low[i], double(p[i]));
                high[i] = std::max(high[i], double(p[i]));
            }
        }
        box.include(other);
        box.include(RyBox3());
        QVERIFY(!box.isEmpty());
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(double(box.getMin()[i]), low[i]);
            QCOMPARE(double(box.getMax()[i]), high[i]);
            QVERIFY(std::fabs(box.getCenter()[i] - (low[i] + high[i]) / 2) < 1e-6);
            QVERIFY(std::fabs(box.getExtents()[i] - (high[i] - low[i])) < 1e-5);
        }
        QVERIFY(std::fabs(box.getSize() - length({high[0] - low[0], high[1] - low[1], high[2] - low[2]})) < 1e-5);
    }
}

void MathSmallTypesTest::emptyBoxIsZero()
{
    const RyBox3 box;
    QVERIFY(box.isEmpty());
    QCOMPARE(box.getCenter(), RyVec3());
    QCOMPARE(box.getExtents(), RyVec3());
    QCOMPARE(box.getSize(), 0.0f);
    RyBox3 grown;
    grown.include(box);
    QVERIFY(grown.isEmpty());
    grown.include(RyVec3(5, 5, 5));
    QVERIFY(!grown.isEmpty());
    QCOMPARE(grown.getSize(), 0.0f);
    QCOMPARE(grown.getCenter(), RyVec3(5, 5, 5));
}

void MathSmallTypesTest::orientedBoxMapsItsCorners()
{
    RyOrientedBox3 oriented;
    oriented.box = RyBox3(RyVec3(0, 0, 0), RyVec3(1, 2, 3));
    oriented.transform = RyMatrix3(RyQuat(RyVec3(0, 0, 1), float(-Pi / 2)));
    QVERIFY(distance(oriented.transform.multVec(oriented.box.getMax()), {-2, 1, 3}) < 1e-6);
}

void MathSmallTypesTest::gradientIsLinearAndClamped()
{
    RyColorGradient gradient;
    QCOMPARE(gradient.getColor(0.5f), QColor(0, 0, 0, 0));
    gradient.addGradientColor(1.0f, QColor(200, 100, 0, 55));
    QCOMPARE(gradient.getColor(-4.0f), QColor(200, 100, 0, 55));
    gradient.addGradientColor(0.0f, QColor(0, 0, 200, 255));
    gradient.addGradientColor(0.5f, QColor(100, 0, 0, 155));
    QCOMPARE(gradient.getColor(-1.0f), QColor(0, 0, 200, 255));
    QCOMPARE(gradient.getColor(2.0f), QColor(200, 100, 0, 55));
    for (int k = 0; k <= 1000; ++k) {
        const float t = float(k) / 1000.0f;
        const double u = t < 0.5f ? t / 0.5 : (t - 0.5) / 0.5;
        const double a[4] = {t < 0.5f ? 0.0 : 100.0, 0.0, t < 0.5f ? 200.0 : 0.0, t < 0.5f ? 255.0 : 155.0};
        const double b[4] = {t < 0.5f ? 100.0 : 200.0, t < 0.5f ? 0.0 : 100.0, 0.0, t < 0.5f ? 155.0 : 55.0};
        const QColor c = gradient.getColor(t);
        const double got[4] = {c.redF() * 255, c.greenF() * 255, c.blueF() * 255, c.alphaF() * 255};
        for (int i = 0; i < 4; ++i)
            QVERIFY(std::fabs(got[i] - (a[i] + (b[i] - a[i]) * u)) < 0.05);
    }
}

void MathSmallTypesTest::indexListStaysSortedAndUnique()
{
    Random random;
    RyIndexList list;
    std::set<int> model;
    for (int n = 0; n < 2000; ++n) {
        const int index = random.integer(-50, 500);
        list.addSortedIndex(index);
        model.insert(index);
    }
    QCOMPARE(list.count(), int(model.size()));
    int i = 0;
    for (int value : model) {
        QCOMPARE(list.getIndex(i), value);
        QCOMPARE(list.getIndicesPtr()[i], value);
        ++i;
    }
    list.clear();
    QCOMPARE(list.count(), 0);
    list.preSizeArray(3);
    QCOMPARE(list.count(), 3);
    QCOMPARE(list.getIndex(2), 0);
    list.getIndicesPtr()[1] = 7;
    QCOMPARE(list.getIndex(1), 7);
    list.append(4);
    QCOMPARE(list.getIndex(3), 4);
    list.preSizeArray(-1);
    QCOMPARE(list.count(), 0);
}

void MathSmallTypesTest::rotationOrders()
{
    const QStringList names{"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"};
    for (int code = 0; code < 6; ++code) {
        const RyRotationOrder order(code);
        QCOMPARE(order.order(), code);
        QCOMPARE(order.name(), names[code]);
        int axes[3];
        order.getAxisOrder(axes[0], axes[1], axes[2]);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(order[i], axes[i]);
            QCOMPARE(QChar('X' + axes[i]), names[code][i]);
        }
        QVERIFY(RyRotationOrder::fromAxes(axes[0], axes[1], axes[2]) == order);
        QVERIFY(order != RyRotationOrder((code + 1) % 6));
    }
    QCOMPARE(RyRotationOrder(6).order(), 0);
    QCOMPARE(RyRotationOrder(-1).order(), 0);
    QCOMPARE(RyRotationOrder::fromAxes(1, 1, 2).order(), 0);
}

void MathSmallTypesTest::sineAndCosine()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const float angle = float(random.number(-20, 20));
        float s = 0.0f;
        float c = 0.0f;
        RyFastMath::sinAndCos(angle, s, c);
        QVERIFY(std::fabs(s - std::sin(double(angle))) < 1e-6);
        QVERIFY(std::fabs(c - std::cos(double(angle))) < 1e-6);
    }
}

void MathSmallTypesTest::toFloatKeepsNumbersFinite()
{
    QCOMPARE(RyFastMath::toFloat(1e300), std::numeric_limits<float>::max());
    QCOMPARE(RyFastMath::toFloat(-1e300), -std::numeric_limits<float>::max());
    QCOMPARE(RyFastMath::toFloat(0.1), 0.1f);
}

void MathSmallTypesTest::timeIsAnInt()
{
    QCOMPARE(int(RyTime()), 0);
    QCOMPARE(int(RyTime(160)), 160);
}

RY_TEST(MathSmallTypesTest)
#include "tst_SmallTypes.moc"
