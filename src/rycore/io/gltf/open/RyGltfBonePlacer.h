#pragma once

#include "rycore/io/RyEndPointGuess.h"
#include "rycore/io/gltf/open/RyGltfFigureDraft.h"

#include <QStringList>

/// Puts the bones of a figure where the file has its joints at rest, gives them end points and rotation orders, and
/// poses them. Needs the figure's mesh, which says how far leaves reach.
class RyGltfBonePlacer
{
public:
    RyGltfBonePlacer(const RyGltfOrigin &origin, const RyGltfFigureDraft &figure, QStringList *messages);

    /// What is to be remembered of the bones, in their order.
    std::vector<RyGltfNodeSource> place();

private:
    void readRest();
    void assignVerticesToLeaves();
    void findEndMarkers();
    void placeBone(size_t bone, const RyVec3 &end);
    void setPose(RyGltfNodeSource &source) const;
    RyAffine poseWithoutParentScale(const RyGltfNodeSource &source) const;
    void reportShear(const RyNode &node, const RyMatrix3 &wanted) const;

    const RyGltfOrigin &m_origin;
    const RyGltfFigureDraft &m_figure;
    QStringList *m_messages;
    std::vector<RyGltfNodeSource> m_sources;
    std::vector<RyEndPointBone> m_guesses;
    float m_height = 0.0f; // of the figure, in centimetres
};
