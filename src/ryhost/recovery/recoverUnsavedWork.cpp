#include "ryhost/recovery/recoverUnsavedWork.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/io/snapshot/RySnapshotState.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "rycore/scene/RyScene.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/recovery/Autosave.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoveryDialog.h"

#include <QCoreApplication>
#include <QDir>
#include <QMessageBox>

#include <new>

namespace {

struct Recovery
{
    Q_DECLARE_TR_FUNCTIONS(Recovery)
};

bool bringBack(std::unique_ptr<RecoverySession> session, RyScene &scene, HostFiles &files, Autosave &autosave,
               QString *error)
{
    RySnapshotParts parts;
    if (!RySnapshotStore::read(session->folder(), &parts, error))
        return false;
    const std::optional<RySceneSnapshot> snapshot = RySceneSnapshot::fromParts(parts, error);
    if (!snapshot)
        return false;
    const RecoveryInfo info = RecoveryInfo::fromBytes(rySnapshotBytes(parts, RecoveryInfo::PartName));
    QStringList messages;
    if (!snapshot->restore(scene, info.path, error, &messages))
        return false;
    for (const QString &message : qAsConst(messages))
        RyMessageLog::global().info(message);
    files.takeRecovered({info.path, info.isSample, info.jointsOnly, info.mergedFiles, info.stamp},
                        info.losses + messages);
    RySnapshotState::applySelection(snapshot->selection, scene); // a window selects something where nothing was
    // Last: what is adopted goes with the next snapshot or the end of the program.
    autosave.adopt(std::move(session));
    return true;
}

} // namespace

bool recoverUnsavedWork(std::unique_ptr<RecoverySession> session, RyScene &scene, HostFiles &files, Autosave &autosave,
                        QString *error)
{
    try {
        return bringBack(std::move(session), scene, files, autosave, error);
    } catch (const std::bad_alloc &) {
        *error = Recovery::tr("it needs more memory than this machine has");
    }
    return false;
}

bool offerUnsavedWork(RyScene &scene, HostFiles &files, Autosave &autosave, const QStringList &asked, QWidget *window)
{
    RecoveryDialog dialog(RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()), window);
    if (dialog.isEmpty() || dialog.exec() != QDialog::Accepted)
        return false;
    std::unique_ptr<RecoverySession> session = dialog.takeChosen();
    if (!session)
        return false;
    const QString folder = QDir::toNativeSeparators(session->folder());
    QString error;
    RyApp::startBusyCursor();
    const bool done = recoverUnsavedWork(std::move(session), scene, files, autosave, &error);
    RyApp::endBusyCursor();
    if (!done) {
        RyMessageLog::global().warning(error);
        QMessageBox::warning(
            window, Recovery::tr("Not Recovered"),
            Recovery::tr(
                "The unsaved work cannot be brought back: %1\n\nIt stays in %2 and is offered again at the next start.")
                .arg(error, folder));
        return false;
    }
    emit files.messagePosted(Recovery::tr("Recovered unsaved work; its undo history is gone. Save to keep it."));
    if (!asked.isEmpty()) {
        QStringList names;
        for (const QString &path : asked)
            names.append(QDir::toNativeSeparators(path));
        QMessageBox::information(
            window, Recovery::tr("Not Opened"),
            Recovery::tr("The recovered work is on the screen, so this was not opened:\n\n%1\n\nSave the recovered "
                         "work, then File > Open opens it.")
                .arg(names.join(QLatin1Char('\n'))));
    }
    return true;
}
