#include "foreign_reader/ConvertedFile.h"

#include "io/CharacterScene.h"
#include "rycore/scene/RyBone.h"
#include "ryforeign/RyForeignRead.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

ConvertedFile::ConvertedFile(const QString &path, double unit)
{
    RyForeignRequest request;
    request.path = path;
    request.unit = unit;
    RyForeignResult result;
    const bool isRead = ryReadForeign(request, result);
    notes = result.notes;
    reason = result.error;
    if (!isRead)
        return;
    glb = m_folder.filePath(QFileInfo(path).completeBaseName() + QStringLiteral(".glb"));
    QFile file(glb);
    if (!file.open(QIODevice::WriteOnly) || file.write(result.glb) != result.glb.size()) {
        reason = QStringLiteral("cannot write the result");
        return;
    }
    file.close();
    character = std::make_unique<CharacterScene>(glb);
}

ConvertedFile::~ConvertedFile() = default;

RyBone *ConvertedFile::bone(const QString &name) const
{
    for (RyBone *each : character->bones()) {
        if (each->getName() == name)
            return each;
    }
    return nullptr;
}

QStringList ConvertedFile::boneNames() const
{
    QStringList names;
    for (const RyBone *each : character->bones())
        names.append(each->getName());
    return names;
}

TextFile::TextFile(const QString &name, const QByteArray &text) : path(m_folder.filePath(name))
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
}
