#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include <QStringList>

#include <memory>
#include <set>
#include <vector>

class RyScene;
struct RyGltfPlaces;

/// Makes one origin of all files that a scene came from: the first document, to which the others were appended, each
/// below a node that carries the ratio of the units. What was removed from the scene comes only with the first one,
/// whose indices never change.
class RyGltfJoin
{
public:
    /// The files of which something stands in the scene, in the order in which they came.
    static std::vector<const RyGltfOrigin *> liveOrigins(const RyScene &scene);

    explicit RyGltfJoin(const RyGltfOrigin &first);
    /// False with a reason when the result would not be valid.
    bool add(const RyGltfOrigin &other, QString *error);
    /// What could not be brought over, and why.
    const QStringList &losses() const { return m_losses; }
    std::unique_ptr<RyGltfOrigin> take() { return std::move(m_joined); }

private:
    static std::vector<bool> findPassedOver(const RyGltfOrigin &origin, const std::vector<int> &preOrder);
    static std::set<int> nodesToLeaveOut(const RyGltfOrigin &origin);
    static const RyGltfFigureSource *onlyFigure(const RyGltfOrigin &origin);
    void addSources(const RyGltfOrigin &other, const RyGltfPlaces &places);
    void nameNodes(const RyGltfOrigin &other, const RyGltfPlaces &places);
    void addCarrier(const RyGltfFigureSource &figure, int node, double unit);

    std::unique_ptr<RyGltfOrigin> m_joined;
    QStringList m_losses;
};
