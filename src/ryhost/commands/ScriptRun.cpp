#include "ryhost/commands/ScriptRun.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/script/RyScript.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMessageBox>

namespace {

constexpr int EventMilliseconds = 50;

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

} // namespace

ScriptRun::ScriptRun(RyMainWindow *window) : m_window(window), m_engine(window->getScriptEngine()) {}

bool ScriptRun::eventFilter(QObject *watched, QEvent *event)
{
    // A form or a box of the script is for the person.
    const bool isClosing = event->type() == QEvent::Close && watched == m_window;
    if ((!isInput(event->type()) && !isClosing) || QApplication::activeModalWidget() ||
        QApplication::activePopupWidget())
        return QObject::eventFilter(watched, event);
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (isKey && static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        m_isStopped = true;
        m_engine->stop(tr("The script was stopped."));
    }
    event->ignore();
    return true;
}

void ScriptRun::execute(const QString &path)
{
    RyScript script{QString()};
    if (!script.loadFromFile(path, false)) {
        m_failure = m_engine->lastFailure();
        return;
    }
    m_window->showMessage(tr("%1 runs; Escape stops it.").arg(QFileInfo(path).completeBaseName()));
    RyApp::startBusyCursor();
    qApp->installEventFilter(this);
    m_engine->setProcessEventsInterval(EventMilliseconds);
    const bool isDone = script.execute();
    m_engine->setProcessEventsInterval(-1);
    qApp->removeEventFilter(this);
    RyApp::endBusyCursor();
    m_window->showMessage(QString());
    if (!isDone)
        m_failure = m_engine->lastFailure();
}

bool ScriptRun::run(const QString &path)
{
    RyRestoreSpan span(RyRestoreSpan::Scope::Work, tr("Run %1").arg(QFileInfo(path).completeBaseName()));
    execute(path);
    const bool canGoBack = span.finish();
    if (!m_failure.isEmpty())
        report(path, canGoBack);
    return m_failure.isEmpty();
}

void ScriptRun::report(const QString &path, bool canGoBack)
{
    const QString way = canGoBack ? tr("Edit > %1 takes back what it did.").arg(ryRestorePoints()->text(0)) : QString();
    if (m_isStopped) {
        m_window->showMessage(way.isEmpty() ? tr("The script was stopped.")
                                            : tr("The script was stopped. %1").arg(way));
        return;
    }
    QMessageBox box(QMessageBox::Warning, tr("Script Failed"), QDir::toNativeSeparators(path), QMessageBox::Ok,
                    m_window);
    box.setInformativeText(way.isEmpty() ? m_failure : m_failure + QStringLiteral("\n\n") + way);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
