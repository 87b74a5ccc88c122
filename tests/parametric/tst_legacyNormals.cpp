#include "parametric/ArmFixture.h"
#include "parametric/RandomRig.h"
#include "rycore/parametric/RyLegacyDeformer.h"

#include <QObject>

/// Normals of parametric figures.
class LegacyNormalsTest : public QObject
{
    Q_OBJECT

private slots:
    void normalsStandOnTheSurface();
    void furtherNormals();
};

void LegacyNormalsTest::normalsStandOnTheSurface()
{
    ArmFixture arm;
    arm.pose();
    arm.bones[2]->getYScaleControl()->setValue(2);
    const RyShapePoints points = arm.object->getDeformedPoints();
    QVERIFY(points.normals && points.normals->size() == points.positions->size());
    const std::vector<RyVec3> fromSurface = arm.mesh->computeNormals(*points.positions);
    // The last ring follows the last bone wholly, where no fraction changes.
    for (int i = 0; i < ArmFixture::Around; ++i) {
        const auto v = size_t(arm.vertex(43, i));
        QVERIFY((*points.normals)[v].normalized().dot(fromSurface[v]) > 0.98f);
    }
    // In part moved ones: turned as far as their vertex.
    const std::vector<RyVec3> &rest = arm.shape->getNormals()->normals();
    int turned = 0;
    for (size_t v = 0; v < rest.size(); ++v) {
        const float along = (*points.normals)[v].normalized().dot(fromSurface[v]);
        turned += along < 0.9f;
    }
    QVERIFY(turned < ArmFixture::Around * ArmFixture::Rings / 5);
    // Those of one pose in one step and in two.
    const std::vector<RyVec3> kept = *points.normals;
    arm.bones[1]->getZRotControl()->setValue(10);
    arm.object->getDeformedPoints();
    arm.bones[1]->getZRotControl()->setValue(90);
    QCOMPARE(ArmFixture::apart(*arm.object->getDeformedPoints().normals, kept), 0.0);
}

void LegacyNormalsTest::furtherNormals()
{
    RyRandom random;
    int moved = 0;
    for (int i = 0; i < 200; ++i) {
        RandomRig figure(random);
        const size_t count = figure.rest.size();
        std::vector<int> vertices;
        std::vector<RyVec3> normals;
        for (size_t v = 0; v < count; ++v)
            normals.push_back(random.vector(1).normalized());
        // The same normals again, in another order: the same results.
        for (size_t v = 0; v < count; v += 2) {
            vertices.insert(vertices.begin(), int(v));
            normals.insert(normals.begin() + std::ptrdiff_t(count), normals[v]);
        }
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        deformer.setFurtherNormals(vertices);
        deformer.pose(figure.controls, &normals, 1);
        for (int rigs = 0; rigs < 2; ++rigs) {
            QCOMPARE(deformer.normals().size(), normals.size());
            for (size_t f = 0; f < vertices.size(); ++f) {
                const RyVec3 &one = deformer.normals()[count + f];
                const RyVec3 &other = deformer.normals()[size_t(vertices[f])];
                QVERIFY((one - other).length() <= 1e-6f * (1 + other.length()));
                moved += one != normals[count + f];
            }
            // Places of a changed rig are found again.
            figure.rig.bones[0].origin += RyVec3(1, 0, 0);
            deformer.setRig(figure.rig, figure.rest);
            deformer.pose(figure.controls, &normals, 1);
        }
        // Ones that do not fit leave all normals as they are.
        normals.pop_back();
        deformer.pose(figure.controls, &normals, 2);
        QVERIFY(deformer.normals() == normals);
    }
    QVERIFY(moved > 500);
}

RY_TEST(LegacyNormalsTest)
#include "tst_legacyNormals.moc"
