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
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

/// Of the start tag that begins at `at`.
QByteArray attribute(const QByteArray &text, int at, const QByteArray &name)
{
    constexpr int longestTag = 4096; // a prepared file may end none of thousands
    const int size =
        QByteArray::fromRawData(text.constData() + at, std::min(longestTag, text.size() - at)).indexOf('>');
    if (size < 0)
        return {};
    const QByteArray tag = text.mid(at, size);
    static QHash<QByteArray, QRegularExpression> patterns; // to make one takes far longer than to use it
    QRegularExpression &pattern = patterns[name];
    if (pattern.pattern().isEmpty())
        pattern.setPattern(QStringLiteral("\\s%1\\s*=\\s*[\"']([^\"']*)[\"']").arg(QString::fromLatin1(name)));
    return pattern.match(QString::fromLatin1(tag)).captured(1).toLatin1(); // byte by byte
}

/// Start of the next element of this name before `end`; -1 for none.
int findElement(const QByteArray &text, const QByteArray &name, int from, int end)
{
    const std::string_view range(text.constData(), size_t(end));
    const std::string tag = '<' + name.toStdString();
    for (size_t at = range.find(tag, size_t(from)); at != range.npos; at = range.find(tag, at + 1)) {
        const char next = at + tag.size() < range.size() ? range[at + tag.size()] : '\0';
        if (next == '>' || next == '/' || next == ' ' || next == '\t' || next == '\r' || next == '\n')
            return int(at);
    }
    return -1;
}

std::vector<int> elementsOf(const QByteArray &text, const QByteArray &name)
{
    std::vector<int> found;
    for (int at = findElement(text, name, 0, text.size()); at >= 0; at = findElement(text, name, at + 1, text.size()))
        found.push_back(at);
    return found;
}

/// Looks for the same from one place after the other, and at every part of the text once.
class Search
{
public:
    Search(const QByteArray &text, const QByteArray &what) : m_text(text), m_what(what) {}

    /// -1 for none. Places come in the order of the text.
    int from(int at)
    {
        if (!m_found || (*m_found >= 0 && *m_found < at))
            m_found = m_text.indexOf(m_what, at);
        return *m_found;
    }

private:
    const QByteArray m_text, m_what;
    std::optional<int> m_found;
};

/// Another text for a range of the file's.
struct Change
{
    int at;
    int length;
    QByteArray with;
};

/// In one pass, since files have hundreds of them and megabytes between them.
QByteArray changed(const QByteArray &text, std::vector<Change> changes)
{
    std::sort(changes.begin(), changes.end(), [](const Change &a, const Change &b) { return a.at < b.at; });
    QByteArray result;
    result.reserve(text.size());
    int copied = 0;
    for (const Change &change : changes) {
        if (change.at < copied)
            continue; // within what has gone
        result.append(text.constData() + copied, change.at - copied).append(change.with);
        copied = change.at + change.length;
    }
    return result.append(text.constData() + copied, text.size() - copied);
}

/// Clips of what is not there any more, which the library may take for something else.
void removeChannels(const QByteArray &text, const QSet<QByteArray> &ids, std::vector<Change> &changes)
{
    const QByteArray close("</channel>");
    Search ends(text, close);
    for (int at : elementsOf(text, "channel")) {
        const QByteArray target = attribute(text, at, "target");
        if (!ids.contains(target.left(target.indexOf('/'))) && !ids.contains(target.left(target.indexOf('('))))
            continue;
        const int tagEnd = text.indexOf('>', at);
        if (tagEnd < 0)
            return;
        const int closing = text[tagEnd - 1] == '/' ? -1 : ends.from(tagEnd);
        const int end = closing < 0 ? tagEnd + 1 : closing + close.size();
        changes.push_back({at, end - at, {}});
    }
}

/// What follows a controller that morphs follows its base.
void followBases(const QByteArray &text, const QHash<QByteArray, QByteArray> &baseOf, std::vector<Change> &changes)
{
    for (int at : elementsOf(text, "skin")) {
        const QByteArray source = attribute(text, at, "source");
        if (baseOf.contains(source))
            changes.push_back({text.indexOf(source, at), source.size(), baseOf.value(source)});
    }
    const QByteArray name("instance_controller"), close("</instance_controller>");
    Search ends(text, close);
    for (int at : elementsOf(text, name)) {
        const QByteArray url = attribute(text, at, "url");
        if (!baseOf.contains(url))
            continue;
        const int tagEnd = text.indexOf('>', at);
        changes.push_back({at + 1, name.size(), "instance_geometry"});
        changes.push_back({text.indexOf(url, at), url.size(), baseOf.value(url)});
        const int end = text[tagEnd - 1] == '/' ? -1 : ends.from(tagEnd);
        if (end >= 0)
            changes.push_back({end, close.size(), "</instance_geometry>"});
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
    if (findElement(whole, "morph", 0, whole.size()) < 0)
        return;
    QHash<QByteArray, QByteArray> baseOf; // of controllers that morph, by references
    QSet<QByteArray> gone;                // ids
    std::vector<Change> changes;
    const QByteArray close("</controller>");
    Search ends(whole, close);
    int last = 0; // end of the one before
    for (int at : elementsOf(whole, "controller")) {
        const int end = ends.from(at);
        const int morph = end < 0 || at < last ? -1 : findElement(whole, "morph", at, end);
        last = std::max(last, end);
        if (morph < 0)
            continue;
        baseOf.insert('#' + attribute(whole, at, "id"), attribute(whole, morph, "source"));
        gone.insert(attribute(whole, at, "id"));
        for (int part = findElement(whole, "source", morph, end); part >= 0;
             part = findElement(whole, "source", part + 1, end))
            gone.insert(attribute(whole, part, "id"));
        changes.push_back({at, end + close.size() - at, {}});
    }
    if (baseOf.isEmpty())
        return;
    removeChannels(whole, gone, changes);
    followBases(whole, baseOf, changes);
    text = changed(whole, std::move(changes));
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
