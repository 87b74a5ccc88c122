#include "rycore/io/obj/RyObjLooks.h"

#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/io/gltf/file/RyGltfUri.h"

#include <QFileInfo>

#include <algorithm>

namespace {

/// Some programs write the separators of their own system.
QString plainName(QString name)
{
    return name.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString pathOf(const QString &name, const QString &folder)
{
    // A name is no URI: a percent sign in it stands for itself.
    return RyGltfUri::filePath(QString(name).replace(QLatin1Char('%'), QLatin1String("%25")).toStdString(), folder);
}

} // namespace

void RyObjLooks::say(const QString &message)
{
    constexpr int most = 100;
    if (m_messages && m_messageCount < most)
        m_messages->append(message);
    else if (m_messages && m_messageCount == most)
        m_messages->append(QStringLiteral("There are more messages about materials"));
    ++m_messageCount;
}

bool RyObjLooks::readFile(const QString &name, const QString &what, QByteArray &bytes)
{
    try {
        bytes = RyGltfUri::readFile(pathOf(name, m_folder));
        if (!m_files.contains(name))
            m_files.append(name);
        return true;
    } catch (const RyGltfError &refusal) {
        say(QStringLiteral("The %1 \"%2\" is left out: %3").arg(what, name.left(200), refusal.message()));
        return false;
    }
}

bool RyObjLooks::isThere(const QString &name) const
{
    try {
        return QFileInfo(pathOf(name, m_folder)).isFile();
    } catch (const RyGltfError &) {
        return false;
    }
}

void RyObjLooks::readLibraries(const QString &names)
{
    const QString whole = plainName(names);
    const QStringList words = whole.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    bool isList = words.size() > 1 && !isThere(whole);
    if (isList && std::none_of(words.begin(), words.end(), [this](const QString &word) { return isThere(word); }))
        isList = false;
    for (const QString &name : isList ? words : QStringList(whole)) {
        if (!m_libraries.contains(name)) {
            m_libraries.insert(name);
            readLibrary(name);
        }
    }
}

void RyObjLooks::readLibrary(const QString &name)
{
    QByteArray text;
    if (!readFile(name, QStringLiteral("material library"), text))
        return;
    const QString folder = name.left(name.lastIndexOf(QLatin1Char('/')) + 1);
    for (const RyMtlFile::Material &material : RyMtlFile(text).materials) {
        if (!m_materials.contains(material.name))
            m_materials.insert(material.name, {material, folder});
    }
}

RyObjLooks::Picture RyObjLooks::picture(const Known &known)
{
    // Beside the library, or else beside the OBJ file.
    const QString named = plainName(known.material.picture);
    const QString name = !known.folder.isEmpty() && isThere(known.folder + named) ? known.folder + named : named;
    const auto read = m_pictures.constFind(name);
    if (read != m_pictures.constEnd())
        return *read;
    Picture picture;
    if (readFile(name, QStringLiteral("picture"), picture.bytes)) {
        picture.image = QImage::fromData(picture.bytes);
        if (picture.image.isNull()) {
            say(QStringLiteral("The picture \"%1\" is left out: it is no picture that can be shown").arg(name));
            picture.bytes.clear();
        }
    }
    m_pictures.insert(name, picture);
    return picture;
}

RyMaterialLook RyObjLooks::lookOf(const QString &material)
{
    RyMaterialLook look;
    look.name = material;
    const auto known = m_materials.constFind(material);
    if (known == m_materials.constEnd()) {
        say(QStringLiteral("The material \"%1\" is in no material library of the file").arg(material.left(200)));
        return look;
    }
    const RyMtlFile::Material &found = known->material;
    look.baseColor = {found.diffuse[0], found.diffuse[1], found.diffuse[2], found.opacity};
    if (found.picture.isEmpty())
        return look;
    const Picture shown = picture(*known);
    look.picture = shown.bytes;
    look.texture = shown.image;
    if (!shown.bytes.isEmpty())
        look.pictureName = plainName(found.picture).section(QLatin1Char('/'), -1);
    return look;
}
