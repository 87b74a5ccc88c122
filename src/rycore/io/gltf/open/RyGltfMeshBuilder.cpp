#include "rycore/io/gltf/open/RyGltfMeshBuilder.h"

#include "rycore/io/RyPolygonFans.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/open/RyGltfNormalSource.h"
#include "rycore/io/gltf/open/RyGltfSplitVertices.h"
#include "rycore/io/gltf/open/RyGltfTriangles.h"
#include "rycore/math/RyLargePages.h"
#include "rycore/mesh/RyWeightQuantizer.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

RyGltfMeshBuilder::RyGltfMeshBuilder(std::shared_ptr<const RyGltfDocument> document) : m_document(std::move(document))
{}

RyGltfMeshBuilder::~RyGltfMeshBuilder() = default;

void RyGltfMeshBuilder::addPart(int meshIndex, int primitiveIndex, const QString &name,
                                const std::vector<int> &bonesOfJoints, const RyAffine &toFigure, int weldClass)
{
    const RyGltfPrimitive &primitive = m_document->model().meshes[size_t(meshIndex)].primitives[size_t(primitiveIndex)];
    RyMeshPart result;
    result.name = name;
    result.look = primitive.material;
    const size_t firstFacet = facets.size();
    if (primitive.positions >= 0) {
        beginClass(weldClass);
        readGeometry(meshIndex, primitiveIndex, bonesOfJoints, toFigure, result);
    }
    result.facetCount = int(facets.size() - firstFacet);
    parts.parts.push_back(std::move(result));
}

void RyGltfMeshBuilder::readGeometry(int meshIndex, int primitiveIndex, const std::vector<int> &bonesOfJoints,
                                     const RyAffine &toFigure, RyMeshPart &result)
{
    const RyGltfPrimitive &primitive = m_document->model().meshes[size_t(meshIndex)].primitives[size_t(primitiveIndex)];
    const int firstVertex = int(positions.size());
    m_classParts.push_back(
        std::make_unique<RyGltfSplitVertices>(*m_document, meshIndex, primitiveIndex, bonesOfJoints));
    const RyGltfSplitVertices &splits = *m_classParts.back();
    growTable(splits.count());
    result.vertexOfSplit.resize(splits.count());
    // What large arrays need is taken by one thread: another one would not reuse what this one has freed.
    std::vector<std::uint32_t> triangles;
    RyParallel::both([&] { weld(splits, result); },
                     [&] {
                         readTexcoords(meshIndex, primitiveIndex, splits.count(), result);
                         triangles = ryGltfReadTriangles(*m_document, primitive, splits.count());
                     });
    result.hasFans = primitive.hasFans;
    const std::vector<int> firstCorners = RyTreeExtras::findFirstCorners(*m_document, meshIndex, primitiveIndex);
    if (facets.empty()) {
        facets.reserve(triangles.size() / 3);
        RyLargePages::prefer(facets.data(), facets.capacity() * sizeof(RyFacet));
    }
    RyParallel::both([&] { addFacets(std::move(triangles), firstCorners, result); },
                     [&] {
                         findNormals(splits, primitive, firstVertex, result);
                         addVertices(splits, firstVertex, toFigure);
                     });
    if (primitive.normals >= 0 && !RyTreeExtras::hasMadeNormals(*m_document, meshIndex, primitiveIndex)) {
        result.normalSource =
            std::make_shared<RyGltfNormalSource>(m_document, primitive.positions, primitive.normals, toFigure);
    }
}

/// Only parts of one class weld: what the last one left is of no more use.
void RyGltfMeshBuilder::beginClass(int weldClass)
{
    if (weldClass == m_weldClass)
        return;
    m_weldClass = weldClass;
    m_classParts.clear();
    m_sharers.clear();
    m_origins.clear();
    m_table.clear();
    m_firstOfClass = int(positions.size());
}

void RyGltfMeshBuilder::finish()
{
    m_weldClass = -1;
    m_classParts.clear();
    std::vector<Origin>().swap(m_origins);
    std::vector<std::uint32_t>().swap(m_table);
    std::vector<InfluenceRun>().swap(m_runs);
}

