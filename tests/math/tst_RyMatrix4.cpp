#include "PlainMath.h"
#include "rycore/math/RyMatrix4Utilities.h"

#include <Eigen/Dense>

using namespace Plain;

class RyMatrix4Test : public QObject
{
    Q_OBJECT
private slots:
    void rowsAreTheImagesOfTheAxes();
    void productOfRotationMatrices();
    void sixteenNumbersServeGlWithoutTranspose();
    void operationsAppend();
    void constructors();
    void productAppliesTheLeftFirst();
    void inverseMatchesIndependentSolver();
    void singularInverseIsTheIdentity();
    void perspectiveDivision();
    void decomposeGivesScaleRotationTranslation();
    void decomposeRoundTripsDegenerateProducts();
    void decomposeOfAShearTakesTheNearestRotation();
    void matrix3MatchesDoubles();
    void noNanFromFiniteInput();
};

void RyMatrix4Test::rowsAreTheImagesOfTheAxes()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 axis = random.direction();
        const float t = random.angle();
        const RyQuat q(axis, t);
        const RyMatrix3 m3(q);
        const RyMatrix4 m4(q);
        const RyVec3 v = random.vector();
        const Vec turned = turn(vec(v), unit(vec(axis)), -double(t));
        QVERIFY(distance(m3.multVec(v), turned) < 2e-5);
        QVERIFY(distance(m4.multVecMatrix(v), turned) < 2e-5);
        for (int k = 0; k < 3; ++k) {
            const Vec row = turn(vec(RyVec3::axis(k)), unit(vec(axis)), -double(t));
            QVERIFY(distance(m3.row(k), row) < 1e-6);
            QVERIFY(distance(RyVec3(m4[k][0], m4[k][1], m4[k][2]), row) < 1e-6);
        }
    }
}

void RyMatrix4Test::productOfRotationMatrices()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyQuat p = random.rotation();
        const RyQuat q = random.rotation();
        QVERIFY(difference(product(mat(RyMatrix4(p)), mat(RyMatrix4(q))), mat(RyMatrix4(p * q))) < 1e-6);
        QVERIFY(difference(mat(RyMatrix4(p) * RyMatrix4(q)), mat(RyMatrix4(p * q))) < 1e-6);
    }
}

void RyMatrix4Test::sixteenNumbersServeGlWithoutTranspose()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        RyMatrix4 m = random.matrix();
        const RyVec3 v = random.vector();
        // glMultMatrixf reads columns: result[i] = sum of data[4 * column + i] * v[column].
        double gl[4] = {0, 0, 0, 0};
        const double point[4] = {v.x, v.y, v.z, 1.0};
        for (int column = 0; column < 4; ++column) {
            for (int i = 0; i < 4; ++i)
                gl[i] += double(m.data()[4 * column + i]) * point[column];
        }
        QVERIFY(distance(m.multVecMatrix(v), {gl[0], gl[1], gl[2]}) < 2e-5);
        QCOMPARE(gl[3], 1.0);
        const RyVec3 t = random.vector();
        const RyMatrix4 moved(RyMatrix3(), t);
        QVERIFY(moved.data()[12] == t.x && moved.data()[13] == t.y && moved.data()[14] == t.z);
    }
}

void RyMatrix4Test::operationsAppend()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyMatrix4 start = random.matrix();
        const RyVec3 t = random.vector();
        const RyVec3 s = random.vector(3);
        const RyVec3 axis = random.direction();
        const float angle = random.angle();
        const float f = float(random.number(-3, 3));
        const RyVec3 v = random.vector();
        RyMatrix4 m = start;
        m.translate(t);
        m.rotate(RyQuat(axis, angle));
        m.scale(s);
        m.scale(f);
        Vec p = image(vec(v), mat(start));
        p = turn({p[0] + t.x, p[1] + t.y, p[2] + t.z}, unit(vec(axis)), -double(angle));
        p = {p[0] * s.x * f, p[1] * s.y * f, p[2] * s.z * f};
        QVERIFY(distance(m.multVecMatrix(v), p) < 1e-6 * (1 + 9 * 100));
    }
}

void RyMatrix4Test::constructors()
{
    QVERIFY(difference(mat(RyMatrix4(true)), identity()) == 0.0);
    QVERIFY(difference(mat(RyMatrix4()), identity()) == 0.0);
    QVERIFY(difference(mat(RyMatrix4(false)), Mat{}) == 0.0);
    QVERIFY(RyMatrix4(true) == RyMatrix4());
    QVERIFY(RyMatrix4(true) != RyMatrix4(false));
    const RyMatrix4 m(RyMatrix3::diagonal(RyVec3(2, 3, 4)), RyVec3(5, 6, 7));
    QCOMPARE(m.multVecMatrix(RyVec3(1, 1, 1)), RyVec3(7, 9, 11));
    QCOMPARE(m.multDirMatrix(RyVec3(1, 1, 1)), RyVec3(2, 3, 4));
    QCOMPARE(m.translation(), RyVec3(5, 6, 7));
    QVERIFY(m.linear() == RyMatrix3::diagonal(RyVec3(2, 3, 4)));
}

