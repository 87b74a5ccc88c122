#pragma once

#include <QFrame>

/// A frameless window that a control of a pane opens beside itself. It is no window that takes the whole mouse: a click
/// anywhere else closes it, and does there what it does. Escape closes it too, and the keyboard goes back to the window
/// of its parent.
class RyPopUpWidget : public QFrame
{
    Q_OBJECT
public:
    explicit RyPopUpWidget(QWidget *parent);

    /// Below the rectangle, which is in global coordinates; above it where there is no room; on the screen in any case.
    /// A click into the rectangle is left to the control there, which closes the pop-up itself.
    void positionPopUp(const QRect &anchor);
    /// Shows it and gives the keyboard to the widget.
    void open(QWidget *focus);
    bool isMouseOver() const;

signals:
    void mouseLeave();
    /// It was shown and is no more.
    void closed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void followFocus(const QWindow *focus);
    void hideWithoutFocus();

    QRect m_anchor;
    bool m_hasKeyboard = false;
};
