#include "ryforeign/RyColladaMorphs.h"

#include "ryforeign/RyColladaShapes.h"
#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

/// Of the start tag that begins at `at`.
QByteArray attribute(const QByteArray &text, int at, const QByteArray &name)
{
    const QByteArray tag = text.mid(at, std::max(0, text.indexOf('>', at) - at));
    const QRegularExpression pattern(
        QStringLiteral("\\s%1\\s*=\\s*[\"']([^\"']*)[\"']").arg(QString::fromLatin1(name)));
    return pattern.match(QString::fromLatin1(tag)).captured(1).toLatin1(); // byte by byte
}

/// Start of the next element of this name; -1 for none.
int findElement(const QByteArray &text, const QByteArray &name, int from)
{
    for (int at = text.indexOf('<' + name, from); at >= 0; at = text.indexOf('<' + name, at + 1)) {
        const char next = at + 1 + name.size() < text.size() ? text[at + 1 + name.size()] : '\0';
        if (next == '>' || next == '/' || next == ' ' || next == '\t' || next == '\r' || next == '\n')
            return at;
    }
    return -1;
}

/// Clips of what is not there any more, which the library may take for something else.
void removeChannels(QByteArray &text, const QSet<QByteArray> &ids)
{
    const QByteArray close("</channel>");
    for (int at = findElement(text, "channel", 0); at >= 0; at = findElement(text, "channel", at)) {
        const QByteArray target = attribute(text, at, "target");
        const int tagEnd = text.indexOf('>', at);
        if (tagEnd < 0)
            return;
        int end = tagEnd + 1;
        if (text[tagEnd - 1] != '/' && text.indexOf(close, tagEnd) >= 0)
            end = text.indexOf(close, tagEnd) + close.size();
        if (ids.contains(target.left(target.indexOf('/'))) || ids.contains(target.left(target.indexOf('('))))
            text.remove(at, end - at);
        else
            at = end;
    }
}

/// Whether the mesh has these points at its vertices, one a corner. Two readings of a number may differ in its last
/// digit.
bool hasPoints(const aiMesh &mesh, const RyColladaShapes::Polygons &list, const std::vector<float> &points)
{
    constexpr float tolerance = 1e-5f;
    if (!list.isKnown || list.corners.size() != mesh.mNumVertices)
        return false;
    for (size_t corner = 0; corner < list.corners.size(); ++corner) {
        const size_t point = 3 * size_t(list.corners[corner]);
        if (point + 3 > points.size())
            return false;
        const aiVector3D &at = mesh.mVertices[corner];
        const float size = std::max({1e-3f, std::abs(at.x), std::abs(at.y), std::abs(at.z)});
        const aiVector3D off = at - aiVector3D(points[point], points[point + 1], points[point + 2]);
        if (!(std::abs(off.x) + std::abs(off.y) + std::abs(off.z) <= tolerance * size))
            return false;
    }
    return true;
}

/// A morph: where the points of the mesh end up.
struct Shape
{
    QString name;
    float weight = 0.0f;
    std::vector<float> points;
};

/// Of all targets that are there and have as many points as the base.
std::vector<Shape> shapesOf(const RyColladaShapes &file, const RyColladaShapes::Morphs &morphs,
                            const std::vector<float> &base)
{
    std::vector<Shape> shapes;
    for (int i = 0; i < morphs.targets.size(); ++i) {
        const RyColladaShapes::Geometry *target = file.find(morphs.targets[i]);
        Shape shape;
        if (target)
            shape.points = file.pointsOf(*target);
        if (!target || shape.points.size() != base.size())
            continue;
        shape.name = target->name.isEmpty() ? target->id : target->name;
        if (size_t(i) < morphs.weights.size())
            shape.weight = morphs.weights[size_t(i)];
        for (size_t k = 0; morphs.isRelative && k < base.size(); ++k)
            shape.points[k] += base[k];
        shapes.push_back(std::move(shape));
    }
    return shapes;
}

