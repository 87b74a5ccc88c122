// Merging two files and saving the scene, against opening each of them and writing as many bytes: two figures of
// 100,000 vertices made here, and two characters where they are (RY_MODELS). What nobody edited must be copied: the
// bytes of both files stand in the saved one. --short: small figures, one run, the comparison of bytes alone.

#include "RyRoundRobin.h"
#include "RyTubeFigure.h"

#include "rycore/io/RySafeFile.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/undo/RyUndoStack.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <memory>

namespace {

constexpr double Wanted = 1.5;

bool isShort = false;

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The binary chunk of a .glb file, which follows the JSON.
QByteArray chunkOf(const QByteArray &file)
{
    constexpr int JsonStart = 20;
    constexpr int ChunkHeaderSize = 8;
    if (file.size() < JsonStart)
        return {};
    return file.mid(JsonStart + int(qFromLittleEndian<quint32>(file.constData() + 12)) + ChunkHeaderSize);
}

bool open(std::unique_ptr<RyScene> &scene, const QString &path, bool merge)
{
    if (!merge)
        scene = std::make_unique<RyScene>();
    RySceneFile::Options options;
    options.merge = merge;
    QString error;
    const bool opened = RySceneFile::open(scene.get(), path, options, &error);
    if (!opened)
        std::printf("%s\n", qPrintable(error));
    return opened;
}

bool save(RyScene &scene, const QString &path)
{
    QString error;
    const bool saved = RySceneFile::save(&scene, path, &error);
    if (!saved)
        std::printf("%s\n", qPrintable(error));
    return saved;
}

bool makeFile(const QString &path, int bones)
{
    RyScene scene;
    const RyTubeFigure tube(&scene, isShort ? 2000 : 100000, bones);
    return save(scene, path);
}

bool copiesBytes(const QString &first, const QString &second, const QByteArray &saved)
{
    for (const QString &path : {first, second}) {
        const QByteArray chunk = chunkOf(bytesOf(path));
        if (chunk.isEmpty() || saved.indexOf(chunk) < 0) {
            std::printf("the bytes of %s do not stand in the merged file\n", qPrintable(path));
            return false;
        }
    }
    return true;
}

bool measure(const char *what, const QString &first, const QString &second, const QString &out)
{
    std::unique_ptr<RyScene> scene, other;
    if (!open(scene, first, false) || !open(scene, second, true) || !save(*scene, out))
        return false;
    const QByteArray saved = bytesOf(out);
    if (!copiesBytes(first, second, saved))
        return false;
    std::printf("%s: %.1f MB, the bytes of both files stand in the merged one\n", what, double(saved.size()) / 1e6);
    if (isShort)
        return true;

    bool good = true;
    const auto forget = [&] {
        scene.reset();
        other.reset();
        ryUndoStack()->clearAll();
    };
    RyRoundRobin ways;
    const size_t straight = ways.add("open both, write as many bytes", [&] {
        good &= open(scene, first, false) && open(other, second, false) && RySafeFile::write(out, saved, nullptr);
    });
    ways.before(forget);
    const size_t merged = ways.add("open, merge, save", [&] {
        good &= open(scene, first, false) && open(scene, second, true) && save(*scene, out);
    });
    ways.before(forget);
    ways.run(15);
    ways.print();
    const double ratio = ways.ratio(merged, straight);
    std::printf("  => %.3f (at most %.2f%s)\n", ratio, Wanted, ratio <= Wanted ? "" : ", MISSED");
    return good && bytesOf(out) == saved;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    isShort = application.arguments().value(1) == QLatin1String("--short");
    const QTemporaryDir folder;
    const QString first = folder.filePath(QStringLiteral("first.glb"));
    const QString second = folder.filePath(QStringLiteral("second.glb"));
    const QString out = folder.filePath(QStringLiteral("out.glb"));
    bool good = makeFile(first, 40) && makeFile(second, 60) && measure("two tubes", first, second, out);
    const QString models = qEnvironmentVariable("RY_MODELS");
    const QString man = models + QStringLiteral("/CesiumMan.glb");
    const QString knight = models + QStringLiteral("/kaykit_knight.glb");
    if (!models.isEmpty() && QFile::exists(man) && QFile::exists(knight))
        good &= measure("CesiumMan and kaykit_knight", man, knight, out);
    return good ? 0 : 1;
}
