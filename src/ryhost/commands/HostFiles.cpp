#include "ryhost/commands/HostFiles.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QStandardPaths>

#include <memory>

namespace {

constexpr int MostRecentFiles = 10;
const char *const SettingsGroup = "Files";
const char *const RecentKey = "Recent";

QString filterOf(const QStringList &endings, const QString &title)
{
    QStringList patterns;
    for (const QString &ending : endings)
        patterns.append(QStringLiteral("*.") + ending);
    return QStringLiteral("%1 (%2)").arg(title, patterns.join(QLatin1Char(' ')));
}

} // namespace

HostFiles::HostFiles(RyScene *scene, QWidget *window) : QObject(window), m_scene(scene), m_window(window) {}

QString HostFiles::description() const
{
    const RySceneOrigin *origin = m_scene ? m_scene->getOrigin() : nullptr;
    if (!origin)
        return {};
    return tr("1 file unit = %1 cm").arg(origin->unitFactor(), 0, 'g', 6);
}

QStringList HostFiles::recentFiles() const
{
    return RyAppSettings(QString::fromLatin1(SettingsGroup))
        .getStringValue(QString::fromLatin1(RecentKey), QString())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void HostFiles::remember(const QString &path)
{
    QStringList files = recentFiles();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > MostRecentFiles)
        files.removeLast();
    RyAppSettings(QString::fromLatin1(SettingsGroup))
        .setStringValue(QString::fromLatin1(RecentKey), files.join(QLatin1Char('\n')));
    emit recentChanged();
}

void HostFiles::clearRecent()
{
    RyAppSettings(QString::fromLatin1(SettingsGroup)).setStringValue(QString::fromLatin1(RecentKey), QString());
    emit recentChanged();
}

bool HostFiles::isReadable(const QString &path)
{
    return RySceneFile::readableEndings().contains(QFileInfo(path).suffix().toLower());
}

QString HostFiles::folder() const
{
    if (!m_path.isEmpty() && !m_isSample)
        return QFileInfo(m_path).absolutePath();
    const QStringList recent = recentFiles();
    return recent.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                            : QFileInfo(recent.first()).absolutePath();
}

void HostFiles::setPath(const QString &path)
{
    m_path = path;
    emit pathChanged();
}

bool HostFiles::load(const QString &path, bool merge)
{
    QString error;
    QStringList messages;
    RySceneFile::Options options;
    options.merge = merge;
    RyApp::startBusyCursor();
    const bool done = RySceneFile::open(m_scene, path, options, &error, &messages);
    RyApp::endBusyCursor();
    for (const QString &message : messages)
        RyMessageLog::global().info(message);
    if (!done) {
        RyMessageLog::global().warning(error);
        QMessageBox::warning(m_window, tr("Not Opened"), tr("%1\n\nThe scene is as it was before.").arg(error));
        return false;
    }
    noteMessages(path, messages);
    if (!messages.isEmpty())
        emit messagePosted(shortOf(QFileInfo(path).fileName(), messages));
    return true;
}

/// The first note, and how many more there are.
QString HostFiles::shortOf(const QString &what, const QStringList &notes)
{
    return notes.size() == 1
               ? tr("%1: %2").arg(what, notes.first())
               : tr("%1: %2 (and %n more: File, Notes)", nullptr, notes.size() - 1).arg(what, notes.first());
}

void HostFiles::noteMessages(const QString &path, const QStringList &notes)
{
    m_notes = notes;
    m_notedFile = QFileInfo(path).fileName();
    emit notesChanged();
}

void HostFiles::showNotes()
{
    QMessageBox box(QMessageBox::Information, tr("Notes"), tr("About %1:").arg(m_notedFile), QMessageBox::Ok, m_window);
    box.setObjectName(QStringLiteral("NotesBox"));
    box.setInformativeText(m_notes.join(QStringLiteral("\n\n")));
    box.exec();
}

void HostFiles::setSavesJointsOnly(bool onOff)
{
    if (m_jointsOnly == onOff)
        return;
    m_jointsOnly = onOff;
    emit savesJointsOnlyChanged(onOff);
}

bool HostFiles::open(const QString &path, bool isSample)
{
    if (!load(path, false))
        return false;
    setSavesJointsOnly(false);
    m_isSample = isSample;
    setPath(path);
    if (!isSample)
        remember(path);
    emit opened();
    return true;
}

bool HostFiles::openPath(const QString &path)
{
    return open(QFileInfo(path).absoluteFilePath(), false);
}

