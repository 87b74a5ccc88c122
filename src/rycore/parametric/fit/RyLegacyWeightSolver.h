#pragma once

#include <cstddef>
#include <vector>

/// Finds the weights of one vertex with which a blend of what single bones make of it comes nearest to where it is
/// wanted, over many poses: least squares, no weight below zero, their sum 1. A ridge leans towards given weights, so
/// that a vertex on which the bones hardly disagree gets sensible ones.
class RyLegacyWeightSolver
{
public:
    /// How strong the ridge is, as a share of the mean square by which the candidates miss the target.
    static constexpr double Ridge = 1e-4;
    /// Up to so many candidates every subset is tried; more are solved by an active set.
    static constexpr std::size_t MostTried = 4;

    explicit RyLegacyWeightSolver(std::size_t candidates)
        : m_count(candidates), m_products(candidates * candidates, 0.0)
    {}

    /// One pose: where each candidate brings the vertex, x, y and z by turns, and where it is wanted.
    void addPose(const double *images, const double *target);
    /// `plain`: what the ridge leans to, one weight for each candidate, with the sum 1.
    std::vector<double> solve(const std::vector<double> &plain) const;
    /// The sum of squared distances over all poses for weights with the sum 1.
    double error(const std::vector<double> &weights) const;

private:
    double product(std::size_t i, std::size_t j) const { return m_products[i * m_count + j]; }
    double ridge() const;

    std::size_t m_count;
    std::vector<double> m_products; // of the candidates' distances from the target, summed over the poses
    std::vector<double> m_off;      // of the pose that is added
};
