#include "ryhost/commands/ImportProgress.h"

#include <QApplication>
#include <QKeyEvent>
#include <QProgressDialog>

namespace {

constexpr int Steps = 1000;
constexpr int Patience = 400; // milliseconds before a dialog is worth its flash

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

} // namespace

ImportProgress::ImportProgress(const QString &file, bool merge, QWidget *window)
    : m_window(window),
      m_dialog(std::make_unique<QProgressDialog>(tr("Reading %1").arg(file), tr("Cancel"), 0, Steps, window))
{
    m_dialog->setObjectName(QStringLiteral("ImportProgress"));
    m_dialog->setWindowTitle(merge ? tr("Merge") : tr("Open"));
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    m_dialog->setMinimumDuration(Patience);
    qApp->installEventFilter(this);
}

ImportProgress::~ImportProgress()
{
    qApp->removeEventFilter(this);
    if (m_closes)
        QMetaObject::invokeMethod(m_window, "close", Qt::QueuedConnection);
}

bool ImportProgress::step(double done)
{
    m_dialog->setValue(int(Steps * done));
    QCoreApplication::processEvents();
    return !isCancelled();
}

bool ImportProgress::isCancelled() const
{
    return m_isCancelled || m_dialog->wasCanceled();
}

bool ImportProgress::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_window && event->type() == QEvent::Close) {
        m_isCancelled = m_closes = true;
        event->ignore();
        return true;
    }
    if (!isInput(event->type()))
        return false;
    // What comes to a window as such goes on to one of its widgets.
    const auto *widget = qobject_cast<const QWidget *>(object);
    if (object->isWindowType() || (widget && widget->window() == m_dialog.get()))
        return false;
    if (event->type() == QEvent::KeyPress && static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Escape)
        m_isCancelled = true;
    return true;
}
