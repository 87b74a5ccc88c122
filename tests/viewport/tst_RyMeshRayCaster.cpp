#include "support/RyTest.h"

#include "rycore/math/RyAffine.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/viewport/picking/RyMeshRayCaster.h"

#include <cmath>
#include <random>

class RyMeshRayCasterTest : public QObject
{
    Q_OBJECT
private slots:
    void findsTheNearestOfManyFacets()
    {
        std::mt19937 random(ryTestSeed());
        std::uniform_real_distribution<float> unit(-1, 1);
        const auto point = [&](float scale) { return RyVec3(unit(random), unit(random), unit(random)) * scale; };
        std::vector<RyVec3> positions;
        std::vector<RyFacet> facets;
        for (int i = 0; i < 500; ++i) {
            const RyVec3 center = point(50);
            RyFacet facet;
            for (int corner = 0; corner < 3; ++corner) {
                facet.vertices[corner] = int(positions.size());
                positions.push_back(center + point(8));
            }
            facets.push_back(facet);
        }
        RyRef<RyFacetMesh> mesh(new RyFacetMesh);
        mesh->setPositions(positions);
        mesh->setFacets(facets);
        RyMeshRayCaster caster;
        caster.update(mesh, positions);
        int hits = 0;
        for (int i = 0; i < 300; ++i) {
            const RyLine3 ray(point(120), point(30));
            double distance = 0;
            const int found = caster.cast(ray, distance);
            int expected = -1;
            double nearest = 1e30;
            for (int f = 0; f < 500; ++f) {
                const double t = planeDistance(ray, positions, f);
                if (t >= 0 && t < nearest) {
                    nearest = t;
                    expected = f;
                }
            }
            QCOMPARE(found, expected);
            if (found >= 0) {
                QVERIFY(std::abs(distance - nearest) < 1e-3);
                ++hits;
            }
        }
        QVERIFY(hits > 50);
    }

    void followsThePositionsItIsGiven()
    {
        RyRef<RyFacetMesh> mesh(new RyFacetMesh);
        std::vector<RyVec3> positions{{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
        RyFacet quad;
        for (int i = 0; i < 4; ++i)
            quad.vertices[i] = i;
        mesh->setPositions(positions);
        mesh->setFacets({quad});
        RyMeshRayCaster caster;
        const RyLine3 ray(RyVec3(0.5f, 0.6f, 10), RyVec3(0.5f, 0.6f, 0));
        double distance = 0;
        caster.update(mesh, positions);
        QCOMPARE(caster.cast(ray, distance), 0);
        QCOMPARE(distance, 10.0);
        for (RyVec3 &p : positions)
            p.z -= 5;
        caster.update(mesh, positions);
        QCOMPARE(caster.cast(ray, distance), 0);
        QCOMPARE(distance, 15.0);
        caster.update(mesh, {});
        QCOMPARE(caster.cast(ray, distance), -1);
    }

private:
    /// Where the ray meets a triangle, by its plane and the sides of its edges; negative when it does not.
    static double planeDistance(const RyLine3 &ray, const std::vector<RyVec3> &positions, int f)
    {
        const RyVec3 *p = &positions[size_t(3 * f)];
        const RyVec3 normal = (p[1] - p[0]).cross(p[2] - p[0]);
        const double across = double(ray.getDirection().dot(normal));
        if (across == 0.0)
            return -1;
        const double t = double((p[0] - ray.getOrigin()).dot(normal)) / across;
        const RyVec3 hit = ray.getOrigin() + ray.getDirection() * float(t);
        for (int e = 0; e < 3; ++e) {
            if ((p[(e + 1) % 3] - p[e]).cross(hit - p[e]).dot(normal) < 0)
                return -1;
        }
        return t;
    }
};

RY_TEST(RyMeshRayCasterTest)
#include "tst_RyMeshRayCaster.moc"
