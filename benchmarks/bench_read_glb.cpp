// Reading a 40 MB .glb (500,000 vertices, 200 joints) into mesh and weight maps, against reading the file and copying
// its bytes, and against assimp, where that is installed. Each is timed in a process of its own: a file is opened once,
// into fresh memory, and what a process has freed would decide what the next reading costs. Arguments: files to read
// instead, or --short for one run.

#include "RyBenchmark.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/open/RyGltfSceneReader.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#ifdef RY_HAS_ASSIMP
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#endif

#include <cmath>
#include <cstring>
#include <memory>
#include <random>

namespace {

constexpr int Columns = 1000;
constexpr int Rows = 500;
constexpr int Joints = 200;

/// A tube of quads with four influences each, written with normals and texture coordinates.
bool writeFile(const QString &path, int rowCount)
{
    std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
    std::vector<float> positions, normals, uvs, weights;
    std::vector<std::uint32_t> joints, indices;
    std::mt19937 random(7);
    std::uniform_real_distribution<float> share(0.05f, 1.0f);
    for (int row = 0; row < rowCount; ++row) {
        for (int column = 0; column < Columns; ++column) {
            const float angle = float(column) / Columns * 6.2831853f;
            const float height = 1.7f * float(row) / Rows;
            positions.insert(positions.end(), {0.2f * std::cos(angle), height, 0.2f * std::sin(angle)});
            normals.insert(normals.end(), {std::cos(angle), 0.0f, std::sin(angle)});
            uvs.insert(uvs.end(), {float(column) / Columns, float(row) / Rows});
            float four[4];
            float sum = 0.0f;
            for (float &value : four)
                sum += value = share(random);
            for (int i = 0; i < 4; ++i) {
                joints.push_back(std::uint32_t(std::min(Joints - 1, row * Joints / Rows + i)));
                weights.push_back(four[i] / sum);
            }
        }
    }
    for (int row = 0; row + 1 < rowCount; ++row) {
        for (int column = 0; column < Columns; ++column) {
            const std::uint32_t a = std::uint32_t(row * Columns + column);
            const std::uint32_t b = std::uint32_t(row * Columns + (column + 1) % Columns);
            indices.insert(indices.end(), {a, a + Columns, b, b, a + Columns, b + Columns});
        }
    }
    std::vector<int> jointNodes;
    std::vector<float> inverseBinds;
    for (int joint = 0; joint < Joints; ++joint) {
        RyGltfTransform transform;
        transform.translation = {0.0, joint == 0 ? 0.0 : 1.7 / Joints, 0.0};
        jointNodes.push_back(
            document->addNode(QStringLiteral("joint%1").arg(joint), transform, joint == 0 ? -1 : jointNodes.back()));
        const float matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -1.7f * float(joint) / Joints, 0, 1};
        inverseBinds.insert(inverseBinds.end(), matrix, matrix + 16);
    }
    const int skin =
        document->addSkin(QStringLiteral("tube"), jointNodes, document->addFloatAccessor(inverseBinds, 16, 0), -1);
    const int mesh = document->addMesh(QStringLiteral("tube"));
    document->addPrimitive(mesh,
                           {{"POSITION", document->addFloatAccessor(positions, 3, 34962, true)},
                            {"NORMAL", document->addFloatAccessor(normals, 3, 34962)},
                            {"TEXCOORD_0", document->addFloatAccessor(uvs, 2, 34962)},
                            {"JOINTS_0", document->addUintAccessor(joints, 4, 5121, 34962)},
                            {"WEIGHTS_0", document->addFloatAccessor(weights, 4, 34962)}},
                           document->addUintAccessor(indices, 1, 5125, 34963), -1);
    document->setNodeMeshAndSkin(document->addNode(QStringLiteral("tube"), RyGltfTransform(), -1), mesh, skin);
    QString error;
    if (!document->write(path, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return false;
    }
    return true;
}

} // namespace

namespace {

/// The most memory that the process has had since the last call, in bytes; 0 where the system does not say.
double peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    double peak = 0.0;
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmHWM:"))
                peak = line.mid(6).trimmed().split(' ').first().toDouble() * 1024;
        }
    }
    QFile reset(QStringLiteral("/proc/self/clear_refs"));
    if (reset.open(QIODevice::WriteOnly))
        reset.write("5");
    return peak;
}

class Reading
{
public:
    explicit Reading(const QString &path) : m_path(path) {}

    void readOurs()
    {
        m_tops.clear();
        QString error;
        std::unique_ptr<RyGltfDocument> document = RyGltfDocument::read(m_path, &error);
        if (!document)
            return;
        const RyUndoStackLock lock;
        RyGltfSceneReader reader(std::move(document), m_path, 100.0);
        if (!reader.build(&error, nullptr))
            return;
        m_tops = reader.topLevelNodes();
    }

