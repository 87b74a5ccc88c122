#pragma once

#include "rycore/scene/RyPointChanges.h"

#include <QtGlobal>

#include <limits>
#include <vector>

class RyWeightMap;

/// What one map X of a skin moves: vertices, ascending, and their weights (1 = full).
struct RySkinChannel
{
    std::vector<int> vertices;
    std::vector<float> weights;
    /// No vertices for null.
    static RySkinChannel fromMap(const RyWeightMap *map);
};

/// The influences of a skin in flat arrays. Its elements are the vertices that something moves and the further normals
/// that these have (see RyShapeNormals); those with the same number of influences make a class. Elements are known by
/// their place: the vertex, or the number of vertices plus that of the further normal.
class RySkinInfluences
{
public:
    struct Class
    {
        int influences = 0;
        bool furtherNormals = false;
        int count = 0;
        int firstPlace = 0;
        std::vector<int> places; // ascending; empty where they follow each other from `firstPlace` on
        // `influences` entries for each element, the channels as offsets of their deltas in one of two widths.
        std::vector<quint16> offsets;
        std::vector<quint32> wideOffsets;
        std::vector<float> weights;

        int placeOf(int element) const { return places.empty() ? firstPlace + element : places[size_t(element)]; }
        quint32 offsetAt(size_t entry) const { return offsets.empty() ? wideOffsets[entry] : offsets[entry]; }
    };
    /// Elements of a class that follow each other.
    struct Run
    {
        int classIndex = 0;
        int first = 0;
        int count = 0;
    };
    /// Elements of a class, one by one: a range of a list.
    struct Picks
    {
        int classIndex = 0;
        size_t first = 0;
        int count = 0;
    };
    /// Some of the elements.
    struct Part
    {
        std::vector<Run> runs;
        std::vector<Picks> picks;
        std::vector<int> picked; // the elements that `picks` are ranges of
    };
    static constexpr int BlockSize = 16;
    /// Elements of a run at most: what stays in the cache while all classes of such a stretch of vertices are computed.
    static constexpr int StretchSize = 4096;

    void build(int vertexCount, const std::vector<RySkinChannel> &channels);
    /// The vertices that the further normals belong to.
    void setFurtherNormals(const std::vector<int> &vertices);

    int vertexCount() const { return m_vertexCount; }
    /// Of vertices and further normals.
    int placeCount() const { return m_placeCount; }
    const Class &classAt(int index) const { return m_classes[size_t(index)]; }
    /// Places that nothing moves.
    const std::vector<int> &unmoved() const { return m_unmoved; }
    /// All elements, stretch by stretch.
    const std::vector<Run> &all() const { return m_all; }
    /// Whether all channels that move anything are marked.
    bool isMovedAsWhole(const std::vector<char> &channels) const;
    /// The elements that have one of the marked channels: exactly those where they are few, else with what shares
    /// their blocks of 16.
    Part movedBy(const std::vector<char> &channels);
    /// These and the elements at places in any of the ranges.
    Part movedBy(const std::vector<char> &channels, const std::vector<RyPointChanges::Range> &places);
    /// Of the places in these ranges, those that nothing moves.
    std::vector<int> unmovedIn(const std::vector<RyPointChanges::Range> &places);
    /// A mark for each block of 16 that holds an element with one of the marked channels.
    std::vector<char> blocksOf(const std::vector<char> &channels);
    int blockOf(int classIndex, int element) const { return m_firstBlock[size_t(classIndex)] + element / BlockSize; }

private:
    struct BlockMask
    {
        int block;
        quint16 elements; // a bit for each
    };
    std::vector<size_t> addClasses(const std::vector<int> &influences, int firstPlace, bool furtherNormals);
    void finish();
    void makeBlocks();
    void makeRuns();
    void makeElements();
    std::vector<quint16> masksOf(const std::vector<char> &channels);
    Part partOf(const std::vector<quint16> &masks) const;

    int m_vertexCount = 0;
    int m_placeCount = 0;
    int m_channelCount = 0;
    std::vector<char> m_movingChannels; // that have an element
    std::vector<Class> m_classes;
    size_t m_vertexClasses = 0; // the first ones; those of further normals follow
    std::vector<int> m_unmoved;
    size_t m_unmovedVertices = 0;  // the first ones
    std::vector<int> m_firstBlock; // of each class
    int m_blockCount = 0;
    std::vector<std::vector<BlockMask>> m_blocksOfChannel; // empty until asked for
    static constexpr quint32 Unmoved = std::numeric_limits<quint32>::max();
    /// Per place its element, counted in blocks of 16 through all classes; empty until asked for.
    std::vector<quint32> m_elementOfPlace;
    std::vector<Run> m_all;
};
