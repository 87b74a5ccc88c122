#include "PlainMath.h"
#include "rycore/math/RyAffine.h"

#include <Eigen/Dense>

using namespace Plain;

class RyAffineTest : public QObject
{
    Q_OBJECT
private slots:
    void chainsMatchPlainProducts();
    void inverseUndoesInDoublePrecision();
    void singularInverseIsTheIdentity();
    void polarPartsMultiplyBack();
    void noNanFromFiniteInput();
};

namespace {

Mat mat(const RyAffine &a)
{
    Mat m = identity();
    for (size_t i = 0; i < 4; ++i) {
        for (size_t j = 0; j < 3; ++j)
            m[i][j] = a.m[i][j];
    }
    return m;
}

RyAffine randomAffine(Random &random, double size = 3.0)
{
    RyAffine a;
    for (auto &row : a.m) {
        for (double &value : row)
            value = random.number(-size, size);
    }
    return a;
}

bool finiteMap(const RyAffine &a)
{
    for (const auto &row : a.m) {
        for (double value : row) {
            if (!std::isfinite(value))
                return false;
        }
    }
    return true;
}

} // namespace

void RyAffineTest::chainsMatchPlainProducts()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 t = random.vector();
        const RyVec3 axis = random.direction();
        const float angle = random.angle();
        const double s[3] = {random.number(-2, 2), random.number(-2, 2), random.number(-2, 2)};
        const RyMatrix4 last = random.matrix();
        const RyAffine chain = RyAffine::fromScale(s[0], s[1], s[2]) * RyAffine::fromRotation(RyQuat(axis, angle)) *
                               RyAffine::fromTranslation(t) * RyAffine(last);
        QVERIFY(RyAffine::fromScale(s[0]) == RyAffine::fromScale(s[0], s[0], s[0]));
        const RyVec3 v = random.vector();
        Vec p = turn({v.x * s[0], v.y * s[1], v.z * s[2]}, unit(vec(axis)), -double(angle));
        p = image({p[0] + t.x, p[1] + t.y, p[2] + t.z}, Plain::mat(last));
        QVERIFY(distance(chain.mapPoint(v), p) < 1e-4);
        double in[3] = {v.x, v.y, v.z};
        chain.mapPoint(in, in);
        QVERIFY(distance(Vec{in[0], in[1], in[2]}, p) < 1e-4);
        const Vec zero = image({0, 0, 0}, mat(chain));
        QVERIFY(distance(chain.mapDirection(v), {p[0] - zero[0], p[1] - zero[1], p[2] - zero[2]}) < 1e-4);
        QVERIFY(distance(chain.translation(), zero) < 1e-5);
        QVERIFY(difference(Plain::mat(chain.toMatrix4()), mat(chain)) < 1e-5);
        const RyAffine other = randomAffine(random);
        QVERIFY(difference(mat(chain * other), product(mat(chain), mat(other))) < 1e-11);
        QVERIFY(RyAffine(last).toMatrix4() == last);
    }
}

void RyAffineTest::inverseUndoesInDoublePrecision()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        RyAffine a = randomAffine(random);
        Eigen::Matrix3d e;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j)
                e(i, j) = a.m[i][j];
        }
        QVERIFY(std::fabs(a.determinant() - e.determinant()) < 1e-12);
        if (std::fabs(e.determinant()) < 0.1)
            continue;
        // The unit of length does not matter.
        const double unitFactor = std::pow(10.0, random.number(-15, 15));
        for (auto &row : a.m) {
            for (double &value : row)
                value *= unitFactor;
        }
        RyAffine inverse;
        QVERIFY(a.invert(inverse));
        QVERIFY(difference(product(mat(a), mat(inverse)), identity()) < 1e-10);
        QVERIFY(a.inverse() == inverse);
    }
}

void RyAffineTest::singularInverseIsTheIdentity()
{
    Random random;
    for (int n = 0; n < 1000; ++n) {
        RyAffine a = randomAffine(random);
        const int row = random.integer(0, 2);
        const double factor = n % 2 ? 0.0 : 2.0;
        for (int j = 0; j < 3; ++j)
            a.m[row][j] = factor * a.m[(row + 1) % 3][j];
        RyAffine result = a;
        QVERIFY(!a.invert(result));
        QVERIFY(result == RyAffine());
        QVERIFY(a.inverse() == RyAffine());
    }
}

void RyAffineTest::polarPartsMultiplyBack()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        RyAffine a = randomAffine(random);
        if (n % 10 == 0) {
            for (int j = 0; j < 3; ++j)
                a.m[n % 3][j] = 0.0;
        }
        RyAffine stretch;
        RyQuat q;
        a.decomposePolar(stretch, q);
        QVERIFY(std::fabs(q.dot(q) - 1.0f) < 1e-6f);
        const Eigen::Matrix3d r = Eigen::Quaterniond(q.w, q.x, q.y, q.z).normalized().toRotationMatrix();
        Eigen::Matrix3d s, l;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                s(i, j) = stretch.m[i][j];
                l(i, j) = a.m[i][j];
            }
        }
        QVERIFY((s - s.transpose()).cwiseAbs().maxCoeff() < 1e-12);
        QVERIFY((s * r - l).cwiseAbs().maxCoeff() < 5e-6);
        const Eigen::Vector3d values = Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d>(s).eigenvalues();
        if (l.determinant() >= 0)
            QVERIFY(values.minCoeff() > -1e-9);
        else
            QVERIFY(values[0] < 1e-9 && values[1] > -1e-9 && values[2] > -1e-9);
    }
    RyAffine stretch;
    RyQuat q;
    RyAffine::fromScale(0).decomposePolar(stretch, q);
    QVERIFY(finiteMap(stretch) && finite(q));
}

void RyAffineTest::noNanFromFiniteInput()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyAffine a(random.anyMatrix());
        const RyAffine b(random.anyMatrix());
        QVERIFY(finiteMap(a * b) && finiteMap(a.inverse()) && std::isfinite(a.determinant()));
        QVERIFY(finite(a.mapPoint(random.anyVector())) && finite((a * b).mapDirection(random.anyVector())));
        QVERIFY(finite((a * b).toMatrix4()) && finiteMap((a * b).inverse()));
        QVERIFY(finiteMap(RyAffine::fromRotation(random.anyQuat())));
        RyAffine stretch;
        RyQuat q;
        a.decomposePolar(stretch, q);
        QVERIFY(finiteMap(stretch) && finite(q));
    }
}

RY_TEST(RyAffineTest)
#include "tst_RyAffine.moc"
