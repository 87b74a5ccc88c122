#pragma once

#include "rycore/scene/RyPointChanges.h"
#include "rycore/scene/RyShapeNormals.h"

#include <QtGlobal>

#include <vector>

class RyBoneBinding;
class RyShape;
struct RyShapePoints;

/// How the bulges of a skin push vertices away from their bones, before the blend moves them.
///
/// A bone b that is turned by t degrees about its axis k pushes a vertex v by
///
///     u * length * |t| / 90 * (left * wl + right * wr)
///
/// u: the unit vector to v from the line through origin and end point of b, at right angles to that line; none on it.
/// length: from origin to end point. left, right: the values of the bulge of axis k for turns of that sign; wl, wr:
/// what v has in its maps. All bulges are summed on the rest of v, with its morphs. Bones that a clip moves do not
/// bulge.
///
/// The normals are those of the facets as they are pushed.
class RySkinBulges
{
public:
    /// The bulges of these bindings, by the maps that they have. The bindings stay for as long as these are used.
    void setBindings(const std::vector<RyBoneBinding *> &bindings);
    /// Whether any bone has bulges; while none has, nothing is kept.
    bool areAny() const { return !m_bones.empty(); }
    /// Replaces the points by the pushed ones, which stay until the next call. Points that nothing pushes are left as
    /// they are. Vertices are pushed anew where the points differ or one of their bones does.
    void push(RyShapePoints &points, const RyShape *shape);
    /// Vertices that the last call pushed anew.
    qint64 lastTouched() const { return m_lastTouched; }

private:
    /// Maps of one bone: left and right for each of the three axes.
    static constexpr int MapCount = 6;
    struct Push
    {
        double origin[3] = {};
        double line[3] = {};           // unit vector
        double lengths[MapCount] = {}; // in centimetres, by a full weight
        bool operator==(const Push &) const = default;
    };
    struct Bone
    {
        const RyBoneBinding *binding = nullptr;
        Push push;
        bool isChanged = false;
    };
    struct Share
    {
        int bone;
        int map;
        float weight;
    };
    static Push pushOf(const RyBoneBinding &binding);
    std::vector<quint64> mapsKey() const;
    void updateShares(int vertexCount);
    bool takePushes();
    void pushAll(const std::vector<RyVec3> &rest);
    void pushSome(const std::vector<RyVec3> &rest, const std::vector<RyPointChanges::Range> &places);
    void pushVertices(const std::vector<RyVec3> &rest, const std::vector<int> &numbers);
    RyVec3 pushed(const RyVec3 &rest, size_t number) const;
    void updateNormals(RyShapePoints &points, const RyShape *shape);

    std::vector<Bone> m_bones;
    std::vector<quint64> m_mapsKey;
    std::vector<int> m_vertices;              // that have shares, ascending
    std::vector<int> m_firstShares;           // of each of them, and behind the last one
    std::vector<Share> m_shares;              // of a vertex bone by bone
    const RyPointChanges *m_source = nullptr; // null while nothing is pushed
    quint64 m_revision = 0;
    std::vector<RyVec3> m_positions;
    RyPointChanges m_moved; // of the positions
    RyShapeNormals m_normals;
    RyPointChanges m_changes; // of both
    quint64 m_movedSeen = 0;
    quint64 m_normalsSeen = 0;
    size_t m_placesSeen = 0;
    qint64 m_lastTouched = 0;
};