bool HostFiles::openSample()
{
    return open(RyApp::getHomePath() + QStringLiteral("/samples/mannequin.glb"), true);
}

bool HostFiles::openPathAsking(const QString &path)
{
    return confirmDiscard() && openPath(path);
}

bool HostFiles::mergePath(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    // Opening makes no steps.
    const RyRestoreSpan span(RyRestoreSpan::Scope::Command, tr("Merge %1").arg(QFileInfo(path).fileName()));
    if (!load(absolute, true))
        return false;
    emit opened();
    return true;
}

bool HostFiles::savePath(const QString &path)
{
    QString error;
    QStringList messages, losses;
    RySceneFile::SaveOptions options;
    options.jointsOnly = m_jointsOnly;
    std::unique_ptr<QProgressDialog> progress; // shown only where it takes long
    options.progress = [this, &progress](const QString &figure, double done) {
        if (!progress) {
            progress = std::make_unique<QProgressDialog>(QString(), tr("Write Plain Weights"), 0, 1000, m_window);
            progress->setObjectName(QStringLiteral("FitProgress"));
            progress->setWindowModality(Qt::WindowModal);
            progress->setMinimumDuration(1000);
        }
        progress->setLabelText(tr("Fitting weights to the joints of %1").arg(figure));
        progress->setValue(int(1000 * done));
        return !progress->wasCanceled();
    };
    RyApp::startBusyCursor();
    const bool done = RySceneFile::save(m_scene, path, options, &error, &messages, &losses);
    RyApp::endBusyCursor();
    for (const QString &message : messages)
        RyMessageLog::global().info(message);
    if (!done) {
        RyMessageLog::global().warning(error);
        QMessageBox::warning(m_window, tr("Not Saved"), tr("%1\n\nThe file on disk is as it was before.").arg(error));
        return false;
    }
    m_isSample = false;
    setPath(QFileInfo(path).absoluteFilePath());
    remember(m_path);
    if (!losses.isEmpty()) {
        for (const QString &loss : qAsConst(losses))
            RyMessageLog::global().warning(loss);
        QMessageBox::warning(m_window, tr("Not All Saved"),
                             tr("%1 was written without the following, and the scene still counts as unsaved:\n\n%2")
                                 .arg(QFileInfo(m_path).fileName(), losses.join(QLatin1Char('\n'))));
    }
    noteMessages(m_path, messages);
    emit messagePosted(messages.isEmpty() ? tr("Saved %1").arg(QDir::toNativeSeparators(m_path))
                                          : shortOf(tr("Saved %1").arg(QFileInfo(m_path).fileName()), messages));
    return true;
}

bool HostFiles::confirmDiscard()
{
    if (!ryUndoStack() || ryUndoStack()->isClean())
        return true;
    QMessageBox box(
        QMessageBox::Question, tr("Unsaved Changes"),
        tr("Save the changes to %1 first?").arg(m_path.isEmpty() ? tr("the scene") : QFileInfo(m_path).fileName()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setObjectName(QStringLiteral("UnsavedChangesBox"));
    box.setInformativeText(tr("Without saving they are lost."));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
    case QMessageBox::Save:
        return save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

void HostFiles::openWithDialog()
{
    if (!confirmDiscard())
        return;
    const QString path = QFileDialog::getOpenFileName(
        m_window, tr("Open"), folder(), filterOf(RySceneFile::readableEndings(), tr("Characters and props")));
    if (!path.isEmpty())
        openPath(path);
}

void HostFiles::mergeWithDialog()
{
    const QString path = QFileDialog::getOpenFileName(
        m_window, tr("Merge"), folder(), filterOf(RySceneFile::readableEndings(), tr("Characters and props")));
    if (!path.isEmpty())
        mergePath(path);
}

bool HostFiles::save()
{
    const bool writable = RySceneFile::writableEndings().contains(QFileInfo(m_path).suffix().toLower());
    return m_path.isEmpty() || m_isSample || !writable ? saveAs() : savePath(m_path);
}

bool HostFiles::saveAs()
{
    const QString suggestion = QDir(folder()).filePath(QFileInfo(m_path).completeBaseName() + QStringLiteral(".glb"));
    QString path = QFileDialog::getSaveFileName(
        m_window, tr("Save As"), suggestion, filterOf(RySceneFile::writableEndings(), tr("Files that can be written")));
    if (path.isEmpty())
        return false;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".glb");
    return savePath(path);
}