/// Makes room for so many more vertices; the known ones are put in anew.
void RyGltfMeshBuilder::growTable(size_t added)
{
    const size_t capacity = std::bit_ceil(std::max<size_t>(16, 2 * (m_origins.size() + added)));
    m_origins.reserve(m_origins.size() + added);
    if (m_table.size() >= capacity)
        return;
    m_table.clear();
    m_table.shrink_to_fit();
    m_table.reserve(capacity);
    RyLargePages::prefer(m_table.data(), capacity * sizeof(m_table[0]));
    m_table.assign(capacity, 0);
    for (size_t known = 0; known < m_origins.size(); ++known) {
        const RyGltfSplitVertices &from = *m_classParts[size_t(m_origins[known].part)];
        const std::uint64_t hash = from.hash(m_origins[known].split);
        size_t slot = hash & (capacity - 1);
        while (m_table[slot] != 0)
            slot = (slot + 1) & (capacity - 1);
        m_table[slot] = tagOf(hash) | std::uint32_t(known + 1);
    }
}

void RyGltfMeshBuilder::weld(const RyGltfSplitVertices &splits, RyMeshPart &result)
{
    const int thisPart = int(m_classParts.size()) - 1;
    const size_t mask = m_table.size() - 1;
    // Most of the time would go into waiting for starts: those of a few vertices are fetched at once.
    constexpr size_t Batch = 32;
    std::uint64_t hashes[Batch];
    for (size_t first = 0; first < splits.count(); first += Batch) {
        const size_t count = std::min(Batch, splits.count() - first);
        for (size_t i = 0; i < count; ++i) {
            hashes[i] = splits.hash(int(first + i));
            __builtin_prefetch(&m_table[hashes[i] & mask], 1);
        }
        for (size_t i = 0; i < count; ++i) {
            const int split = int(first + i);
            const std::uint32_t tag = tagOf(hashes[i]);
            const auto isKnown = [&](std::uint32_t entry) {
                if ((entry & ~std::uint32_t(mask)) != tag)
                    return false;
                const Origin &origin = m_origins[(entry & mask) - 1];
                ++comparisons;
                return splits.same(split, *m_classParts[size_t(origin.part)], origin.split);
            };
            size_t slot = hashes[i] & mask;
            while (m_table[slot] != 0 && !isKnown(m_table[slot]))
                slot = (slot + 1) & mask;
            if (m_table[slot] == 0) {
                m_origins.push_back({thisPart, split});
                m_table[slot] = tag | std::uint32_t(m_origins.size());
            }
            result.vertexOfSplit[first + i] = m_firstOfClass + int(m_table[slot] & mask) - 1;
        }
    }
}

void RyGltfMeshBuilder::readTexcoords(int meshIndex, int primitiveIndex, size_t count, RyMeshPart &result) const
{
    const RyGltfPrimitive &primitive = m_document->model().meshes[size_t(meshIndex)].primitives[size_t(primitiveIndex)];
    if (primitive.texcoords < 0)
        return;
    result.uvs = m_document->readFloats(primitive.texcoords);
    result.uvs.resize(count * 2, 0.0f);
    result.withoutUv = findWithoutUv(meshIndex, primitiveIndex, count);
}

/// Which split vertices share a normal.
void RyGltfMeshBuilder::findNormals(const RyGltfSplitVertices &splits, const RyGltfPrimitive &primitive,
                                    int firstVertex, RyMeshPart &result)
{
    if (const RyMeshPart *same = findSharer(primitive, result))
        result.normalOfSplit = same->normalOfSplit;
    else
        shareNormals(splits, firstVertex, result);
}

/// A part that has its normals in the same place: one that moves is smoothed with the triangles of both.
const RyMeshPart *RyGltfMeshBuilder::findSharer(const RyGltfPrimitive &primitive, const RyMeshPart &part)
{
    if (primitive.normals < 0)
        return nullptr;
    const auto [sharer, isNew] = m_sharers.try_emplace({primitive.positions, primitive.normals}, parts.parts.size());
    if (isNew)
        return nullptr;
    const RyMeshPart &same = parts.parts[sharer->second];
    return same.vertexOfSplit == part.vertexOfSplit ? &same : nullptr;
}

