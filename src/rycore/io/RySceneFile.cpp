#include "rycore/io/RySceneFile.h"

#include "rycore/base/RyMessageLog.h"
#include "rycore/io/RyUnitFactor.h"
#include "rycore/io/RyWaiting.h"
#include "rycore/io/foreign/RyForeignImport.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyOwnExtras.h"
#include "rycore/io/gltf/open/RyGltfSceneReader.h"
#include "rycore/io/gltf/save/RyGltfJoin.h"
#include "rycore/io/gltf/save/RyGltfNewNodes.h"
#include "rycore/io/gltf/save/RyGltfSceneWriter.h"
#include "rycore/io/obj/RyObjOrigin.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>

namespace {

QString endingOf(const QString &path)
{
    return QFileInfo(path).suffix().toLower();
}

bool refuse(QString *error, const QString &message)
{
    if (error)
        *error = message;
    return false;
}

/// The name, or with the first free number from 2 on when a top-level node of the scene has it.
QString freeTopLevelName(const RyScene &scene, const QString &name)
{
    QSet<QString> taken;
    for (const RyNode *node : scene.getTopLevelNodes())
        taken.insert(node->getName());
    if (!taken.contains(name))
        return name;
    const QString stem = RyScene::stripNameNumber(name);
    int number = 2;
    while (taken.contains(stem + QString::number(number)))
        ++number;
    return stem + QString::number(number);
}

/// An object that is called as its node goes on being so.
void rename(RyNode &node, const QString &name)
{
    if (node.getObject() && node.getObject()->getName() == node.getName())
        node.getObject()->setName(name);
    node.setName(name);
}

void empty(RyScene *scene)
{
    const RyUndoStackLock lock;
    ryUndoStack()->clearAll();
    scene->clear();
}

/// `isFile`: saving would write the file again.
void putIntoScene(RyScene *scene, const std::vector<RyRef<RyNode>> &tops, std::unique_ptr<RySceneOrigin> origin,
                  bool merge, bool isFile = true)
{
    if (!merge)
        empty(scene);
    for (const RyRef<RyNode> &top : tops) {
        if (merge)
            rename(*top, freeTopLevelName(*scene, top->getName()));
        scene->addNode(top.get());
    }
    scene->addOrigin(std::move(origin));
    if (!merge && isFile)
        ryUndoStack()->setClean();
}

constexpr double ForeignShare = 0.7; // of the time that the other process takes, roughly

/// What a foreign file became, with the notes on it.
std::unique_ptr<RyGltfDocument> readForeign(const QString &path, const RySceneFile::Options &options,
                                            RyWaiting &waiting, QString *error, QStringList *messages)
{
    std::unique_ptr<RyGltfDocument> document;
    const auto use = [&](const QByteArray &glb) {
        QString reason;
        waiting.run([&] { document = RyGltfDocument::fromBytes(path, glb, &reason, messages); });
        if (!document)
            RyMessageLog::global().warning(reason);
        return document != nullptr;
    };
    const auto tell = [&options](double done) { return !options.progress || options.progress(ForeignShare * done); };
    if (!RyForeignImport::read(path, options.unit, tell, use, error, messages))
        return nullptr;
    return document;
}

/// What a library says of a failure that nobody foresaw is for the log: users can make nothing of it.
void logFailure(const QString &path, const std::exception &failure)
{
    RyMessageLog::global().warning(QStringLiteral("%1: %2").arg(path, QString::fromUtf8(failure.what())));
}

/// Centimetres per unit that whoever opens the file takes it for when it does not say so.
double guessUnit(const RyScene &scene, double unit)
{
    double largest = 0.0;
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        RyBox3 box;
        if (const RyShape *shape = RyShape::getCurrentShapeForNode(skeleton)) {
            for (const RyVec3 &point : shape->getBasePositions())
                box.include(point);
        }
        const RyVec3 extents = box.getExtents();
        largest = std::max(largest, ryFigureHeight(double(extents.x), double(extents.y), double(extents.z)));
    }
    return ryUnitFactor(100.0, largest / unit);
}

