#include "rycore/io/foreign/RyForeignContent.h"

namespace {

struct Kind
{
    const char *ending;
    const char *name;
};

/// Null for a kind that cannot be told.
const Kind *kindOf(const QByteArray &start)
{
    static constexpr Kind Fbx = {"fbx", "an FBX file"};
    static constexpr Kind Collada = {"dae", "a Collada file"};
    static constexpr Kind Bvh = {"bvh", "a BVH file"};
    static constexpr Kind Binary = {"glb", "a binary glTF file"};
    static constexpr Kind Text = {"gltf", "a glTF file"};
    const QByteArray text = (start.startsWith("\xEF\xBB\xBF") ? start.mid(3) : start).trimmed();
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

} // namespace

QString RyForeignContent::endingOf(const QByteArray &start)
{
    const Kind *kind = kindOf(start);
    return kind ? QString::fromLatin1(kind->ending) : QString();
}

QString RyForeignContent::findMismatch(const QString &ending, const QByteArray &start)
{
    if (start.startsWith("PK\x03\x04") || start.startsWith("\x1f\x8b"))
        return QStringLiteral("this is a packed archive; unpack it and open what is in it");
    const Kind *kind = kindOf(start);
    if (!kind || ending == QLatin1String(kind->ending))
        return {};
    return QStringLiteral("by its content this is %1; renamed to end in .%2 it can be opened")
        .arg(QLatin1String(kind->name), QLatin1String(kind->ending));
}
