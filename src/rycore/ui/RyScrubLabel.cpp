#include "rycore/ui/RyScrubLabel.h"

#include "rycore/ui/RyNumberField.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <cstdlib>

namespace {
constexpr int DeadPixels = 3;
}

RyScrubLabel::RyScrubLabel(QWidget *parent) : QLabel(parent)
{
    setCursor(Qt::SizeHorCursor);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void RyScrubLabel::setFullText(const QString &text)
{
    m_fullText = text;
    setText(fontMetrics().elidedText(text, Qt::ElideRight, width()));
    setToolTip(text + QLatin1Char('\n') + tr("Drag sideways to change the value."));
}

void RyScrubLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    setText(fontMetrics().elidedText(m_fullText, Qt::ElideRight, width()));
}

void RyScrubLabel::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton && m_scrubbing) {
        finish(true);
        return;
    }
    if (event->button() != Qt::LeftButton || !isEnabled())
        return;
    m_pressed = true;
    m_scrubbing = false;
    m_pixels = 0.0;
    m_lastX = event->globalX();
}

void RyScrubLabel::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed)
        return;
    const int moved = event->globalX() - m_lastX;
    if (!m_scrubbing) {
        if (std::abs(moved) < DeadPixels)
            return;
        m_scrubbing = true;
        setFocus(Qt::MouseFocusReason);
        if (m_scrubbing)
            emit scrubStarted();
    }
    // Who heard of the focus or of the start may have ended it.
    if (!m_scrubbing)
        return;
    m_lastX = event->globalX();
    m_pixels += moved * RyNumberField::stepFactor(event->modifiers());
    emit scrubbed(m_pixels);
}

void RyScrubLabel::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        finish(false);
}

void RyScrubLabel::mouseDoubleClickEvent(QMouseEvent *event)
{
    // Its second press is none: a hand that shakes would scrub what was just restored.
    if (event->button() == Qt::LeftButton && isEnabled())
        emit doubleClicked();
}

void RyScrubLabel::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_scrubbing)
        finish(true);
    else
        QLabel::keyPressEvent(event);
}

void RyScrubLabel::forgetPress()
{
    m_pressed = false;
    m_scrubbing = false;
}

void RyScrubLabel::finish(bool cancelled)
{
    const bool wasScrubbing = m_scrubbing;
    forgetPress();
    if (wasScrubbing)
        emit scrubFinished(cancelled);
}