void RyGltfMeshBuilder::shareNormals(const RyGltfSplitVertices &splits, int firstVertex, RyMeshPart &result)
{
    // Splits of one vertex that agree in their normal share a smooth one.
    const size_t count = splits.count();
    result.normalOfSplit.resize(count);
    const bool allNew =
        result.vertexOfSplit.empty() || m_firstOfClass + int(m_origins.size()) - firstVertex == int(count);
    if (allNew) {
        for (size_t v = 0; v < count; ++v)
            result.normalOfSplit[v] = parts.normalCount++;
        return;
    }
    const size_t mask = std::bit_ceil(std::max<size_t>(16, 2 * count)) - 1;
    std::vector<int> table(mask + 1, -1); // the first splits of their kind
    for (size_t v = 0; v < count; ++v) {
        const std::uint64_t vertex = std::uint64_t(result.vertexOfSplit[v]) * 0xc4ceb9fe1a85ec53ull;
        const std::uint64_t hash = splits.normalHash(v) ^ vertex;
        size_t slot = (hash ^ (hash >> 32)) & mask;
        const auto isOther = [&](int split) {
            return result.vertexOfSplit[size_t(split)] != result.vertexOfSplit[v] ||
                   !splits.sameNormal(size_t(split), v);
        };
        while (table[slot] >= 0 && isOther(table[slot])) {
            ++comparisons;
            slot = (slot + 1) & mask;
        }
        if (table[slot] < 0) {
            table[slot] = int(v);
            result.normalOfSplit[v] = parts.normalCount++;
        } else {
            result.normalOfSplit[v] = result.normalOfSplit[size_t(table[slot])];
        }
    }
}

/// Positions and influences of the vertices that a part brought, each from the split vertex it was first met at.
void RyGltfMeshBuilder::addVertices(const RyGltfSplitVertices &splits, int firstVertex, const RyAffine &toFigure)
{
    const Origin *origins = m_origins.data() + (firstVertex - m_firstOfClass);
    const size_t count = m_origins.size() - size_t(firstVertex - m_firstOfClass);
    const size_t width = size_t(splits.width());
    positions.resize(size_t(firstVertex) + count);
    m_strongest.resize(size_t(firstVertex) + count, -1);
    InfluenceRun run{firstVertex, int(count), int(width), {}, {}};
    RyLargePages::resize(run.bones, count * width);
    RyLargePages::resize(run.weights, count * width);
    std::atomic<int> dropped{0};
    RyParallel::forRanges(count, 20000, [&](size_t begin, size_t end) {
        std::vector<double> weights(width);
        int droppedHere = 0;
        for (size_t i = begin; i < end; ++i) {
            const int split = origins[i].split;
            const float *point = splits.position(split);
            const double from[3] = {point[0], point[1], point[2]};
            double at[3];
            toFigure.mapPoint(from, at);
            positions[size_t(firstVertex) + i] = {float(at[0]), float(at[1]), float(at[2])};
            quint16 *bones = run.bones.data() + i * width;
            quint16 *quantized = run.weights.data() + i * width;
            if (const float *four = splits.plainInfluencesOf(size_t(split), bones)) {
                m_strongest[size_t(firstVertex) + i] = bones[RyWeightQuantizer::spreadRestOfFour(four, quantized)];
                continue;
            }
            const auto found = splits.influencesOf(size_t(split), bones, weights.data());
            droppedHere += found.dropped;
            if (found.sum > 0.0 && std::isfinite(found.sum)) {
                const int largest = RyWeightQuantizer::spreadRest(weights.data(), found.count, found.sum, quantized);
                m_strongest[size_t(firstVertex) + i] = bones[largest];
            }
        }
        dropped += droppedHere;
    });
    droppedInfluences += dropped;
    if (width > 0 && count > 0)
        m_runs.push_back(std::move(run));
}

