#include "ryhost/commands/OpenedFile.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/unsavedChanges.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

OpenedFile::OpenedFile(RyScene *scene) : m_scene(scene) {}

OpenedFile::Stamp OpenedFile::stampOf(const QString &path)
{
    const QFileInfo info(path);
    return {info.lastModified(), info.size()};
}

void OpenedFile::take(const QString &path, const SavedState &state, bool isSample, const Recovered *before)
{
    m_path = path;
    m_savedState = state;
    m_isSample = isSample;
    m_stamp = before && before->stamp.first.isValid() ? before->stamp : stampOf(path);
    m_mergedBefore = before ? before->mergedFiles : 0;
    const RyScene::Origins &origins = m_scene->getOrigins();
    m_ownOrigins.assign(origins.begin(), origins.end());
}

QString OpenedFile::name() const
{
    return QFileInfo(m_path).fileName();
}

bool OpenedFile::isAt(const QString &path) const
{
    return !m_path.isEmpty() && QFileInfo::exists(path) && QFileInfo(path) == QFileInfo(m_path);
}

bool OpenedFile::savesInPlace() const
{
    return !ownPath().isEmpty() && RySceneFile::writableEndings().contains(QFileInfo(m_path).suffix().toLower());
}

bool OpenedFile::hasEdits() const
{
    return ::hasEdits(*ryUndoStack(), m_savedState);
}

QString OpenedFile::unsavedChanges() const
{
    return ryUndoStack() ? unsavedChangesText(*ryUndoStack(), m_savedState) : QString();
}

int OpenedFile::mergedFiles() const
{
    if (!m_scene)
        return 0;
    const RyScene::Origins &origins = m_scene->getOrigins();
    const auto isMerged = [this](const std::shared_ptr<RySceneOrigin> &origin) {
        return std::none_of(m_ownOrigins.begin(), m_ownOrigins.end(),
                            [&origin](const auto &own) { return own.lock() == origin; });
    };
    return m_mergedBefore + int(std::count_if(origins.begin(), origins.end(), isMerged));
}

QString OpenedFile::whyNotSaved() const
{
    return m_scene->getNodes().empty() ? tr("The scene is empty: there is nothing to save.") : QString();
}

QString OpenedFile::whyNotClosed() const
{
    return m_path.isEmpty() && m_scene->getNodes().empty() ? tr("No file is open.") : QString();
}

QString OpenedFile::whyNotReverted() const
{
    if (m_path.isEmpty())
        return tr("There is no file to go back to: the scene was neither opened nor saved.");
    if (!QFileInfo::exists(m_path))
        return tr("%1 is not there any more.").arg(QDir::toNativeSeparators(m_path));
    if (!hasEdits() && !isWrittenSince())
        return tr("Nothing has changed: the scene is as %1 is on the disk.").arg(name());
    return {};
}
