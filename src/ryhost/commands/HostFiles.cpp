#include "ryhost/commands/HostFiles.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestoreSpan.h"
#include "ryhost/commands/ImportProgress.h"
#include "ryhost/commands/RecentFiles.h"
#include "ryhost/commands/writeScene.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace {

const char *const DefaultEnding = "glb";

bool isWritable(const QString &path)
{
    return RySceneFile::writableEndings().contains(QFileInfo(path).suffix().toLower());
}

} // namespace

HostFiles::HostFiles(RyScene *scene, QWidget *window)
    : QObject(window), m_scene(scene), m_window(window), m_recent(new RecentFiles(this)), m_dialogs(window, m_recent)
{
    connect(scene, &RyScene::originChanged, this, &HostFiles::titleChanged);
    connect(m_recent, &RecentFiles::changed, this, &HostFiles::titleChanged);
}

QString HostFiles::description() const
{
    const RySceneOrigin *origin = m_scene ? m_scene->getOrigin() : nullptr;
    if (!origin)
        return {};
    return tr("1 file unit = %1 cm").arg(origin->unitFactor(), 0, 'g', 6);
}

QString HostFiles::title() const
{
    const QString name = m_path.isEmpty() ? tr("Untitled")
                         : m_isSample     ? QFileInfo(m_path).fileName()
                                          : m_recent->labelOf(m_path);
    const int merged = mergedFiles();
    if (merged == 0)
        return name;
    return merged == 1 ? tr("%1 + 1 file").arg(name) : tr("%1 + %n files", nullptr, merged).arg(name);
}

int HostFiles::mergedFiles() const
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

QStringList HostFiles::recentFiles() const
{
    return m_recent->paths();
}

bool HostFiles::isReadable(const QString &path)
{
    return RySceneFile::readableEndings().contains(QFileInfo(path).suffix().toLower());
}

QString HostFiles::unsavedChanges() const
{
    return ryUndoStack() ? unsavedChangesText(*ryUndoStack(), m_savedState) : QString();
}

HostFiles::Stamp HostFiles::stampOf(const QString &path)
{
    const QFileInfo info(path);
    return {info.lastModified(), info.size()};
}

void HostFiles::setFile(const QString &path, const SavedState &state, bool isSample, const Recovered *before)
{
    m_path = path;
    m_savedState = state;
    m_isSample = isSample;
    m_stamp = before && before->stamp.first.isValid() ? before->stamp : stampOf(path);
    m_mergedBefore = before ? before->mergedFiles : 0;
    const RyScene::Origins &origins = m_scene->getOrigins();
    m_ownOrigins.assign(origins.begin(), origins.end());
    if (!ownPath().isEmpty()) {
        m_recent->add(path);
        m_dialogs.rememberFolderOf(path);
    }
    emit pathChanged();
    emit titleChanged();
}

