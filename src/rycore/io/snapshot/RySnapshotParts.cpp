#include "rycore/io/snapshot/RySceneSnapshot.h"

#include <QDataStream>

namespace {

constexpr quint32 FormatVersion = 1;

QByteArray numbered(const char *name, size_t number)
{
    return QByteArray(name) + QByteArray::number(qulonglong(number));
}

} // namespace

QByteArray rySnapshotBytes(const RySnapshotParts &parts, const QByteArray &name)
{
    for (const RySnapshotPart &part : parts) {
        if (part.name == name)
            return part.bytes;
    }
    return {};
}

RySnapshotParts RySceneSnapshot::parts() const
{
    RySnapshotParts parts;
    QByteArray head;
    QDataStream stream(&head, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << FormatVersion << document.path << document.isBinary << document.layout << losses;
    stream << quint32(document.buffers.size()) << quint32(document.pictures.size())
           << quint32(document.otherChunks.size()) << quint32(positions.size());
    stream << hasFile << obj.has_value();
    if (obj) {
        stream << obj->path << obj->unit << obj->companions << qint32(obj->node);
        parts.push_back({"obj", obj->text, true, {}});
    }
    for (size_t i = 0; i < document.buffers.size(); ++i) {
        const RyGltfParts::Buffer &buffer = document.buffers[i];
        stream << quint32(buffer.source) << buffer.isText;
        parts.push_back({numbered("buffer", i), buffer.bytes, true, buffer.owner});
    }
    for (size_t i = 0; i < document.pictures.size(); ++i) {
        stream << qint32(document.pictures[i].image);
        parts.push_back({numbered("picture", i), document.pictures[i].uri, true, {}});
    }
    for (size_t i = 0; i < document.otherChunks.size(); ++i) {
        stream << document.otherChunks[i].type;
        parts.push_back({numbered("chunk", i), document.otherChunks[i].bytes, true, {}});
    }
    for (size_t i = 0; i < positions.size(); ++i) {
        if (!positions[i].isEmpty())
            parts.push_back({numbered("positions", i), positions[i], true, {}});
    }
    parts.push_back({"scene", head, false, {}});
    parts.push_back({"tree", document.tree, false, {}});
    parts.push_back({"values", values, false, {}});
    parts.push_back({"selection", selection, false, {}});
    return parts;
}

bool RySceneSnapshot::isKnown(const RySnapshotParts &parts, QString *error)
{
    QDataStream stream(rySnapshotBytes(parts, "scene"));
    stream.setVersion(QDataStream::Qt_5_15);
    quint32 version = 0;
    stream >> version;
    if (version == FormatVersion)
        return true;
    *error = QStringLiteral("it was made by another version of the program");
    return false;
}

std::optional<RySceneSnapshot> RySceneSnapshot::fromParts(const RySnapshotParts &parts, QString *error)
{
    if (!isKnown(parts, error))
        return {};
    RySceneSnapshot snapshot;
    RyGltfParts &document = snapshot.document;
    QDataStream stream(rySnapshotBytes(parts, "scene"));
    stream.setVersion(QDataStream::Qt_5_15);
    quint32 version = 0, buffers = 0, pictures = 0, chunks = 0, meshes = 0;
    stream >> version >> document.path >> document.isBinary >> document.layout >> snapshot.losses;
    stream >> buffers >> pictures >> chunks >> meshes;
    bool hasObj = false;
    stream >> snapshot.hasFile >> hasObj;
    if (hasObj) {
        qint32 node = -1;
        snapshot.obj.emplace();
        stream >> snapshot.obj->path >> snapshot.obj->unit >> snapshot.obj->companions >> node;
        snapshot.obj->node = node;
        snapshot.obj->text = rySnapshotBytes(parts, "obj");
    }
    for (quint32 i = 0; i < buffers && stream.status() == QDataStream::Ok; ++i) {
        quint32 source = 0;
        RyGltfParts::Buffer buffer;
        stream >> source >> buffer.isText;
        buffer.source = RyGltfBuffer::Source(source);
        buffer.bytes = rySnapshotBytes(parts, numbered("buffer", i));
        document.buffers.push_back(std::move(buffer));
    }
    for (quint32 i = 0; i < pictures && stream.status() == QDataStream::Ok; ++i) {
        qint32 image = 0;
        stream >> image;
        document.pictures.push_back({image, rySnapshotBytes(parts, numbered("picture", i))});
    }
    for (quint32 i = 0; i < chunks && stream.status() == QDataStream::Ok; ++i) {
        quint32 type = 0;
        stream >> type;
        document.otherChunks.push_back({type, rySnapshotBytes(parts, numbered("chunk", i))});
    }
    for (quint32 i = 0; i < meshes && stream.status() == QDataStream::Ok; ++i)
        snapshot.positions.push_back(rySnapshotBytes(parts, numbered("positions", i)));
    document.tree = rySnapshotBytes(parts, "tree");
    snapshot.values = rySnapshotBytes(parts, "values");
    snapshot.selection = rySnapshotBytes(parts, "selection");
    if (stream.status() != QDataStream::Ok || document.tree.isEmpty()) {
        *error = QStringLiteral("it is not whole");
        return {};
    }
    return snapshot;
}
