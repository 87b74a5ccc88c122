#pragma once

#include <QPushButton>

class QStyleOptionComboBox;

/// A push button for panes. With an arrow it looks like the combo boxes beside it. A button without an accessible name
/// takes that of the label whose buddy it is, when it is first shown, and is then described by its text.
class RyStyledButton : public QPushButton
{
    Q_OBJECT
public:
    explicit RyStyledButton(QWidget *parent = nullptr);

    /// Shows that something opens below.
    void setShowArrow(bool onOff);
    /// True: a text without room is cut in the middle and the button may be narrower than it.
    void setElideText(bool onOff);
    /// The button wants room for this text whatever it shows, so that nothing moves when the text changes.
    void setMinimumWidthText(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    /// Shows the text, and tells screen readers and, where the mouse rests, people who see it cut.
    void showText(const QString &text);

private:
    QSize sizeFor(const QString &text) const;
    QStyleOptionComboBox arrowOption() const;
    QString elided(int width) const;

    bool m_showsArrow = false;
    bool m_elidesText = false;
    QString m_minimumWidthText;
};
