#include "ryforeign/RyForeignFile.h"

#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include <QFile>
#include <QFileInfo>

namespace {

class Progress : public Assimp::ProgressHandler
{
public:
    explicit Progress(const std::function<bool(double)> &told) : m_told(told) {}

    bool Update(float done) override
    {
        m_isWanted = m_isWanted && (done < 0.0f || m_told(double(done)));
        return m_isWanted;
    }
    bool isWanted() const { return m_isWanted; }

private:
    const std::function<bool(double)> &m_told;
    bool m_isWanted = true;
};

} // namespace

RyForeignFile::RyForeignFile() : m_importer(std::make_unique<Assimp::Importer>())
{
    // Pivots become part of the nodes, or each bone would be a chain of them.
    m_importer->SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    m_importer->SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_ALL_GEOMETRY_LAYERS, true);
    // A bone without weights is a bone.
    m_importer->SetPropertyBool(AI_CONFIG_IMPORT_REMOVE_EMPTY_BONES, false);
    m_importer->SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
}

RyForeignFile::~RyForeignFile() = default;

const aiScene *RyForeignFile::read(const QString &path, const QByteArray &instead,
                                   const std::function<bool(double)> &progress, QString *error)
{
    Progress handler(progress);
    m_importer->SetProgressHandler(&handler);
    const aiScene *scene = instead.isEmpty()
                               ? m_importer->ReadFile(QFile::encodeName(path).constData(), 0)
                               : m_importer->ReadFileFromMemory(instead.constData(), size_t(instead.size()), 0,
                                                                QFileInfo(path).suffix().toLatin1().constData());
    m_importer->SetProgressHandler(nullptr);
    if (!handler.isWanted()) {
        *error = QStringLiteral("reading was cancelled");
        return nullptr;
    }
    if (!scene || !scene->mRootNode) {
        QString reason = QString::fromUtf8(m_importer->GetErrorString());
        reason.remove(path + QLatin1Char(':')); // whoever asked names the file
        reason.remove(path);
        *error = explain(reason);
        return nullptr;
    }
    return scene;
}

QString RyForeignFile::explain(const QString &reason)
{
    const QString wayOut = QStringLiteral("; export it as glTF 2.0 from the program that made it");
    if (reason.contains(QLatin1String("old format version")) || reason.contains(QLatin1String("unsupported, old")))
        return QStringLiteral("it is an FBX file older than FBX 2011 (7.1), which cannot be read") + wayOut;
    if (reason.contains(QLatin1String("No suitable reader")))
        return QStringLiteral("its contents are not what its ending says") + wayOut;
    if (reason.contains(QLatin1String("bad_alloc")))
        return QStringLiteral("it needs more memory than there is") + wayOut;
    const QString plain = reason.trimmed();
    return (plain.isEmpty() ? QStringLiteral("it cannot be read")
                            : QStringLiteral("it cannot be read (%1)").arg(plain.left(300))) +
           wayOut;
}
