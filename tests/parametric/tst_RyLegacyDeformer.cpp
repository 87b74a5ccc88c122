#include "parametric/LegacyEvaluator.h"
#include "parametric/RandomRig.h"
#include "rycore/parametric/RyLegacyDeformer.h"
#include "support/RyTest.h"

#include <QObject>

#include <cmath>

/// The deformer beside an evaluator that shares nothing with it.
class LegacyDeformerTest : public QObject
{
    Q_OBJECT

private slots:
    void matchesEvaluator();
};

void LegacyDeformerTest::matchesEvaluator()
{
    RyRandom random;
    const int figures =
        qEnvironmentVariableIntValue("RY_FIGURES") > 0 ? qEnvironmentVariableIntValue("RY_FIGURES") : 10000;
    double worst = 0.0;
    int moved = 0;
    for (int i = 0; i < figures; ++i) {
        RandomRig figure(random);
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        std::vector<RyVec3> out;
        deformer.deform(figure.rest, figure.controls, out);
        const std::vector<RyVec3> &posed = deformer.pose(figure.controls);
        QVERIFY(posed == out);
        for (size_t v = 0; v < out.size(); ++v) {
            const LegacyEvaluator::Vec right = figure.evaluate(v);
            const double apart = std::sqrt(std::pow(out[v].x - right[0], 2) + std::pow(out[v].y - right[1], 2) +
                                           std::pow(out[v].z - right[2], 2));
            if (apart > 1e-5 * figure.size(right))
                QFAIL(qPrintable(
                    QString("figure %1, vertex %2: %3 of %4").arg(i).arg(v).arg(apart).arg(figure.size(right))));
            worst = std::max(worst, apart / figure.size(right));
            moved += !(out[v] == figure.rest[v]);
        }
    }
    qInfo("%d figures, largest difference %g of the size, %d vertices moved", figures, worst, moved);
    QVERIFY(moved > 10 * figures);
}

RY_TEST(LegacyDeformerTest)
#include "tst_RyLegacyDeformer.moc"