bool HostFiles::load(const QString &path, bool merge)
{
    QString error;
    QStringList messages;
    RySceneFile::Options options;
    options.merge = merge;
    std::unique_ptr<ImportProgress> progress;
    if (RySceneFile::isForeign(path)) {
        progress = std::make_unique<ImportProgress>(QFileInfo(path).fileName(), merge, m_window);
        options.progress = [&progress](double done) { return progress->step(done); };
    }
    RyApp::startBusyCursor();
    const bool done = RySceneFile::open(m_scene, path, options, &error, &messages);
    RyApp::endBusyCursor();
    const bool cancelled = progress && progress->isCancelled();
    progress.reset();
    for (const QString &message : messages)
        RyMessageLog::global().info(message);
    if (!done && cancelled) {
        emit messagePosted(
            (merge ? tr("%1 was not merged: it was cancelled.") : tr("%1 was not opened: it was cancelled."))
                .arg(QFileInfo(path).fileName()));
        return false;
    }
    if (!done) {
        RyMessageLog::global().warning(error);
        QMessageBox::warning(m_window, merge ? tr("Not Merged") : tr("Not Opened"),
                             tr("%1\n\nThe scene is as it was before.").arg(error));
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
    SavedState state = SavedState::now(RySceneFile::isForeign(path) ? SavedState::Imported : SavedState::Opened);
    state.file = QFileInfo(path).fileName();
    setFile(path, state, isSample);
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

bool HostFiles::openSampleAsking()
{
    return confirmDiscard() && openSample();
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
    m_dialogs.rememberFolderOf(absolute);
    emit opened();
    return true;
}

bool HostFiles::newScene()
{
    if (!confirmDiscard())
        return false;
    RySceneFile::close(m_scene);
    setSavesJointsOnly(false);
    noteMessages(QString(), {});
    setFile(QString(), SavedState::now(SavedState::Started), false);
    emit messagePosted(tr("An empty scene. File > Merge adds files to it, File > Open replaces it."));
    return true;
}

QString HostFiles::whyNotClosed() const
{
    return m_path.isEmpty() && m_scene->getNodes().empty() ? tr("No file is open.") : QString();
}

bool HostFiles::closeFile()
{
    const QString name = title();
    if (!newScene())
        return false;
    emit messagePosted(tr("Closed %1. The scene is empty.").arg(name));
    return true;
}

QString HostFiles::whyNotReverted() const
{
    if (m_path.isEmpty())
        return tr("There is no file to go back to: the scene was neither opened nor saved.");
    const QString name = QFileInfo(m_path).fileName();
    if (!QFileInfo::exists(m_path))
        return tr("%1 is not there any more.").arg(QDir::toNativeSeparators(m_path));
    if (!hasEdits(*ryUndoStack(), m_savedState) && stampOf(m_path) == m_stamp)
        return tr("Nothing has changed: the scene is as %1 is on the disk.").arg(name);
    return {};
}

bool HostFiles::revert()
{
    const QString reason = whyNotReverted();
    if (!reason.isEmpty()) {
        emit messagePosted(reason);
        return false;
    }
    QStringList lost;
    if (hasEdits(*ryUndoStack(), m_savedState))
        lost.append(tr("This is lost, and undo does not bring it back:\n%1").arg(unsavedChanges()));
    if (const int merged = mergedFiles(); merged > 0)
        lost.append(merged == 1 ? tr("What was merged from another file goes too.")
                                : tr("What was merged from %n other files goes too.", nullptr, merged));
    if (stampOf(m_path) != m_stamp)
        lost.append(tr("The file on the disk is another one by now: another program has written it."));
    QMessageBox box(QMessageBox::Question, tr("Revert"),
                    tr("Open %1 again as it is on the disk?").arg(QFileInfo(m_path).fileName()), QMessageBox::Cancel,
                    m_window);
    box.setObjectName(QStringLiteral("RevertBox"));
    box.setInformativeText(lost.join(QStringLiteral("\n\n")));
    const QPushButton *revert = box.addButton(tr("Revert"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() != revert || !open(m_path, m_isSample))
        return false;
    emit messagePosted(tr("%1 is as it is on the disk.").arg(QFileInfo(m_path).fileName()));
    return true;
}

void HostFiles::takeRecovered(const Recovered &work, const QStringList &notes)
{
    setSavesJointsOnly(work.jointsOnly);
    setFile(work.path, SavedState::now(SavedState::Recovered), work.isSample, &work);
    noteMessages(work.path, notes);
    emit opened();
}

bool HostFiles::mayReplace(const QString &path, bool *savedElsewhere)
{
    if (m_path.isEmpty() || QFileInfo(path) != QFileInfo(m_path) || !QFileInfo::exists(path) ||
        stampOf(m_path) == m_stamp)
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Written Meanwhile"),
                    tr("Replace %1, which another program has written since?").arg(QFileInfo(path).fileName()),
                    QMessageBox::Cancel, m_window);
    box.setObjectName(QStringLiteral("WrittenMeanwhileBox"));
    box.setInformativeText(
        tr("It was written at %1. Replacing it loses what it holds now; Save As writes another file.")
            .arg(timeTextOf(QFileInfo(path).lastModified())));
    const QPushButton *replace = box.addButton(tr("Replace"), QMessageBox::DestructiveRole);
    const QPushButton *elsewhere = box.addButton(tr("Save As..."), QMessageBox::AcceptRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() == elsewhere)
        *savedElsewhere = saveAs();
    return box.clickedButton() == replace;
}

bool HostFiles::savePath(const QString &path)
{
    bool savedElsewhere = false;
    if (!mayReplace(path, &savedElsewhere))
        return savedElsewhere;
    RySceneFile::SaveOptions options;
    options.jointsOnly = m_jointsOnly;
    const WrittenScene written = writeScene(m_scene, m_window, path, options);
    if (!written.done)
        return false;
    // With losses the scene goes on counting from what it counted from.
    setFile(QFileInfo(path).absoluteFilePath(),
            written.losses.isEmpty() ? SavedState::now(SavedState::Saved) : m_savedState, false);
    tellLosses(path, written.losses, true);
    noteMessages(m_path, written.messages);
    emit messagePosted(written.messages.isEmpty()
                           ? tr("Saved %1").arg(QDir::toNativeSeparators(m_path))
                           : shortOf(tr("Saved %1").arg(QFileInfo(m_path).fileName()), written.messages));
    return true;
}

void HostFiles::tellLosses(const QString &path, const QStringList &losses, bool isSave)
{
    if (losses.isEmpty())
        return;
    const QString name = QFileInfo(path).fileName();
    const QString text = isSave
                             ? tr("%1 was written without the following, and the scene still counts as unsaved:\n\n%2")
                             : tr("%1 was written without the following:\n\n%2");
    QMessageBox::warning(m_window, tr("Not All Saved"), text.arg(name, losses.join(QLatin1Char('\n'))));
}

bool HostFiles::refuseOwnFile(const QString &path, const QString &title)
{
    if (m_path.isEmpty() || !QFileInfo::exists(path) || QFileInfo(path) != QFileInfo(m_path))
        return false;
    QMessageBox::warning(m_window, title,
                         tr("%1 is the file that is open. Choose another name; File > Save writes the file itself.")
                             .arg(QFileInfo(path).fileName()));
    return true;
}

bool HostFiles::writeAside(const QString &path, bool isExport)
{
    RySceneFile::SaveOptions options;
    options.jointsOnly = m_jointsOnly;
    options.purpose = isExport ? RySceneFile::Export : RySceneFile::Copy;
    const WrittenScene written = writeScene(m_scene, m_window, path, options);
    if (!written.done)
        return false;
    m_dialogs.rememberFolderOf(path);
    tellLosses(path, written.losses, false);
    QStringList notes = written.messages;
    if (!written.withoutExtras.isEmpty())
        notes.prepend(
            tr("Without our extras the file does not hold %1").arg(written.withoutExtras.join(QStringLiteral("; "))));
    noteMessages(path, notes);
    const QString name = QFileInfo(path).fileName();
    const QString done = isExport ? tr("Exported %1") : tr("Saved a copy as %1");
    emit messagePosted(notes.isEmpty() ? done.arg(QDir::toNativeSeparators(path)) : shortOf(done.arg(name), notes));
    return true;
}

bool HostFiles::saveCopyTo(const QString &path)
{
    return !refuseOwnFile(path, tr("Save a Copy")) && writeAside(path, false);
}

bool HostFiles::exportTo(const QString &path)
{
    return !refuseOwnFile(path, tr("Export Without Extras")) && writeAside(path, true);
}

bool HostFiles::confirmDiscard()
{
    if (!ryUndoStack() || ryUndoStack()->isClean())
        return true;
    const QString name = m_path.isEmpty() ? tr("the scene") : QFileInfo(m_path).fileName();
    const bool isForeign = RySceneFile::isForeign(m_path);
    QMessageBox box(
        QMessageBox::Question, tr("Unsaved Changes"),
        (isForeign ? tr("Save what was read from %1 as glTF first?") : tr("Save the changes to %1 first?")).arg(name),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setObjectName(QStringLiteral("UnsavedChangesBox"));
    const bool isAllLost = m_savedState.kind == SavedState::Recovered || m_savedState.kind == SavedState::Imported;
    box.setInformativeText(isForeign   ? tr("%1\n%2 itself stays as it is.").arg(unsavedChanges(), name)
                           : isAllLost ? tr("%1\nWithout saving all of it is lost.").arg(unsavedChanges())
                                       : tr("%1\nWithout saving they are lost.").arg(unsavedChanges()));
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
    const QString path = m_dialogs.askForOpening(tr("Open"), ownPath());
    if (!path.isEmpty())
        openPath(path);
}

void HostFiles::mergeWithDialog()
{
    const QString path = m_dialogs.askForOpening(tr("Merge"), ownPath());
    if (!path.isEmpty())
        mergePath(path);
}

QString HostFiles::suggestion(const QString &behind) const
{
    const QString base = m_path.isEmpty() ? tr("untitled") : QFileInfo(m_path).completeBaseName();
    return QDir(m_dialogs.folderFor(ownPath()))
        .filePath(base + behind + QLatin1Char('.') + QLatin1String(DefaultEnding));
}

QString HostFiles::whyNotSaved() const
{
    return m_scene->getNodes().empty() ? tr("The scene is empty: there is nothing to save.") : QString();
}

bool HostFiles::savesInPlace() const
{
    return !ownPath().isEmpty() && isWritable(m_path);
}

bool HostFiles::save()
{
    return savesInPlace() ? savePath(m_path) : saveAs();
}

bool HostFiles::saveAs()
{
    const QString path = m_dialogs.askForWriting(tr("Save As"), suggestion(QString()), RySceneFile::writableEndings());
    return !path.isEmpty() && savePath(path);
}

bool HostFiles::saveCopy()
{
    const QString path =
        m_dialogs.askForWriting(tr("Save a Copy"), suggestion(tr(" copy")), RySceneFile::writableEndings());
    return !path.isEmpty() && saveCopyTo(path);
}

bool HostFiles::exportWithoutExtras()
{
    // An OBJ file has no extras.
    const QString path = m_dialogs.askForWriting(tr("Export Without Extras"), suggestion(tr(" export")),
                                                 {QStringLiteral("glb"), QStringLiteral("gltf")});
    return !path.isEmpty() && exportTo(path);
}
