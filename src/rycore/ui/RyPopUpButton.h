#pragma once

#include "rycore/ui/RyStyledButton.h"

#include <QPointer>

class RyPopUpWidget;

/// A button with an arrow that opens a pop-up below itself, and closes it when it is hidden or disabled.
class RyPopUpButton : public RyStyledButton
{
    Q_OBJECT
public:
    /// The object name is that of the pop-up.
    RyPopUpButton(const QString &popUpName, QWidget *parent);

public slots:
    /// Closes the pop-up when it is open.
    void showPopup();
    void hidePopup();

protected:
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    /// Null while it is closed.
    RyPopUpWidget *popup() const;
    /// Fills a new pop-up; gives back the widget in it that the keyboard goes to.
    virtual QWidget *fillPopup(RyPopUpWidget *popup) = 0;
    /// It shows: a list may be scrolled to where it is to begin.
    virtual void popupOpened() = 0;

private:
    QString m_popupName;
    QPointer<RyPopUpWidget> m_popup;
};
