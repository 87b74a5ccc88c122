#pragma once

#include "rycore/parametric/fit/RyLegacyFit.h"
#include "rycore/parametric/fit/RyLegacyFitPoses.h"
#include "rycore/parametric/fit/RyLegacyFitVertex.h"

#include <functional>
#include <memory>

class RyLegacyFitStage;

/// Fits ordinary weights to a parametric figure: for each vertex that a bone moves partly, the weights of the bones
/// around it that come nearest to what the joints make of it in many poses. The others get one bone and are exact. The
/// result does not depend on threads.
class RyLegacyFitter
{
public:
    /// Called with what is done, from 0 to 1; false cancels.
    using Progress = std::function<bool(double done)>;

    explicit RyLegacyFitter(RyLegacyFitInput input);
    ~RyLegacyFitter();

    /// Plain averages, and nothing measured, where it is cancelled. Bones have no scene nodes.
    std::shared_ptr<RyLegacyFit> fit(const Progress &progress = Progress());
    /// Plain averages of the fractions alone, measured the same way.
    std::shared_ptr<RyLegacyFit> plain();

private:
    struct Vertex;
    void findVertices();
    std::shared_ptr<RyLegacyFit> make(const Progress &progress, bool isFitted);
    void solve(const RyLegacyFitStage &stage, Vertex &vertex) const;
    void measure(const RyLegacyFitStage &stage, Vertex &vertex) const;
    bool forAll(const std::function<void(Vertex &)> &work, const Progress &progress, double from, double to);
    std::vector<RyLegacyFit::Bone> boneWeights() const;
    RyLegacyFitReport report(const RyLegacyFitStage &stage) const;
    double bulges(const RyLegacyFitStage &stage) const;
    double height() const;

    RyLegacyFitInput m_input;
    std::vector<Vertex> m_vertices; // all
    std::vector<int> m_drivers;
};
