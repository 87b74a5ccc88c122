#include "rycore/io/foreign/RyFileContent.h"

#include <QList>

namespace {

struct Kind
{
    const char *ending;
    const char *name;
};

QByteArray withoutByteOrderMark(const QByteArray &start)
{
    return start.startsWith("\xEF\xBB\xBF") ? start.mid(3) : start;
}

/// Null for a kind of which nobody is sure.
const Kind *kindOf(const QByteArray &start)
{
    static constexpr Kind Fbx = {"fbx", "an FBX file"};
    static constexpr Kind Collada = {"dae", "a Collada file"};
    static constexpr Kind Bvh = {"bvh", "a BVH file"};
    static constexpr Kind Binary = {"glb", "a binary glTF file"};
    static constexpr Kind Text = {"gltf", "a glTF file"};
    const QByteArray text = withoutByteOrderMark(start).trimmed();
    if (start.startsWith("glTF"))
        return &Binary;
    if (start.startsWith("Kaydara FBX Binary") || text.startsWith("; FBX"))
        return &Fbx;
    if (text.startsWith('{') && text.contains("\"asset\""))
        return &Text;
    if (text.startsWith("HIERARCHY"))
        return &Bvh;
    if (text.startsWith('<') && text.contains("<COLLADA"))
        return &Collada;
    return nullptr;
}

/// Whether the first line that says something is one of a text with vertices and facets.
bool isObj(const QByteArray &start)
{
    static const QList<QByteArray> keys{"v", "vn", "vt", "f", "o", "g", "s", "l", "mtllib", "usemtl"};
    if (start.contains('\0'))
        return false;
    for (const QByteArray &line : withoutByteOrderMark(start).split('\n')) {
        const QByteArray text = line.simplified();
        if (text.isEmpty() || text.startsWith('#'))
            continue;
        return text.contains(' ') && keys.contains(text.left(text.indexOf(' ')));
    }
    return false;
}

} // namespace

QString RyFileContent::endingOf(const QByteArray &start)
{
    if (const Kind *kind = kindOf(start))
        return QString::fromLatin1(kind->ending);
    // What says that it is glTF may come late.
    if (withoutByteOrderMark(start).trimmed().startsWith('{'))
        return QStringLiteral("gltf");
    return isObj(start) ? QStringLiteral("obj") : QString();
}

QString RyFileContent::findMismatch(const QString &ending, const QByteArray &start)
{
    if (start.startsWith("PK\x03\x04") || start.startsWith("\x1f\x8b"))
        return QStringLiteral("this is a packed archive; unpack it and open what is in it");
    const Kind *kind = kindOf(start);
    if (!kind || ending == QLatin1String(kind->ending))
        return {};
    return QStringLiteral("by its content this is %1; renamed to end in .%2 it can be opened")
        .arg(QLatin1String(kind->name), QLatin1String(kind->ending));
}