bool write(const RyScene &scene, const RyGltfDocument &document, const QString &path,
           const RySceneFile::SaveOptions &options, QString *error)
{
    if (options.purpose != RySceneFile::Export)
        return document.write(path, error);
    // What the scene keeps goes on saying what is ours.
    const std::unique_ptr<RyGltfDocument> bare = document.clone();
    const QStringList without = RyOwnExtras::takeOut(*bare);
    if (!bare->write(path, error))
        return false;
    if (options.withoutExtras) {
        *options.withoutExtras = without;
        const double unit = RyFigureExtras::storedUnit(document);
        if (unit > 0.0 && std::abs(guessUnit(scene, unit) - unit) > 1e-6 * unit) {
            options.withoutExtras->append(
                QStringLiteral("that one unit of the file is %1 centimetres, which is not what it is taken for")
                    .arg(unit));
        }
    }
    return true;
}

bool saveJoined(const RyScene &scene, const std::vector<const RyGltfOrigin *> &origins, const QString &path,
                const RySceneFile::SaveOptions &options, QString *error, QStringList *messages, QStringList *leftOut)
{
    QString reason;
    const std::shared_ptr<const RyGltfDocument> document =
        RyGltfSceneWriter(origins, options.jointsOnly).patch(scene, &reason, messages, leftOut);
    if (!document)
        return refuse(error, QStringLiteral("%1: %2").arg(path, reason));
    return write(scene, *document, path, options, error);
}

bool saveAlone(const RyScene &scene, const QString &path, const RySceneFile::SaveOptions &options, QString *error,
               QStringList *messages)
{
    if (scene.getTopLevelNodes().empty())
        return refuse(error, QStringLiteral("%1: there is nothing to save").arg(path));
    return write(scene, *RyGltfNewNodes::writeScene(scene, messages), path, options, error);
}

void makeFits(const RyScene &scene, const RySceneFile::SaveOptions &options, QStringList *messages)
{
    const std::vector<RyFigureFits::Fit> fits = RyFigureFits::make(scene, options.progress, messages);
    if (options.fits)
        *options.fits = fits;
}

} // namespace

QStringList RySceneFile::readableEndings()
{
    return QStringList{QStringLiteral("glb"), QStringLiteral("gltf"), QStringLiteral("obj")} +
           RyForeignImport::endings();
}

bool RySceneFile::isForeign(const QString &path)
{
    return RyForeignImport::endings().contains(endingOf(path));
}

QStringList RySceneFile::writableEndings()
{
    return {QStringLiteral("glb"), QStringLiteral("gltf"), QStringLiteral("obj")};
}

bool RySceneFile::open(RyScene *scene, const QString &path, QString *error, QStringList *messages)
{
    return open(scene, path, Options(), error, messages);
}