void RyMatrix4Test::productAppliesTheLeftFirst()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyMatrix4 a = random.matrix();
        const RyMatrix4 b = random.matrix();
        const RyVec3 v = random.vector();
        QVERIFY(distance((a * b).multVecMatrix(v), image(image(vec(v), mat(a)), mat(b))) < 1e-3);
        QVERIFY(difference(mat(a * b), product(mat(a), mat(b))) < 1e-5);
    }
}

void RyMatrix4Test::inverseMatchesIndependentSolver()
{
    Random random;
    int tried = 0;
    for (int n = 0; n < Cases; ++n) {
        RyMatrix4 m = random.matrix();
        if (n % 4 == 0) {
            for (int i = 0; i < 4; ++i)
                m[i][3] = float(random.number(-1, 1));
        }
        Eigen::Matrix4d e;
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j)
                e(i, j) = m[i][j];
        }
        if (std::fabs(e.determinant()) < 0.05)
            continue;
        ++tried;
        const Eigen::Matrix4d expected = e.partialPivLu().inverse();
        const RyMatrix4 inverse = m.inverse();
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j)
                QVERIFY(std::fabs(inverse[i][j] - expected(i, j)) <= 1e-5 * (1.0 + expected.cwiseAbs().maxCoeff()));
        }
    }
    QVERIFY(tried > Cases / 2);
}

void RyMatrix4Test::singularInverseIsTheIdentity()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        RyMatrix4 m = random.matrix();
        const int row = random.integer(0, 2);
        const int from = (row + 1) % 3;
        const float factor = n % 2 ? 0.0f : float(std::ldexp(1.0, random.integer(-3, 3)));
        for (int j = 0; j < 3; ++j)
            m[row][j] = m[from][j] * factor;
        QVERIFY(m.inverse() == RyMatrix4(true));
        QVERIFY(m.linear().inverse() == RyMatrix3());
    }
    QVERIFY(RyMatrix4(false).inverse() == RyMatrix4(true));
    // Small is not singular.
    RyMatrix4 tiny(RyMatrix3::diagonal(RyVec3(1e-12f, 1e-12f, 1e-12f)));
    QVERIFY(std::fabs(tiny.inverse()[1][1] / 1e12f - 1.0f) < 1e-5f);
}

void RyMatrix4Test::perspectiveDivision()
{
    RyMatrix4 m(true);
    m[2][3] = 1.0f;
    m[3][3] = 0.0f;
    QCOMPARE(m.multVecMatrix(RyVec3(4, 6, 2)), RyVec3(2, 3, 1));
    QCOMPARE(m.multVecMatrix(RyVec3(4, 6, 0)), RyVec3());
}

namespace {

Mat composed(const RyVec3 &t, const RyVec3 &s, const RyQuat &q)
{
    const Eigen::Matrix3d r = Eigen::Quaterniond(q.w, q.x, q.y, q.z).normalized().toRotationMatrix();
    Mat m = identity();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            m[size_t(i)][size_t(j)] = s[i] * r(i, j);
        m[3][size_t(i)] = t[i];
    }
    return m;
}

RyMatrix4 rounded(const Mat &m)
{
    RyMatrix4 result(true);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            result[i][j] = float(m[size_t(i)][size_t(j)]);
    }
    return result;
}

} // namespace

void RyMatrix4Test::decomposeGivesScaleRotationTranslation()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 t = random.vector(100);
        const RyQuat q = random.rotation();
        RyVec3 s;
        for (int i = 0; i < 3; ++i)
            s[i] = float(std::pow(10.0, random.number(-3, 3)));
        const int negative = n % 2 ? random.integer(0, 2) : -1;
        if (negative >= 0)
            s[negative] = -s[negative];
        const Mat m = composed(t, s, q);
        RyVec3 gotT, gotS;
        RyQuat gotQ;
        RyMatrix4Utilities::decomposeMatrix(rounded(m), gotT, gotS, gotQ);
        QCOMPARE(gotT, t);
        const Mat back = composed(gotT, gotS, gotQ);
        for (size_t i = 0; i < 3; ++i) {
            const double size = std::fabs(double(s[int(i)]));
            QVERIFY(std::fabs(std::fabs(double(gotS[int(i)])) - size) < 2e-6 * size);
            for (size_t j = 0; j < 3; ++j)
                QVERIFY(std::fabs(back[i][j] - m[i][j]) < 2e-6 * size);
        }
        const int signs = (gotS.x < 0) + (gotS.y < 0) + (gotS.z < 0);
        QCOMPARE(signs, negative >= 0 ? 1 : 0);
        if (negative < 0) {
            gotQ.makeClosest(q);
            QVERIFY(std::fabs(gotQ.x - q.x) < 2e-6f && std::fabs(gotQ.y - q.y) < 2e-6f);
            QVERIFY(std::fabs(gotQ.z - q.z) < 2e-6f && std::fabs(gotQ.w - q.w) < 2e-6f);
        }
    }
    // A plain mirror stays a mirror.
    RyVec3 t, s;
    RyQuat q;
    RyMatrix4Utilities::decomposeMatrix(RyMatrix4(RyMatrix3::diagonal(RyVec3(1, -2, 3))), t, s, q);
    QCOMPARE(s, RyVec3(1, -2, 3));
    QCOMPARE(q, RyQuat());
}

