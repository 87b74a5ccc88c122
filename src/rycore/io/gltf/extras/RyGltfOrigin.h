#pragma once

#include "rycore/base/RyFirstPlaces.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyGltfFigureSource.h"
#include "rycore/io/gltf/extras/RyGltfNodeSource.h"
#include "rycore/io/gltf/extras/RyLinkExtras.h"
#include "rycore/scene/RyScene.h"

#include <QPointer>

#include <memory>
#include <optional>
#include <vector>

/// The file behind a scene read from glTF: the kept tree, and which of its nodes stand in the scene.
class RyGltfOrigin : public RySceneOrigin
{
public:
    QString path() const override { return filePath; }
    double unitFactor() const override { return unit; }
    /// Read when they are first asked for, once the scene has the origin.
    Clips clips() const override;

    /// Notes how the scene's nodes and values hang together; at the end of reading.
    void recordTree();
    /// One more node once reading is done.
    void addNode(RyGltfNodeSource source);
    /// Whether links of its nodes were made or removed since it was read, or figures follow others.
    bool isLinkedOtherwise() const;
    const RyGltfNodeSource *findSource(const RyNode *node) const;
    /// Of the bone with that serial (RyBone::getSerial), also when it is gone; null for none.
    const RyGltfNodeSource *findBone(quint64 serial) const;
    const RyGltfFigureSource *findFigureSource(const RyNode *figure) const;

    QString filePath;
    double unit = 100.0;
    /// As it was read; what is saved is a changed copy. Parts of meshes have their normals from it.
    std::shared_ptr<RyGltfDocument> document;
    std::vector<RyGltfNodeSource> nodes; // pre-order of the file
    std::vector<RyGltfFigureSource> figures;
    std::vector<QPointer<RyNode>> tops; // what was read at the top of the scene
    /// Those with all below them, pre-order, each with its parent: to see whether the tree was edited.
    std::vector<std::pair<const RyNode *, const RyNode *>> order;
    std::vector<RyLinkExtras::Link> links;
    bool unitWasChosen = false; // by the user, not by the file
    /// Who knows how clips play; it lies above.
    Clips (*readClips)(const std::shared_ptr<const RyGltfOrigin> &origin) = nullptr;

private:
    std::vector<RyLinkExtras::Link> linksNow() const;
    auto nodeAt() const
    {
        return [this](int place) { return nodes[size_t(place)].sceneNode.data(); };
    }

    RyFirstPlaces<const RyNode *> m_placesOfNodes; // asked for once reading is done
    RyFirstPlaces<const RyNode *> m_placesOfFigures;
    mutable std::optional<Clips> m_clips;
};