bool RySceneFile::open(RyScene *scene, const QString &path, const Options &options, QString *error,
                       QStringList *messages)
{
    const QFileInfo info(path);
    if (!info.exists())
        return refuse(error, QStringLiteral("%1: there is no such file").arg(path));
    if (info.isDir())
        return refuse(error, QStringLiteral("%1: this is a folder").arg(path));
    if (!readableEndings().contains(endingOf(path))) {
        return refuse(error, QStringLiteral("%1: files of this kind cannot be read; the program opens %2")
                                 .arg(path, readableEndings().join(QStringLiteral(", "))));
    }
    if (endingOf(path) == QLatin1String("obj")) {
        std::vector<RyRef<RyNode>> tops;
        std::unique_ptr<RyObjOrigin> origin;
        {
            RyUndoStackLock lock;
            origin = RyObjOrigin::read(path, options.unit, &tops, error, messages);
        }
        if (!origin)
            return false;
        putIntoScene(scene, tops, std::move(origin), options.merge);
        return true;
    }
    const bool foreign = isForeign(path);
    RyWaiting waiting(options.progress, ForeignShare);
    std::unique_ptr<RyGltfDocument> document =
        foreign ? readForeign(path, options, waiting, error, messages) : RyGltfDocument::read(path, error, messages);
    if (!document)
        return false;
    const QString cancelled = QStringLiteral("%1 was not opened: it was cancelled").arg(path);
    if (!waiting.isWanted())
        return refuse(error, cancelled);
    std::vector<RyRef<RyNode>> tops;
    std::unique_ptr<RyGltfOrigin> origin;
    {
        RyUndoStackLock lock;
        QString reason;
        try {
            // The unit of a foreign file was its reader's to take.
            RyGltfSceneReader reader(std::move(document), path, foreign ? 0.0 : options.unit);
            if (!reader.build(&reason, messages, foreign ? &waiting : nullptr))
                return refuse(error, waiting.isWanted() ? reason : cancelled);
            tops = reader.topLevelNodes();
            origin = reader.takeOrigin();
        } catch (const std::bad_alloc &) {
            return refuse(error, QStringLiteral("%1: the file needs more memory than this machine has").arg(path));
        } catch (const std::exception &failure) {
            logFailure(path, failure);
            return refuse(error, QStringLiteral("%1: the parts of the file do not fit together").arg(path));
        }
    }
    if (tops.empty())
        return refuse(error, QStringLiteral("%1: the file holds neither joints nor meshes").arg(path));
    putIntoScene(scene, tops, std::move(origin), options.merge, !foreign);
    return true;
}

void RySceneFile::close(RyScene *scene)
{
    empty(scene);
    ryUndoStack()->setClean();
}

bool RySceneFile::save(RyScene *scene, const QString &path, QString *error, QStringList *messages, QStringList *losses)
{
    return save(scene, path, SaveOptions(), error, messages, losses);
}

/// What may throw of it, for want of memory for one.
static bool saveWhole(RyScene *scene, const QString &path, const RySceneFile::SaveOptions &options, QString *error,
                      QStringList *messages, QStringList *leftOut)
{
    if (!RySceneFile::writableEndings().contains(endingOf(path))) {
        return refuse(error, QStringLiteral("%1: files of this kind cannot be written; the program saves %2")
                                 .arg(path, RySceneFile::writableEndings().join(QStringLiteral(", "))));
    }
    const RyClipPlayer::Aside aside(*scene);
    if (endingOf(path) == QLatin1String("obj"))
        return RyObjOrigin::save(*scene, path, error, messages);
    makeFits(*scene, options, messages);
    const std::vector<const RyGltfOrigin *> origins = RyGltfJoin::liveOrigins(*scene);
    return origins.empty() ? saveAlone(*scene, path, options, error, messages)
                           : saveJoined(*scene, origins, path, options, error, messages, leftOut);
}

bool RySceneFile::save(RyScene *scene, const QString &path, const SaveOptions &options, QString *error,
                       QStringList *messages, QStringList *losses)
{
    QStringList leftOut;
    try {
        if (!saveWhole(scene, path, options, error, messages, &leftOut))
            return false;
    } catch (const std::bad_alloc &) {
        return refuse(error, QStringLiteral("%1: the scene needs more memory than this machine has").arg(path));
    } catch (const std::exception &failure) {
        logFailure(path, failure);
        return refuse(error, QStringLiteral("%1: the scene does not fit into its file; another format or a new scene "
                                            "may take it")
                                 .arg(path));
    }
    if (losses)
        losses->append(leftOut);
    if (leftOut.isEmpty() && options.purpose == Save)
        ryUndoStack()->setClean();
    return true;
}

bool RySceneFile::saveWithoutSource(RyScene *scene, const QString &path, QString *error, QStringList *messages)
{
    makeFits(*scene, SaveOptions(), messages);
    return saveAlone(*scene, path, SaveOptions(), error, messages);
}
