#include "rycore/parametric/fit/RyLegacyWeightSolver.h"

#include "support/RyRandom.h"
#include "support/RyTest.h"

#include <cmath>
#include <functional>
#include <numeric>

/// Weights of one vertex by least squares, beside trying them all.
class RyLegacyWeightSolverTest : public QObject
{
    Q_OBJECT

private slots:
    void besideTryingAll_data()
    {
        QTest::addColumn<int>("candidates");
        for (const int candidates : {2, 3, 4, 5, 6})
            QTest::newRow(qPrintable(QString::number(candidates))) << candidates;
    }

    /// A search that halves its step finds the least of a convex function; the solver must not be above it.
    void besideTryingAll()
    {
        QFETCH(int, candidates);
        for (int round = 0; round < 60; ++round) {
            const Problem problem = make(candidates, round % 3 == 0);
            const std::vector<double> solved = problem.solver.solve(problem.plain);
            QCOMPARE(solved.size(), size_t(candidates));
            QVERIFY(std::abs(std::accumulate(solved.begin(), solved.end(), 0.0) - 1.0) < 1e-9);
            for (const double weight : solved)
                QVERIFY(weight >= 0.0);
            const double least = problem.value(search(problem));
            QVERIFY2(problem.value(solved) <= least + 1e-6 * (1.0 + least),
                     qPrintable(QStringLiteral("%1 against %2").arg(problem.value(solved)).arg(least)));
        }
    }

    void findsTheMix()
    {
        RyLegacyWeightSolver solver(3);
        const double wanted[3] = {0.5, 0.2, 0.3};
        for (int pose = 0; pose < 8; ++pose) {
            double images[9], target[3] = {};
            for (int i = 0; i < 9; ++i) {
                images[i] = m_random.number(-50, 50);
                target[i % 3] += wanted[i / 3] * images[i];
            }
            solver.addPose(images, target);
        }
        const std::vector<double> solved = solver.solve({1, 0, 0});
        for (size_t i = 0; i < 3; ++i)
            QVERIFY(std::abs(solved[i] - wanted[i]) < 1e-3);
        QVERIFY(solver.error(solved) < 1e-4 * solver.error({1, 0, 0}));
    }

    /// Where bones do not disagree, the plain weights stay.
    void leansToPlainWeights()
    {
        const std::vector<double> plain{0.25, 0.75};
        QCOMPARE(RyLegacyWeightSolver(2).solve(plain), plain);
        RyLegacyWeightSolver solver(2);
        const double images[6] = {1, 2, 3, 1, 2, 3}, target[3] = {1, 2, 4};
        solver.addPose(images, target);
        const std::vector<double> solved = solver.solve(plain);
        QVERIFY(std::abs(solved[0] - 0.25) < 1e-9);
    }

private:
    struct Problem
    {
        RyLegacyWeightSolver solver;
        std::vector<double> plain;
        double squares = 0.0; // by which single candidates miss the targets

        double value(const std::vector<double> &weights) const
        {
            double lean = 0.0;
            for (size_t i = 0; i < weights.size(); ++i)
                lean += (weights[i] - plain[i]) * (weights[i] - plain[i]);
            return solver.error(weights) + RyLegacyWeightSolver::Ridge * squares / double(weights.size()) * lean;
        }
    };

    /// `hasTwins`: two candidates always move alike.
    Problem make(int candidates, bool hasTwins)
    {
        Problem problem{RyLegacyWeightSolver(size_t(candidates)), std::vector<double>(size_t(candidates), 0.0), 0.0};
        double sum = 0.0;
        for (double &weight : problem.plain)
            sum += weight = m_random.number(0, 1);
        for (double &weight : problem.plain)
            weight /= sum;
        for (int pose = 0; pose < 5; ++pose) {
            std::vector<double> images;
            double target[3];
            for (int i = 0; i < 3 * candidates; ++i)
                images.push_back(m_random.number(-10, 10));
            if (hasTwins)
                std::copy(images.begin(), images.begin() + 3, images.end() - 3);
            for (double &place : target)
                place = m_random.number(-10, 10);
            for (size_t i = 0; i < images.size(); ++i)
                problem.squares += (images[i] - target[i % 3]) * (images[i] - target[i % 3]);
            problem.solver.addPose(images.data(), target);
        }
        return problem;
    }

    /// Moves weight between all pairs, as long as that lowers the value, by ever smaller steps.
    static std::vector<double> search(const Problem &problem)
    {
        std::vector<double> best = problem.plain;
        double least = problem.value(best);
        for (double step = 0.5; step > 1e-9; step *= 0.5) {
            for (bool more = true; more;) {
                more = false;
                for (size_t i = 0; i < best.size(); ++i) {
                    for (size_t j = 0; j < best.size(); ++j) {
                        std::vector<double> next = best;
                        const double moved = std::min(step, next[i]);
                        next[i] -= moved;
                        next[j] += moved;
                        const double value = problem.value(next);
                        if (i != j && value < least * (1.0 - 1e-12)) {
                            least = value;
                            best = next;
                            more = true;
                        }
                    }
                }
            }
        }
        return best;
    }

    RyRandom m_random;
};

RY_TEST(RyLegacyWeightSolverTest)
#include "tst_RyLegacyWeightSolver.moc"