    void readPlain()
    {
        QFile file(m_path);
        if (!file.open(QIODevice::ReadOnly))
            return;
        const QByteArray bytes = file.readAll();
        const std::unique_ptr<char[]> copy(new char[size_t(bytes.size())]);
        std::memcpy(copy.get(), bytes.constData(), size_t(bytes.size()));
        m_seen += copy[size_t(bytes.size() / 2)];
    }

    /// Every vertex' weights sum to one, or there are none.
    bool isRight() const
    {
        for (const RyRef<RyNode> &top : m_tops) {
            const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(top));
            const RySkinBinding *skin = RySkinBinding::findSkinFromNode(top);
            if (!shape || !skin)
                continue;
            std::vector<int> sums(size_t(shape->getFacetMesh()->getNumVertices()), 0);
            for (const RyBoneBinding *binding : skin->bindings()) {
                const RyWeightMap &map = *binding->getWeights();
                for (int i = 0; i < map.getNumAffected(); ++i)
                    sums[size_t(map.getAffectedIndices()[i])] += map.getAffectedWeights()[i];
            }
            std::printf("vertices %d, facets %d, bindings %d\n", shape->getFacetMesh()->getNumVertices(),
                        shape->getFacetMesh()->getNumFacets(), skin->getNumBoneBindings());
            return std::all_of(sums.begin(), sums.end(), [](int sum) { return sum == 65535 || sum == 0; });
        }
        return false;
    }

    bool isTube() const
    {
        const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(m_tops.front()));
        return shape->getFacetMesh()->getNumVertices() == Columns * Rows &&
               RySkinBinding::findSkinFromNode(m_tops.front())->getNumBoneBindings() == Joints;
    }

private:
    QString m_path;
    std::vector<RyRef<RyNode>> m_tops;
    int m_seen = 0;
};

void readWithAssimp(const QString &path)
{
#ifdef RY_HAS_ASSIMP
    Assimp::Importer importer;
    if (!importer.ReadFile(QFile::encodeName(path).constData(), 0))
        std::printf("assimp: %s\n", importer.GetErrorString());
#else
    (void)path;
#endif
}

void read(const QString &way, const QString &path)
{
    Reading reading(path);
    if (way == QLatin1String("ours"))
        reading.readOurs();
    else if (way == QLatin1String("plain"))
        reading.readPlain();
    else
        readWithAssimp(path);
}

/// What the process of `timeOf` does: a small file first, which brings the code in, then the one to be timed.
int readOnce(const QString &way, const QString &small, const QString &path)
{
    read(way, small);
    std::printf("%.3f\n", RyBenchmark::milliseconds([&] { read(way, path); }));
    return 0;
}

/// Of one reading in a process of its own, in milliseconds.
double timeOf(const char *way, const QString &small, const QString &path)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--once"), QString::fromLatin1(way), small, path});
    process.waitForFinished(-1);
    return process.readAllStandardOutput().trimmed().split('\n').last().toDouble();
}

void compare(const QStringList &ways, const QString &small, const QString &path, int runs)
{
    std::vector<std::vector<double>> times(size_t(ways.size()));
    for (int run = 0; run < runs; ++run) {
        for (int way = 0; way < ways.size(); ++way)
            times[size_t(way)].push_back(timeOf(ways[way].toLatin1().constData(), small, path));
    }
    const double ours = RyBenchmark::median(times[0]);
    for (int way = 0; way < ways.size(); ++way) {
        const double its = RyBenchmark::median(times[size_t(way)]);
        std::printf("  %-8s %8.1f ms, ours of it %.3f, it of ours %.3f (medians of %d)\n", qPrintable(ways[way]), its,
                    ours / its, its / ours, runs);
    }
}

bool measure(const QString &path, const QString &small, bool isTube, int runs)
{
    const double size = double(QFile(path).size());
    Reading reading(path);
    peakMemory();
    const double before = peakMemory();
    reading.readOurs();
    const double peak = peakMemory() - before;
    if (!reading.isRight() || (isTube && !reading.isTube())) {
        std::printf("%s: WRONG RESULT\n", qPrintable(path));
        return false;
    }
    std::printf("%s: %.1f MB, peak memory %.2f times the file\n", qPrintable(path), size / 1e6, peak / size);
    QStringList ways{QStringLiteral("ours"), QStringLiteral("plain")};
#ifdef RY_HAS_ASSIMP
    ways.append(QStringLiteral("assimp"));
#endif
    compare(ways, small, path, runs);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("--once"))
        return readOnce(arguments.value(2), arguments.value(3), arguments.value(4));
    const bool isShort = arguments.value(1) == QLatin1String("--short");
    const QTemporaryDir folder;
    const QString small = folder.filePath(QStringLiteral("small.glb"));
    if (!writeFile(small, 2))
        return 1;
    if (argc > 1 && !isShort) {
        bool good = true;
        for (const QString &path : arguments.mid(1))
            good &= measure(path, small, false, 15);
        return good ? 0 : 1;
    }
    const QString path = folder.filePath(QStringLiteral("tube.glb"));
    return writeFile(path, Rows) && measure(path, small, true, isShort ? 1 : 15) ? 0 : 1;
}
