// How the time to open, save and report grows: OBJ files with a group for every facet, chains of bones as deep as they
// are long, vertices at one place that only their weights tell apart, many parts whose weights change.
#include "RyGrowth.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "ryhost/batch/BatchReport.h"

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace {

constexpr int Groups = 64000;
constexpr int Bones = 16000;
constexpr int Vertices = 40000;
constexpr int Parts = 16000;

QString groupName(int group)
{
    return QStringLiteral("patch_%1").arg(group);
}

/// A strip of quads, each in a group of its own; every tenth comes back to a group of before.
bool writeGroups(const QString &path, int groups)
{
    QByteArray text;
    for (int i = 0; i <= groups; ++i)
        text += QStringLiteral("v %1 0 0\nv %1 1.7 0.1\n").arg(i * 0.01).toLatin1();
    for (int i = 0; i < groups; ++i) {
        text +=
            "g " + groupName(i % 10 == 9 ? i / 2 : i).toLatin1() +
            QStringLiteral("\nf %1 %2 %3 %4\n").arg(2 * i + 1).arg(2 * i + 2).arg(2 * i + 4).arg(2 * i + 3).toLatin1();
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

const RyFacetMesh *meshOfScene()
{
    for (const RyNode *node : ryScene()->getNodes()) {
        if (const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(node)))
            return shape->getFacetMesh();
    }
    return nullptr;
}

bool hasGroups(int groups)
{
    const RyFacetMesh *mesh = meshOfScene();
    if (!mesh || mesh->getNumFacets() != groups)
        return false;
    for (int i = 0; i < groups; ++i) {
        const int group = mesh->getFacet(i).group;
        if (group < 0 || mesh->getFaceGroup(group)->getName() != groupName(i % 10 == 9 ? i / 2 : i))
            return false;
    }
    return true;
}

double openGroups(const QString &path, int groups)
{
    ryScene()->clear();
    if (!writeGroups(path, groups))
        return -1.0;
    const double time = RyBenchmark::threadMilliseconds([&] { RySceneFile::open(ryScene(), path, nullptr); });
    return hasGroups(groups) ? time : -1.0;
}

/// A second mesh beside the first makes the text be written anew.
double saveGroups(const QString &path, int groups)
{
    RySceneFile::Options beside;
    beside.merge = true;
    if (openGroups(path, groups) < 0.0 || !RySceneFile::open(ryScene(), path, beside, nullptr))
        return -1.0;
    const double time = RyBenchmark::threadMilliseconds([&] { RySceneFile::save(ryScene(), path, nullptr); });
    RySceneFile::open(ryScene(), path, nullptr);
    const RyFacetMesh *mesh = meshOfScene();
    return mesh && mesh->getNumFacets() == 2 * groups ? time : -1.0;
}

bool writeChain(const QString &path, int bones)
{
    std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
    std::vector<int> joints;
    for (int joint = 0; joint < bones; ++joint) {
        RyGltfTransform transform;
        transform.translation = {0.001, 0.002, joint % 3 == 0 ? 0.001 : -0.0005};
        joints.push_back(
            document->addNode(QStringLiteral("joint%1").arg(joint), transform, joint == 0 ? -1 : joints.back()));
    }
    document->addSkin(QStringLiteral("chain"), joints, -1, -1);
    return document->write(path, nullptr);
}

/// Vertices at one place, each with weights of its own.
bool writeKnot(const QString &path, int vertices)
{
    std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
    std::vector<float> positions, weights;
    std::vector<std::uint32_t> joints;
    for (int i = 0; i < vertices; ++i) {
        const float share = float(i + 1) / float(vertices + 1);
        positions.insert(positions.end(), {0.1f, 1.7f, -0.3f});
        weights.insert(weights.end(), {share, 1.0f - share, 0.0f, 0.0f});
        joints.insert(joints.end(), {0, 1, 0, 0});
    }
    const int first = document->addNode(QStringLiteral("first"), RyGltfTransform(), -1);
    const int second = document->addNode(QStringLiteral("second"), RyGltfTransform(), first);
    const int skin = document->addSkin(QStringLiteral("knot"), {first, second}, -1, -1);
    const int mesh = document->addMesh(QStringLiteral("knot"));
    document->addPrimitive(mesh,
                           {{"POSITION", document->addFloatAccessor(positions, 3, 34962, true)},
                            {"JOINTS_0", document->addUintAccessor(joints, 4, 5121, 34962)},
                            {"WEIGHTS_0", document->addFloatAccessor(weights, 4, 34962)}},
                           -1, -1);
    document->setNodeMeshAndSkin(document->addNode(QStringLiteral("knot"), RyGltfTransform(), -1), mesh, skin);
    return document->write(path, nullptr);
}

double openKnot(const QString &path, int vertices)
{
    ryScene()->clear();
    if (!writeKnot(path, vertices))
        return -1.0;
    const double time = RyBenchmark::threadMilliseconds([&] { RySceneFile::open(ryScene(), path, nullptr); });
    const RyFacetMesh *mesh = meshOfScene();
    return mesh && mesh->getNumVertices() == vertices ? time : -1.0;
}

bool isChain(int bones)
{
    const std::vector<RySkeleton *> figures = ryScene()->getSkeletons();
    return figures.size() == 1 && int(figures.front()->getAllBones().size()) == bones;
}

double openChain(const QString &path, int bones)
{
    ryScene()->clear();
    if (!writeChain(path, bones))
        return -1.0;
    const double time = RyBenchmark::threadMilliseconds([&] { RySceneFile::open(ryScene(), path, nullptr); });
    return isChain(bones) ? time : -1.0;
}

double saveChain(const QString &path, int bones)
{
    if (openChain(path, bones) < 0.0)
        return -1.0;
    RyBone *bone = ryScene()->getSkeletons().front()->getAllBones()[size_t(bones / 2)];
    bone->adjustOrigin(bone->getOrigin() + RyVec3(0.1f, 0.0f, 0.05f));
    const double time = RyBenchmark::threadMilliseconds([&] { RySceneFile::save(ryScene(), path, nullptr); });
    return RySceneFile::open(ryScene(), path, nullptr) && isChain(bones) ? time : -1.0;
}

double reportChain(const QString &path, int bones)
{
    if (openChain(path, bones) < 0.0)
        return -1.0;
    QByteArray report;
    const double time = RyBenchmark::threadMilliseconds([&] { report = batchReport(*ryScene(), {}); });
    const QJsonArray figures = QJsonDocument::fromJson(report).object().value(QStringLiteral("figures")).toArray();
    const QJsonArray listed = figures.first().toObject().value(QStringLiteral("bones")).toArray();
    return listed.size() == bones && listed.last().toObject().value(QStringLiteral("parent")).toString() ==
                                         QStringLiteral("joint%1").arg(bones - 2)
               ? time
               : -1.0;
}

/// Many small parts of one mesh, each with accessors of its own and weights that go from one joint to the other.
bool writeParts(const QString &path, int parts)
{
    std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
    const int first = document->addNode(QStringLiteral("first"), RyGltfTransform(), -1);
    const int second = document->addNode(QStringLiteral("second"), RyGltfTransform(), first);
    const int skin = document->addSkin(QStringLiteral("parts"), {first, second}, -1, -1);
    const int mesh = document->addMesh(QStringLiteral("parts"));
    for (int part = 0; part < parts; ++part) {
        const float x = float(part % 100) * 0.02f, y = float(part / 100) * 0.01f;
        const std::vector<float> positions{x, y, 0.0f, x + 0.01f, y, 0.0f, x, y + 0.01f, 0.0f};
        const std::vector<float> weights{1.0f, 0.0f, 0.0f, 0.0f, 0.25f, 0.75f, 0.0f, 0.0f, 0.75f, 0.25f, 0.0f, 0.0f};
        const std::vector<std::uint32_t> joints{0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0};
        document->addPrimitive(mesh,
                               {{"POSITION", document->addFloatAccessor(positions, 3, 34962, true)},
                                {"JOINTS_0", document->addUintAccessor(joints, 4, 5121, 34962)},
                                {"WEIGHTS_0", document->addFloatAccessor(weights, 4, 34962)}},
                               -1, -1);
    }
    document->setNodeMeshAndSkin(document->addNode(QStringLiteral("parts"), RyGltfTransform(), -1), mesh, skin);
    return document->write(path, nullptr);
}

std::vector<float> weightsOf(int bone)
{
    const RySkeleton *figure = ryScene()->getSkeletons().front();
    const RySkinBinding *binding = figure->getObject()->findModifier<RySkinBinding>();
    const RyWeightMap *map = binding->findBoneBinding(figure->getAllBones()[size_t(bone)])->getWeights();
    std::vector<float> weights;
    for (int vertex = 0; vertex < map->getNumWeights(); ++vertex)
        weights.push_back(map->getFloatWeight(vertex));
    return weights;
}

/// Two bones change places in the skin, so that all influences are written anew.
double saveParts(const QString &path, int parts)
{
    ryScene()->clear();
    if (!writeParts(path, parts) || !RySceneFile::open(ryScene(), path, nullptr))
        return -1.0;
    const RySkeleton *figure = ryScene()->getSkeletons().front();
    const std::vector<RyBone *> bones = figure->getAllBones();
    const RySkinBinding *binding = figure->getObject()->findModifier<RySkinBinding>();
    const RyRef<RyWeightMap> first(binding->findBoneBinding(bones[0])->getWeights());
    const RyRef<RyWeightMap> second(binding->findBoneBinding(bones[1])->getWeights());
    binding->findBoneBinding(bones[0])->setWeights(second.get());
    binding->findBoneBinding(bones[1])->setWeights(first.get());
    const std::vector<float> expected = weightsOf(0);
    const double time = RyBenchmark::threadMilliseconds([&] { RySceneFile::save(ryScene(), path, nullptr); });
    return RySceneFile::open(ryScene(), path, nullptr) && int(expected.size()) == 3 * parts && weightsOf(0) == expected
               ? time
               : -1.0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    const auto on = [&folder](const char *name, double (*time)(const QString &, int)) {
        return [path = folder.filePath(QString::fromLatin1(name)), time](int size) { return time(path, size); };
    };
    RyGrowth growth(argc, argv);
    growth.measure("open OBJ groups", Groups, on("groups.obj", openGroups));
    growth.measure("save OBJ groups", Groups, on("groups.obj", saveGroups));
    growth.measure("open vertices at one place", Vertices, on("knot.glb", openKnot));
    growth.measure("save other weights of many parts", Parts, on("parts.glb", saveParts));
    growth.measure("open a chain of bones", Bones, on("chain.glb", openChain));
    growth.measure("save a chain of bones", Bones, on("chain.glb", saveChain));
    growth.measure("report on a chain of bones", Bones, on("chain.glb", reportChain));
    ryDestroyScene();
    return growth.exitCode();
}
