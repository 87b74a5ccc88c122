#include "ryhost/commands/HostFiles.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestoreSpan.h"
#include "ryhost/commands/FileNotes.h"
#include "ryhost/commands/ImportProgress.h"
#include "ryhost/commands/RecentFiles.h"
#include "ryhost/commands/timeText.h"
#include "ryhost/commands/writeScene.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

static const char *const DefaultEnding = "glb";

HostFiles::HostFiles(RyScene *scene, QWidget *window)
    : QObject(window), m_scene(scene), m_window(window), m_recent(new RecentFiles(this)),
      m_notes(new FileNotes(window)), m_dialogs(window, m_recent), m_file(scene)
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
    const QString name = path().isEmpty()    ? tr("Untitled")
                         : m_file.isSample() ? m_file.name()
                                             : m_recent->labelOf(path());
    const int merged = m_file.mergedFiles();
    if (merged == 0)
        return name;
    return merged == 1 ? tr("%1 + 1 file").arg(name) : tr("%1 + %n files", nullptr, merged).arg(name);
}

QStringList HostFiles::recentFiles() const
{
    return m_recent->paths();
}

bool HostFiles::isReadable(const QString &path)
{
    return RySceneFile::readableEndings().contains(QFileInfo(path).suffix().toLower());
}

void HostFiles::setFile(const QString &path, const SavedState &state, bool isSample,
                        const OpenedFile::Recovered *before)
{
    m_file.take(path, state, isSample, before);
    if (!m_file.ownPath().isEmpty()) {
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
    m_notes->take(path, messages);
    if (!messages.isEmpty())
        emit messagePosted(m_notes->shortText(QFileInfo(path).fileName()));
    return true;
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
    m_notes->take(QString(), {});
    setFile(QString(), SavedState::now(SavedState::Started), false);
    emit messagePosted(tr("An empty scene. File > Merge adds files to it, File > Open replaces it."));
    return true;
}

bool HostFiles::closeFile()
{
    const QString name = title();
    if (!newScene())
        return false;
    emit messagePosted(tr("Closed %1. The scene is empty.").arg(name));
    return true;
}

bool HostFiles::revert()
{
    const QString reason = m_file.whyNotReverted();
    if (!reason.isEmpty()) {
        emit messagePosted(reason);
        return false;
    }
    QStringList lost;
    if (m_file.hasEdits())
        lost.append(tr("This is lost, and undo does not bring it back:\n%1").arg(m_file.unsavedChanges()));
    if (const int merged = m_file.mergedFiles(); merged > 0)
        lost.append(merged == 1 ? tr("What was merged from another file goes too.")
                                : tr("What was merged from %n other files goes too.", nullptr, merged));
    if (m_file.isWrittenSince())
        lost.append(tr("The file on the disk is another one by now: another program has written it."));
    QMessageBox box(QMessageBox::Question, tr("Revert"), tr("Open %1 again as it is on the disk?").arg(m_file.name()),
                    QMessageBox::Cancel, m_window);
    box.setObjectName(QStringLiteral("RevertBox"));
    box.setInformativeText(lost.join(QStringLiteral("\n\n")));
    const QPushButton *revert = box.addButton(tr("Revert"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() != revert || !open(path(), m_file.isSample()))
        return false;
    emit messagePosted(tr("%1 is as it is on the disk.").arg(m_file.name()));
    return true;
}

void HostFiles::takeRecovered(const OpenedFile::Recovered &work, const QStringList &notes)
{
    setSavesJointsOnly(work.jointsOnly);
    setFile(work.path, SavedState::now(SavedState::Recovered), work.isSample, &work);
    m_notes->take(work.path, notes);
    emit opened();
}

bool HostFiles::mayReplace(const QString &path, bool *savedElsewhere)
{
    if (!m_file.isAt(path) || !m_file.isWrittenSince())
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
            written.losses.isEmpty() ? SavedState::now(SavedState::Saved) : m_file.savedState(), false);
    tellLosses(path, written.losses, true);
    m_notes->take(this->path(), written.messages);
    emit messagePosted(written.messages.isEmpty() ? tr("Saved %1").arg(QDir::toNativeSeparators(this->path()))
                                                  : m_notes->shortText(tr("Saved %1").arg(m_file.name())));
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
    if (!m_file.isAt(path))
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
    m_notes->take(path, notes);
    const QString name = QFileInfo(path).fileName();
    const QString done = isExport ? tr("Exported %1") : tr("Saved a copy as %1");
    emit messagePosted(notes.isEmpty() ? done.arg(QDir::toNativeSeparators(path)) : m_notes->shortText(done.arg(name)));
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
    const QString name = path().isEmpty() ? tr("the scene") : m_file.name();
    const bool isForeign = RySceneFile::isForeign(path());
    QMessageBox box(
        QMessageBox::Question, tr("Unsaved Changes"),
        (isForeign ? tr("Save what was read from %1 as glTF first?") : tr("Save the changes to %1 first?")).arg(name),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setObjectName(QStringLiteral("UnsavedChangesBox"));
    const SavedState::Kind kind = m_file.savedState().kind;
    const bool isAllLost = kind == SavedState::Recovered || kind == SavedState::Imported;
    box.setInformativeText(isForeign   ? tr("%1\n%2 itself stays as it is.").arg(m_file.unsavedChanges(), name)
                           : isAllLost ? tr("%1\nWithout saving all of it is lost.").arg(m_file.unsavedChanges())
                                       : tr("%1\nWithout saving they are lost.").arg(m_file.unsavedChanges()));
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
    const QString path = m_dialogs.askForOpening(tr("Open"), m_file.ownPath());
    if (!path.isEmpty())
        openPath(path);
}

void HostFiles::mergeWithDialog()
{
    const QString path = m_dialogs.askForOpening(tr("Merge"), m_file.ownPath());
    if (!path.isEmpty())
        mergePath(path);
}

QString HostFiles::suggestion(const QString &behind) const
{
    const QString base = path().isEmpty() ? tr("untitled") : QFileInfo(path()).completeBaseName();
    return QDir(m_dialogs.folderFor(m_file.ownPath()))
        .filePath(base + behind + QLatin1Char('.') + QLatin1String(DefaultEnding));
}

bool HostFiles::save()
{
    return m_file.savesInPlace() ? savePath(path()) : saveAs();
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