void RyGltfMeshBuilder::addFacets(std::vector<std::uint32_t> triangles, const std::vector<int> &firstCorners,
                                  RyMeshPart &result)
{
    const size_t count = triangles.size() / 3;
    size_t next = 0; // of the first corners
    for (size_t t = 0; t < count;) {
        const size_t run = result.hasFans ? RyPolygonFans::runAt(triangles, t) : 1;
        while (next + 1 < firstCorners.size() && firstCorners[next] < int(t))
            next += 2;
        const bool isSaid = next + 1 < firstCorners.size() && firstCorners[next] == int(t);
        addPolygon(&triangles[3 * t], int(run), isSaid ? firstCorners[next + 1] : 0, result);
        t += run;
    }
    result.triangles = std::move(triangles);
}

/// A polygon that so many triangles make.
void RyGltfMeshBuilder::addPolygon(const unsigned *triangles, int count, int firstCorner, const RyMeshPart &part)
{
    const auto vertex = [&](int index) { return part.vertexOfSplit[triangles[index]]; };
    const bool isThere = firstCorner > 0 && firstCorner < count + 2;
    if (count > 2) {
        polygons.push_back({int(facets.size()), count, isThere ? firstCorner : 0});
        for (int i = 0; i < 3 * count; i += 3)
            facets.push_back({{vertex(i), vertex(i + 1), vertex(i + 2), -1}});
        return;
    }
    facets.push_back({{vertex(0), vertex(1), vertex(2), count == 2 ? vertex(5) : -1}});
    if (isThere) {
        int *corners = facets.back().vertices;
        std::rotate(corners, corners + firstCorner, corners + count + 2);
    }
}

std::vector<int> RyGltfMeshBuilder::findWithoutUv(int mesh, int primitive, size_t count) const
{
    std::vector<int> splits = RyTreeExtras::findWithoutUv(*m_document, mesh, primitive);
    std::erase_if(splits, [count](int split) { return split < 0 || size_t(split) >= count; });
    std::sort(splits.begin(), splits.end());
    splits.erase(std::unique(splits.begin(), splits.end()), splits.end());
    return splits;
}

std::vector<RyGltfMeshBuilder::BoneWeights> RyGltfMeshBuilder::boneWeights(int boneCount) const
{
    // Pieces are counted and filled side by side, each behind what the ones before it bring.
    struct Piece
    {
        const InfluenceRun *run;
        int first, end;          // of the run's vertices
        std::vector<int> places; // per bone: how many at first, then where the next one goes
    };
    constexpr int PieceSize = 65536;
    std::vector<Piece> pieces;
    for (const InfluenceRun &run : m_runs) {
        for (int first = 0; first < run.vertexCount; first += PieceSize)
            pieces.push_back({&run, first, std::min(first + PieceSize, run.vertexCount), {}});
    }
    const auto forInfluences = [](const Piece &piece, const auto &use) {
        const InfluenceRun &run = *piece.run;
        for (int v = piece.first; v < piece.end; ++v) {
            const size_t begin = size_t(v) * size_t(run.width);
            for (size_t i = begin; i < begin + size_t(run.width); ++i) {
                if (run.weights[i] != 0)
                    use(size_t(run.bones[i]), run.firstVertex + v, run.weights[i]);
            }
        }
    };
    const auto forPieces = [&pieces](const auto &work) {
        RyParallel::forRanges(pieces.size(), 1, [&](size_t begin, size_t end) {
            std::for_each(pieces.begin() + long(begin), pieces.begin() + long(end), work);
        });
    };
    forPieces([&](Piece &piece) {
        piece.places.assign(size_t(boneCount), 0);
        forInfluences(piece, [&piece](size_t bone, int, quint16) { ++piece.places[bone]; });
    });
    std::vector<BoneWeights> result(static_cast<size_t>(boneCount));
    for (size_t bone = 0; bone < result.size(); ++bone) {
        int count = 0;
        for (Piece &piece : pieces)
            count += std::exchange(piece.places[bone], count);
        result[bone].vertices.resize(size_t(count));
        result[bone].weights.resize(size_t(count));
    }
    forPieces([&](Piece &piece) {
        forInfluences(piece, [&](size_t bone, int vertex, quint16 weight) {
            const size_t at = size_t(piece.places[bone]++);
            result[bone].vertices[at] = vertex;
            result[bone].weights[at] = weight;
        });
    });
    return result;
}