/// As the library itself does it with files whose morphs it knows.
void addShapes(aiMesh &mesh, const RyColladaShapes::Polygons &list, const std::vector<Shape> &shapes)
{
    mesh.mMethod = aiMorphingMethod_MORPH_NORMALIZED;
    mesh.mAnimMeshes = new aiAnimMesh *[shapes.size()];
    for (const Shape &shape : shapes) {
        auto added = std::make_unique<aiAnimMesh>();
        added->mName = aiString(shape.name.toStdString());
        added->mWeight = shape.weight;
        added->mNumVertices = mesh.mNumVertices;
        added->mVertices = new aiVector3D[mesh.mNumVertices];
        for (unsigned corner = 0; corner < mesh.mNumVertices; ++corner) {
            const float *point = shape.points.data() + 3 * size_t(list.corners[corner]);
            added->mVertices[corner] = aiVector3D(point[0], point[1], point[2]);
        }
        mesh.mAnimMeshes[mesh.mNumAnimMeshes++] = added.release();
    }
}

} // namespace

RyColladaMorphs::RyColladaMorphs(const QString &path) : m_path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray whole = file.readAll();
    if (findElement(whole, "morph", 0) < 0)
        return;
    text.reserve(whole.size());
    QHash<QByteArray, QByteArray> baseOf; // of controllers that morph, by references
    QSet<QByteArray> gone;                // ids
    int copied = 0;
    for (int at = findElement(whole, "controller", 0); at >= 0; at = findElement(whole, "controller", at + 1)) {
        const int end = whole.indexOf("</controller>", at);
        const int morph = findElement(whole, "morph", at);
        if (end < 0 || morph < 0 || morph > end)
            continue;
        const QByteArray base = attribute(whole, morph, "source");
        baseOf.insert('#' + attribute(whole, at, "id"), base);
        gone.insert(attribute(whole, at, "id"));
        for (int part = findElement(whole, "source", morph); part >= 0 && part < end;
             part = findElement(whole, "source", part + 1))
            gone.insert(attribute(whole, part, "id"));
        text += whole.mid(copied, at - copied);
        copied = end + int(qstrlen("</controller>"));
    }
    text += whole.mid(copied);
    removeChannels(text, gone);
    // What follows such a controller follows its base.
    for (int at = findElement(text, "skin", 0); at >= 0; at = findElement(text, "skin", at + 1)) {
        const QByteArray source = attribute(text, at, "source");
        if (baseOf.contains(source))
            text.replace(text.indexOf(source, at), source.size(), baseOf.value(source));
    }
    const QByteArray name("instance_controller"), close("</instance_controller>");
    for (int at = findElement(text, name, 0); at >= 0; at = findElement(text, name, at + 1)) {
        const QByteArray url = attribute(text, at, "url");
        if (!baseOf.contains(url))
            continue;
        const int tagEnd = text.indexOf('>', at);
        const int end = text.indexOf(close, at);
        if (text[tagEnd - 1] != '/' && end >= 0)
            text.replace(end, close.size(), "</instance_geometry>");
        text.replace(text.indexOf(url, at), url.size(), baseOf.value(url));
        text.replace(at + 1, name.size(), "instance_geometry");
    }
    if (baseOf.isEmpty())
        text.clear();
}

RyColladaMorphs::Losses RyColladaMorphs::addTo(const aiScene &scene) const
{
    const RyColladaShapes file(m_path);
    Losses losses;
    QStringList done;
    for (const RyColladaShapes::Morphs &morphs : file.morphs) {
        losses.hasClips = losses.hasClips || file.driven.contains(morphs.id) || file.driven.contains(morphs.weightsId);
        const RyColladaShapes::Geometry *base = file.find(morphs.base);
        const std::vector<float> points = base ? file.pointsOf(*base) : std::vector<float>();
        const std::vector<Shape> shapes = shapesOf(file, morphs, points);
        // Of two controllers over one mesh the library knows one mesh.
        bool isWhole = base && !done.contains(morphs.base) && int(shapes.size()) == morphs.targets.size();
        size_t list = 0; // the meshes stand in the order of the lists
        for (unsigned m = 0; base && !shapes.empty() && m < scene.mNumMeshes; ++m) {
            aiMesh &mesh = *scene.mMeshes[m];
            const QString name = ryForeignText(mesh.mName);
            if ((name != base->id && name != base->name) || mesh.mNumAnimMeshes > 0)
                continue;
            size_t tried = 0;
            while (tried < base->lists.size() &&
                   !hasPoints(mesh, base->lists[(list + tried) % base->lists.size()], points))
                ++tried;
            isWhole = isWhole && tried < base->lists.size();
            if (tried == base->lists.size())
                continue;
            list += tried;
            addShapes(mesh, base->lists[list++ % base->lists.size()], shapes);
        }
        done.append(morphs.base);
        if (!isWhole)
            losses.meshes.append(morphs.base);
    }
    losses.meshes.removeDuplicates();
    return losses;
}