void RyMatrix4Test::decomposeRoundTripsDegenerateProducts()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        RyVec3 s = random.vector(3);
        for (int i = 0; i < 3; ++i) {
            if ((n >> i) & 1)
                s[i] = 0.0f;
        }
        const Mat m = composed(random.vector(), s, random.rotation());
        RyVec3 gotT, gotS;
        RyQuat gotQ;
        RyMatrix4Utilities::decomposeMatrix(rounded(m), gotT, gotS, gotQ);
        QVERIFY(finite(gotS) && finite(gotQ));
        QVERIFY(difference(composed(gotT, gotS, gotQ), m) < 3e-6);
    }
}

void RyMatrix4Test::decomposeOfAShearTakesTheNearestRotation()
{
    Random random;
    int tried = 0;
    for (int n = 0; n < Cases; ++n) {
        const RyMatrix4 m = random.matrix();
        Eigen::Matrix3d l;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j)
                l(i, j) = m[i][j];
        }
        if (l.determinant() < 0.5)
            continue;
        ++tried;
        // Polar rotation by Newton's iteration, R := (R + R^-T) / 2.
        Eigen::Matrix3d r = l;
        for (int step = 0; step < 60; ++step)
            r = (0.5 * (r + r.inverse().transpose())).eval();
        RyVec3 t, s;
        RyQuat q;
        RyMatrix4Utilities::decomposeMatrix(m, t, s, q);
        const RyMatrix3 got(q);
        const Eigen::Matrix3d stretch = l * r.transpose();
        for (int i = 0; i < 3; ++i) {
            QVERIFY(std::fabs(s[i] - stretch(i, i)) < 1e-5);
            for (int j = 0; j < 3; ++j)
                QVERIFY(std::fabs(got[i][j] - r(i, j)) < 1e-5);
        }
    }
    QVERIFY(tried > Cases / 4);
}

void RyMatrix4Test::matrix3MatchesDoubles()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyMatrix3 a = random.matrix().linear();
        const RyMatrix3 b = random.matrix().linear();
        const Mat da = mat(RyMatrix4(a));
        const Mat db = mat(RyMatrix4(b));
        const RyVec3 v = random.vector();
        QVERIFY(distance(a.multVec(v), image(vec(v), da)) < 1e-5);
        QVERIFY(difference(mat(RyMatrix4(a * b)), product(da, db)) < 1e-5);
        const double det =
            dot({da[0][0], da[0][1], da[0][2]}, cross({da[1][0], da[1][1], da[1][2]}, {da[2][0], da[2][1], da[2][2]}));
        QVERIFY(std::fabs(a.determinant() - det) < 1e-5);
        const RyMatrix3 transposed = a.transposed();
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j)
                QCOMPARE(transposed[i][j], a[j][i]);
        }
        if (std::fabs(det) > 0.1)
            QVERIFY(difference(product(da, mat(RyMatrix4(a.inverse()))), identity()) < 1e-4);
    }
}

void RyMatrix4Test::noNanFromFiniteInput()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyMatrix4 a = random.anyMatrix();
        const RyMatrix4 b = random.anyMatrix();
        QVERIFY(finite(a * b) && finite(a.inverse()));
        QVERIFY(finite(a.multVecMatrix(random.anyVector())) && finite(a.multDirMatrix(random.anyVector())));
        RyMatrix4 m = a;
        m.translate(random.anyVector());
        m.rotate(random.anyQuat());
        m.scale(random.anyVector());
        m.scale(random.anyFinite());
        QVERIFY(finite(m));
        RyVec3 t, s;
        RyQuat q;
        RyMatrix4Utilities::decomposeMatrix(a, t, s, q);
        QVERIFY(finite(t) && finite(s) && finite(q));
        QVERIFY(std::fabs(length({q.x, q.y, q.z}) * length({q.x, q.y, q.z}) + double(q.w) * q.w - 1.0) < 1e-5);
        QVERIFY(std::isfinite(a.linear().determinant()));
    }
}

RY_TEST(RyMatrix4Test)
#include "tst_RyMatrix4.moc"
