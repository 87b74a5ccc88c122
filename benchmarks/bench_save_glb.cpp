// Saving a character given on the command line: as it was read, with a moved joint, and with changed weights.

#include "RyBenchmark.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <QCoreApplication>
#include <QTemporaryDir>

namespace {

void measure(RyScene &scene, const QString &path, const char *what)
{
    std::vector<double> times;
    QString error;
    for (int run = 0; run < 9; ++run) {
        times.push_back(RyBenchmark::milliseconds([&] {
            if (!RySceneFile::save(&scene, path, &error))
                std::printf("%s\n", qPrintable(error));
        }));
    }
    std::printf("%s: %.1f ms (median of 9)\n", what, RyBenchmark::median(times));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc < 2) {
        std::printf("usage: bench_save_glb FILE\n");
        return 2;
    }
    QTemporaryDir folder;
    const QString out = folder.filePath(QStringLiteral("out.glb"));
    RyScene scene;
    QString error;
    const double opened = RyBenchmark::milliseconds([&] {
        if (!RySceneFile::open(&scene, QString::fromLocal8Bit(argv[1]), &error))
            std::printf("%s\n", qPrintable(error));
    });
    std::printf("open: %.1f ms\n", opened);
    if (scene.getSkeletons().empty())
        return 1;
    measure(scene, out, "save unedited");
    RySkeleton &figure = *scene.getSkeletons().front();
    RyBone *bone = figure.getAllBones().back();
    bone->adjustOrigin(bone->getOrigin() + RyVec3(1, 2, 3));
    measure(scene, out, "save with a moved joint");
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(&figure);
    for (RyBoneBinding *binding : skin->boneBindingIterator()) {
        RyWeightMap *map = binding->getWeights();
        if (!map || map->getNumAffected() == 0)
            continue;
        const int vertex = map->getAffectedIndices()[0];
        map->beginEdit();
        map->getWeights()[vertex] /= 2;
        map->finishEdit();
        break;
    }
    skin->normalize(0, RySkinBinding::AllWeights, false);
    measure(scene, out, "save with changed weights");
    return 0;
}
