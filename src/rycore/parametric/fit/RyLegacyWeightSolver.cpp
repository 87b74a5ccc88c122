#include "rycore/parametric/fit/RyLegacyWeightSolver.h"

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include <limits>

namespace {

// Of up to so many rows, which then need no memory of their own.
template<int Most>
using Matrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, Most, Most>;
template<int Most>
using Vector = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, Most, 1>;
constexpr int MostTried = int(RyLegacyWeightSolver::MostTried);

/// Minimises wᵀ A w - 2 rᵀ w for weights with the sum 1 on the listed places; the others are 0. `A` is positive
/// definite.
template<int Most>
Vector<Most> solveOn(const Matrix<Most> &a, const Vector<Most> &r, const std::vector<int> &places)
{
    using Columns = Eigen::Matrix<double, Eigen::Dynamic, 2, 0, Most, 2>;
    const Eigen::Index count = Eigen::Index(places.size());
    Matrix<Most> part(count, count);
    Columns right(count, 2);
    for (Eigen::Index i = 0; i < count; ++i) {
        for (Eigen::Index j = 0; j < count; ++j)
            part(i, j) = a(places[size_t(i)], places[size_t(j)]);
        right(i, 0) = r(places[size_t(i)]);
        right(i, 1) = 1.0;
    }
    const Columns solved = part.ldlt().solve(right);
    const Vector<Most> best = solved.col(0) + (1.0 - solved.col(0).sum()) / solved.col(1).sum() * solved.col(1);
    Vector<Most> weights = Vector<Most>::Zero(a.rows());
    for (Eigen::Index i = 0; i < count; ++i)
        weights(places[size_t(i)]) = best(i);
    return weights;
}

Vector<MostTried> bestSubset(const Matrix<MostTried> &a, const Vector<MostTried> &r)
{
    const int count = int(a.rows());
    Vector<MostTried> best;
    std::vector<int> places;
    double least = std::numeric_limits<double>::infinity();
    for (int subset = 1; subset < 1 << count; ++subset) {
        places.clear();
        for (int i = 0; i < count; ++i) {
            if (subset & 1 << i)
                places.push_back(i);
        }
        const Vector<MostTried> weights = solveOn<MostTried>(a, r, places);
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
Vector<Eigen::Dynamic> byActiveSet(const Matrix<Eigen::Dynamic> &a, const Vector<Eigen::Dynamic> &r)
{
    const int count = int(a.rows());
    std::vector<bool> isFree(size_t(count), false);
    int first = 0;
    for (int i = 1; i < count; ++i) {
        if (a(i, i) - 2.0 * r(i) < a(first, first) - 2.0 * r(first))
            first = i;
    }
    isFree[size_t(first)] = true;
    Vector<Eigen::Dynamic> weights = Vector<Eigen::Dynamic>::Zero(count);
    weights(first) = 1.0;
    for (int round = 0; round < 10 * count; ++round) {
        std::vector<int> places;
        for (int i = 0; i < count; ++i) {
            if (isFree[size_t(i)])
                places.push_back(i);
        }
        const Vector<Eigen::Dynamic> wanted = solveOn<Eigen::Dynamic>(a, r, places);
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
        const Vector<Eigen::Dynamic> slope = a * weights - r;
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
    Matrix<Eigen::Dynamic> a(m_count, m_count);
    Vector<Eigen::Dynamic> r(m_count);
    for (std::size_t i = 0; i < m_count; ++i) {
        for (std::size_t j = 0; j < m_count; ++j)
            a(Eigen::Index(i), Eigen::Index(j)) = product(i, j) + (i == j ? lean : 0.0);
        r(Eigen::Index(i)) = lean * plain[i];
    }
    Vector<Eigen::Dynamic> weights;
    if (m_count <= MostTried)
        weights = bestSubset(a, r);
    else
        weights = byActiveSet(a, r);
    if (weights.size() == 0)
        return plain;
    return {weights.data(), weights.data() + weights.size()};
}
