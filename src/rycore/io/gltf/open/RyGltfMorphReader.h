#pragma once

#include "rycore/io/gltf/extras/RyGltfFigureSource.h"
#include "rycore/math/RyAffine.h"
#include "rycore/math/RyVec3.h"

#include <QStringList>

#include <map>
#include <utility>
#include <vector>

class RyGltfDocument;
class RyNode;
class RyShape;
struct RyMeshPart;

/// Makes the morphs of a shape of the targets of its parts. Targets of one name are one morph, the second ones of a
/// name in their meshes another; those without a name are a morph for each mesh and number. Targets that make no sense
/// are left out with a message.
class RyGltfMorphReader
{
public:
    RyGltfMorphReader(const RyGltfDocument &document, QStringList *messages)
        : m_document(document), m_messages(messages)
    {}

    /// `toFigure`: mesh space to figure space in centimetres; `further`, where it is not null: what was done with each
    /// vertex of the shape from there on.
    void addPart(const RyGltfPartSource &source, const RyMeshPart &part, const RyAffine &toFigure,
                 const std::vector<RyGltfLinear> *further);
    /// Adds the morphs, with the values that the file says; names differ from those of the values of `node`.
    std::vector<RyGltfMorphSource> addTo(RyShape &shape, const RyNode &node);

private:
    /// Name and how many targets of its mesh have it before this one; or mesh and number where it has no name.
    using Key = std::tuple<QString, int, int>;
    struct Draft
    {
        QString name;
        RyGltfMorphSource source;
        std::vector<std::pair<int, RyVec3>> deltas; // of vertices
    };

    std::vector<Key> keysOf(int mesh);
    bool isUsable(int accessor);
    bool addDeltas(int accessor, const RyMeshPart &part, const RyAffine &toFigure,
                   const std::vector<RyGltfLinear> *further, Draft &draft);
    void addTarget(const RyGltfMorphSource::Target &target, Draft &draft);
    void say(const QString &message) const
    {
        if (m_messages)
            m_messages->append(message);
    }

    const RyGltfDocument &m_document;
    QStringList *m_messages;
    std::vector<Draft> m_drafts;
    std::map<Key, size_t> m_places;         // of drafts
    std::map<int, std::vector<Key>> m_keys; // by mesh
    std::map<int, bool> m_usable;           // by accessor
};
