#include "ryhost/batch/BatchOutput.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/io/RySafeFile.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/batch/BatchChecks.h"
#include "ryhost/batch/BatchLog.h"
#include "ryhost/batch/BatchStreams.h"
#include "ryhost/batch/activateJointEditor.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QImageWriter>
#include <QJsonDocument>

bool BatchOutput::saveScene(const QString &path, bool jointsOnly, QStringList *losses, QString *error)
{
    RySceneFile::SaveOptions options;
    options.jointsOnly = jointsOnly;
    QStringList messages;
    std::vector<RyFigureFits::Fit> fits;
    options.fits = &fits;
    const bool saved = RySceneFile::save(m_window.getScene(), path, options, error, &messages, losses);
    for (const RyFigureFits::Fit &fit : fits)
        m_log.addFit(fit);
    for (const QString &message : qAsConst(messages))
        m_log.say(message);
    if (saved)
        m_log.addWritten(m_streams.named(path));
    return saved;
}

ExitCode BatchOutput::save(const BatchStep &step)
{
    QString error;
    QStringList losses;
    const bool toStream = step.writesStandardOutput();
    const QString format = step.format.isEmpty() ? QStringLiteral("glb") : step.format;
    const QString path = toStream ? m_streams.outputFile(format, &error) : step.value;
    if ((toStream && path.isEmpty()) || !saveScene(path, step.jointsOnly, &losses, &error) ||
        (toStream && !m_streams.sendFile(path, &error)))
        return m_log.fail(ExitCode::CannotWrite, error);
    if (losses.isEmpty())
        return ExitCode::Done;
    return m_log.fail(
        ExitCode::CannotWrite,
        QStringLiteral("%1 was written, but not all of the scene: %2").arg(path, losses.join(QStringLiteral("; "))));
}

ExitCode BatchOutput::saveTo(const BatchStep &step)
{
    const QDir folder(step.value);
    if (!folder.mkpath(QStringLiteral("."))) {
        return m_log.fail(
            ExitCode::CannotWrite,
            QStringLiteral("--save-to: the folder %1 is not there and cannot be made; a file may have its name, "
                           "or the folder above be write-protected")
                .arg(step.value));
    }
    BatchStep named = step;
    named.verb = BatchStep::Save;
    named.value = folder.filePath(batchTargetName(m_log.file()));
    return save(named);
}

ExitCode BatchOutput::screenshot(const BatchStep &step)
{
    activateJointEditor(m_window);
    Ry3DViewport viewport(m_window.getViewportMgr());
    viewport.resize(step.size);
    viewport.setStandardView(step.view == QLatin1String("front")  ? Ry3DViewport::StandardView::Front
                             : step.view == QLatin1String("side") ? Ry3DViewport::StandardView::Side
                             : step.view == QLatin1String("top")  ? Ry3DViewport::StandardView::Top
                                                                  : Ry3DViewport::StandardView::Perspective);
    viewport.frameNodes(false);
    const QImage picture = viewport.grabPicture(step.size.width(), step.size.height());
    if (picture.isNull())
        return m_log.fail(ExitCode::CannotWrite,
                          QStringLiteral("%1: no picture could be drawn on this machine").arg(step.value));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "png");
    if (!writer.write(picture))
        return m_log.fail(ExitCode::CannotWrite, QStringLiteral("%1: %2").arg(step.value, writer.errorString()));
    return writeBytes(step, bytes);
}

ExitCode BatchOutput::dump(const BatchStep &step)
{
    return writeBytes(step, rySceneDump(*m_window.getScene()).toUtf8());
}

ExitCode BatchOutput::writeBytes(const BatchStep &step, const QByteArray &bytes)
{
    QString error;
    const bool toStream = step.writesStandardOutput();
    if (!(toStream ? m_streams.write(bytes, &error) : RySafeFile::write(step.value, bytes, &error)))
        return m_log.fail(ExitCode::CannotWrite, error);
    m_log.addWritten(toStream ? QStringLiteral("standard output") : step.value);
    return ExitCode::Done;
}

ExitCode BatchOutput::report(const BatchStep &step)
{
    const QByteArray text = batchReport(*m_window.getScene(), m_log.events());
    if (!m_asJson || !step.writesStandardOutput())
        return writeBytes(step, text);
    QJsonObject report = QJsonDocument::fromJson(text).object();
    // Its events stand in the document already.
    for (const char *key : {"messages", "runs", "boxes", "fits"})
        report.remove(QLatin1String(key));
    m_kept = report;
    return ExitCode::Done;
}
