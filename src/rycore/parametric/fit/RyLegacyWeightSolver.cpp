#include "rycore/parametric/fit/RyLegacyWeightSolver.h"

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include <limits>

namespace {

using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;

/// Minimises wᵀ A w - 2 rᵀ w for weights with the sum 1 on the listed places; the others are 0. `A` is positive
/// definite.
Vector solveOn(const Matrix &a, const Vector &r, const std::vector<int> &places)
{
    const Eigen::Index count = Eigen::Index(places.size());
    Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic> part(count, count);
    Eigen::Matrix<double, Eigen::Dynamic, 2> right(count, 2);
    for (Eigen::Index i = 0; i < count; ++i) {
        for (Eigen::Index j = 0; j < count; ++j)
            part(i, j) = a(places[size_t(i)], places[size_t(j)]);
        right(i, 0) = r(places[size_t(i)]);
        right(i, 1) = 1.0;
    }
    const Eigen::Matrix<double, Eigen::Dynamic, 2> solved = part.ldlt().solve(right);
    const Vector best = solved.col(0) + (1.0 - solved.col(0).sum()) / solved.col(1).sum() * solved.col(1);
    Vector weights = Vector::Zero(a.rows());
    for (Eigen::Index i = 0; i < count; ++i)
        weights(places[size_t(i)]) = best(i);
    return weights;
}

Vector bestSubset(const Matrix &a, const Vector &r)
{
    const int count = int(a.rows());
    Vector best;
    double least = std::numeric_limits<double>::infinity();
    for (int subset = 1; subset < 1 << count; ++subset) {
        std::vector<int> places;
        for (int i = 0; i < count; ++i) {
            if (subset & 1 << i)
                places.push_back(i);
        }
        const Vector weights = solveOn(a, r, places);
        if (!(weights.minCoeff() >= 0.0))
            continue;
        const double value = weights.dot(a * weights) - 2.0 * r.dot(weights);
        if (value < least) {
            least = value;
            best = weights;
        }
    }
    return best;
}

/// Starts from a single place and lets in, one by one, what lowers the value most.
Vector byActiveSet(const Matrix &a, const Vector &r)
{
    const int count = int(a.rows());
    std::vector<bool> isFree(size_t(count), false);
    int first = 0;
    for (int i = 1; i < count; ++i) {
        if (a(i, i) - 2.0 * r(i) < a(first, first) - 2.0 * r(first))
            first = i;
    }
    isFree[size_t(first)] = true;
    Vector weights = Vector::Zero(count);
    weights(first) = 1.0;
    for (int round = 0; round < 10 * count; ++round) {
        std::vector<int> places;
        for (int i = 0; i < count; ++i) {
            if (isFree[size_t(i)])
                places.push_back(i);
        }
        const Vector wanted = solveOn(a, r, places);
        double step = 1.0;
        int blocking = -1;
        for (const int i : places) {
            if (wanted(i) < 0.0 && weights(i) / (weights(i) - wanted(i)) < step) {
                step = weights(i) / (weights(i) - wanted(i));
                blocking = i;
            }
        }
        weights += step * (wanted - weights);
        if (blocking >= 0) {
            weights(blocking) = 0.0;
            isFree[size_t(blocking)] = false;
            continue;
        }
        // All free weights have the same slope here; one that is steeper down lowers the value.
        const Vector slope = a * weights - r;
        int next = -1;
        double steepest = slope(places.front()) - 1e-12 * a.diagonal().maxCoeff();
        for (int i = 0; i < count; ++i) {
            if (!isFree[size_t(i)] && slope(i) < steepest) {
                steepest = slope(i);
                next = i;
            }
        }
        if (next < 0)
            break;
        isFree[size_t(next)] = true;
    }
    return weights;
}

} // namespace

void RyLegacyWeightSolver::addPose(const double *images, const double *target)
{
    m_off.resize(3 * m_count);
    for (std::size_t i = 0; i < 3 * m_count; ++i)
        m_off[i] = images[i] - target[i % 3];
    for (std::size_t i = 0; i < m_count; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double product = 0.0;
            for (std::size_t k = 0; k < 3; ++k)
                product += m_off[3 * i + k] * m_off[3 * j + k];
            m_products[i * m_count + j] += product;
            if (i != j)
                m_products[j * m_count + i] += product;
        }
    }
}

double RyLegacyWeightSolver::ridge() const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < m_count; ++i)
        sum += product(i, i);
    return Ridge * sum / double(m_count);
}

double RyLegacyWeightSolver::error(const std::vector<double> &weights) const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < m_count; ++i) {
        for (std::size_t j = 0; j < m_count; ++j)
            sum += weights[i] * weights[j] * product(i, j);
    }
    return sum;
}

std::vector<double> RyLegacyWeightSolver::solve(const std::vector<double> &plain) const
{
    const double lean = ridge();
    if (m_count < 2 || !(lean > 0.0))
        return plain;
    Matrix a(m_count, m_count);
    Vector r(m_count);
    for (std::size_t i = 0; i < m_count; ++i) {
        for (std::size_t j = 0; j < m_count; ++j)
            a(Eigen::Index(i), Eigen::Index(j)) = product(i, j) + (i == j ? lean : 0.0);
        r(Eigen::Index(i)) = lean * plain[i];
    }
    const Vector weights = m_count <= MostTried ? bestSubset(a, r) : byActiveSet(a, r);
    if (weights.size() == 0)
        return plain;
    return {weights.data(), weights.data() + weights.size()};
}
