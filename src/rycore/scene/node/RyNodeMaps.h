#pragma once

#include "rycore/math/RyAffine.h"

#include <memory>

class RyNode;

/// The maps of a node's place in the tree, kept until something above or in it changes. Row vectors: for node N with
/// parent P,
///   X(N) = T(-origin) * linear(N) * T(origin + translation) * X(P)
/// maps points of figure space to the world; the world transform T(origin) * X(N) maps `p - origin`.
class RyNodeMaps
{
public:
    bool isValid() const { return m_valid; }
    /// From figure space (rest) to the world.
    const RyAffine &world() const { return m_world; }
    /// From figure axes to world axes.
    const RyQuat &worldRotation() const { return m_worldRotation; }
    /// From figure space (rest) to figure space (posed).
    const RyAffine &figure() const { return m_figure; }
    /// Grows when the maps stop being valid; a change of maps that are not is none.
    quint64 revision() const { return m_revision; }

    /// Makes the maps of the node, and those above it that they follow from, valid.
    static void update(const RyNode &node);
    /// Those of the node and of all below it.
    static void invalidate(RyNode &node);
    /// See RyNode::setPlayedMap.
    static void play(RyNode &node, const RyAffine *map);
    bool isPlayed() const { return m_played != nullptr; }
    /// The maps of a node with defaults from it up to its skeleton, whose own place is kept.
    struct Default
    {
        RyAffine world;
        RyQuat worldRotation;

        /// By a walk up the tree; those of the world for null.
        static Default of(const RyNode *node);
        /// Of a child, by one step down.
        Default below(const RyNode &child) const;
        /// From `p - origin` (figure axes, default origin) to the world, for the node that the maps are of.
        RyMatrix4 transform(const RyNode &node) const;
    };

private:
    void follow(const RyNode &node);
    void followPlayed(const RyNode &node);

    RyAffine m_world;
    RyAffine m_figure;
    RyQuat m_worldRotation;
    RyQuat m_figureRotation;
    quint64 m_revision = 1;
    bool m_valid = false;
    std::unique_ptr<RyAffine> m_played;
};
