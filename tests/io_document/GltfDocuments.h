#pragma once

#include "GltfFixture.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"

#include <QStringList>

#include <memory>

/// Documents read from files in a folder of their own, with what was said about them. Tests inherit from it.
class GltfDocuments
{
protected:
    std::unique_ptr<RyGltfDocument> open(const QByteArray &bytes = GltfFixture::skinnedGlb(),
                                         const QString &name = QStringLiteral("p.glb"))
    {
        m_warnings.clear();
        m_error.clear();
        return RyGltfDocument::read(GltfFixture::put(m_folder, name, bytes), &m_error, &m_warnings);
    }
    std::unique_ptr<RyGltfDocument> reopened(const RyGltfDocument &document,
                                             const QString &ending = QStringLiteral("glb"))
    {
        return open(document.toBytes(ending), "again." + ending);
    }

    QTemporaryDir m_folder;
    QString m_error;
    QStringList m_warnings;
};
