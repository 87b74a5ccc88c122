#include "ryforeign/RyForeignRead.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/file/RyGltfError.h"
#include "ryforeign/RyColladaMorphs.h"
#include "ryforeign/RyColladaText.h"
#include "ryforeign/RyFbxObjects.h"
#include "ryforeign/RyFbxUnpacked.h"
#include "ryforeign/RyForeignConverter.h"
#include "ryforeign/RyForeignFile.h"
#include "ryforeign/RyForeignJoints.h"
#include "ryforeign/RyForeignPlace.h"
#include "ryforeign/RyForeignScales.h"

#include <assimp/scene.h>

#include <QFile>

#include <climits>
#include <exception>
#include <optional>

namespace {

RyForeignInput::Kind kindOf(const QString &path)
{
    if (path.endsWith(QLatin1String(".dae"), Qt::CaseInsensitive))
        return RyForeignInput::Collada;
    return path.endsWith(QLatin1String(".bvh"), Qt::CaseInsensitive) ? RyForeignInput::Bvh : RyForeignInput::Fbx;
}

/// Reading takes this share of the time, roughly.
constexpr double readingShare = 0.7;

/// Of which things; a few names are enough to know what it is about.
void sayLeftOut(const RyForeignInput &input, const QString &what, QStringList names)
{
    names.removeAll(QString());
    names.removeDuplicates();
    constexpr int most = 10;
    if (!names.isEmpty())
        input.say(QStringLiteral("%1: %2%3")
                      .arg(what, QStringList(names.mid(0, most)).join(QLatin1String(", ")),
                           names.size() > most ? QStringLiteral(" and %1 more").arg(names.size() - most) : QString()));
}

/// In place, while the file is open. Nothing where it cannot be read: the importers' library says why.
QByteArray bytesOf(QFile &file)
{
    if (!file.open(QIODevice::ReadOnly) || file.size() >= INT_MAX)
        return {};
    const uchar *bytes = file.map(0, file.size());
    return bytes ? QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), int(file.size())) : QByteArray();
}

/// What is to be read in the place of the file, or nothing.
QByteArray knowFbx(RyForeignInput &input)
{
    QFile file(input.path);
    const QByteArray bytes = bytesOf(file);
    const RyFbxObjects objects(bytes);
    input.joints = objects.limbs;
    input.channelsOf = objects.channelsOf;
    input.isText = !RyFbxRecords(bytes).isBinary();
    input.nameOf = objects.nameOf;
    input.pivotOf = objects.pivotOf;
    input.scalingOf = objects.scalingOf;
    if (!objects.ambiguous.isEmpty()) {
        input.say(
            QStringLiteral("Nodes have one name and cannot be told apart; bones and clips of all of them are those "
                           "of the first: %1. Other names in the program that made the file would help")
                .arg(QStringList(objects.ambiguous.mid(0, 10)).join(QLatin1String(", "))));
    }
    sayLeftOut(input, QStringLiteral("Constraints are left out; what they move stays where the file shows it"),
               objects.constraints);
    QStringList properties;
    for (const RyFbxObjects::OwnProperty &property : objects.ownProperties) {
        properties.append(property.nodes.size() == 1
                              ? QStringLiteral("%1 of %2").arg(property.name, property.nodes.front())
                              : QStringLiteral("%1 of %2 nodes").arg(property.name).arg(property.nodes.size()));
    }
    sayLeftOut(input, QStringLiteral("Properties that were added to nodes are left out"), properties);
    const QByteArray changed = objects.changed();
    const QByteArray unpacked = ryFbxUnpacked(RyFbxRecords(changed));
    return unpacked.isEmpty() && changed.constData() != bytes.constData() ? changed : unpacked;
}

void addMorphs(const RyColladaMorphs &morphs, const RyForeignInput &input)
{
    const RyColladaMorphs::Losses losses = morphs.addTo(*input.scene);
    if (!losses.meshes.isEmpty())
        input.say(QStringLiteral("Morphs of these meshes do not fit their polygons and are left out: %1. Export glTF "
                                 "2.0 or binary FBX from the program that made the file to keep them")
                      .arg(QStringList(losses.meshes.mid(0, 10)).join(QLatin1String(", "))));
    if (losses.hasClips)
        input.say(QStringLiteral("Clips of Collada files that drive morphs are left out. Export glTF 2.0 or binary FBX "
                                 "from the program that made the file to keep them"));
}

bool read(const RyForeignRequest &request, RyForeignResult &result)
{
    const auto tell = [&request](double done) { return !request.progress || request.progress(done); };
    RyForeignFile file;
    RyForeignInput input;
    input.kind = kindOf(request.path);
    input.path = request.path;
    input.notes = &result.notes;
    const std::optional<RyColladaMorphs> morphs =
        input.kind == RyForeignInput::Collada ? std::make_optional<RyColladaMorphs>(input.path) : std::nullopt;
    QByteArray instead = input.kind == RyForeignInput::Fbx ? knowFbx(input) : morphs ? morphs->text : QByteArray();
    input.scene = file.read(
        request.path, instead, [&](double done) { return tell(readingShare * done); }, &result.error);
    instead.clear(); // its memory is soon wanted for other things
    if (!input.scene)
        return false;
    if (morphs && !morphs->text.isEmpty())
        addMorphs(*morphs, input);
    RyForeignTree tree(*input.scene, input.pivotOf);
    double unit = request.unit;
    if (input.kind == RyForeignInput::Collada) {
        const RyColladaText text(request.path, *input.scene->mRootNode);
        input.nameOf = text.nameOf;
        input.joints = text.joints;
        sayLeftOut(input, QStringLiteral("What these programs keep aside in a Collada file is left out"), text.extras);
        sayLeftOut(input, QStringLiteral("These parts of the Collada file are left out"), text.leftOut);
        unit /= text.metre; // the importers' library has made metres of it
    }
    sayLeftOut(input,
               QStringLiteral("Nodes below scaled ones have ways of their own to take on that scale (InheritType), and "
                              "are scaled along like all others; applying the scales in the program that made the "
                              "file would help"),
               ryScaledOtherwise(input, tree));
    tree.rename(input.nameOf);
    RyForeignJoints(input, tree).mark();
    const RyAffine top = ryForeignTop(input, tree, unit);
    tree.place(top);
    const std::unique_ptr<RyGltfDocument> document = RyForeignConverter(input, tree, top).convert([&](double done) {
        return tell(readingShare + (0.95 - readingShare) * done);
    });
    if (!document || !tell(0.95)) {
        result.error = QStringLiteral("reading was cancelled");
        return false;
    }
    result.glb = document->toBytes(QStringLiteral("glb"), &result.error);
    if (result.glb.isEmpty())
        return false;
    if (request.finished)
        request.finished(result);
    return true;
}

} // namespace

bool ryReadForeign(const RyForeignRequest &request, RyForeignResult &result)
{
    try {
        return read(request, result);
    } catch (const RyGltfError &refusal) {
        result.error = refusal.message();
    } catch (const std::exception &failure) {
        result.error = RyForeignFile::explain(QString::fromUtf8(failure.what()));
    }
    return false;
}
