#include "ryhost/commands/writeScene.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyMessageLog.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QProgressDialog>

#include <memory>

namespace {

struct Writing
{
    Q_DECLARE_TR_FUNCTIONS(HostFiles)
};

} // namespace

WrittenScene writeScene(RyScene *scene, QWidget *window, const QString &path, RySceneFile::SaveOptions options)
{
    WrittenScene written;
    std::unique_ptr<QProgressDialog> progress; // shown only where it takes long
    options.progress = [window, &progress](const QString &figure, double done) {
        if (!progress) {
            progress =
                std::make_unique<QProgressDialog>(QString(), Writing::tr("Write Plain Weights"), 0, 1000, window);
            progress->setObjectName(QStringLiteral("FitProgress"));
            progress->setWindowModality(Qt::WindowModal);
            progress->setMinimumDuration(1000);
        }
        progress->setLabelText(Writing::tr("Fitting weights to the joints of %1").arg(figure));
        progress->setValue(int(1000 * done));
        return !progress->wasCanceled();
    };
    options.withoutExtras = &written.withoutExtras;
    QString error;
    RyApp::startBusyCursor();
    written.done = RySceneFile::save(scene, path, options, &error, &written.messages, &written.losses);
    RyApp::endBusyCursor();
    for (const QString &message : qAsConst(written.messages))
        RyMessageLog::global().info(message);
    for (const QString &loss : qAsConst(written.losses))
        RyMessageLog::global().warning(loss);
    if (!written.done) {
        RyMessageLog::global().warning(error);
        QMessageBox::warning(window, Writing::tr("Not Saved"),
                             Writing::tr("%1\n\nThe file on disk is as it was before.").arg(error));
    }
    return written;
}
