#pragma once

#include <QLabel>

/// A label that a value is scrubbed with: dragging it sideways reports pixels, Escape or a right click cancels.
class RyScrubLabel : public QLabel
{
    Q_OBJECT
public:
    explicit RyScrubLabel(QWidget *parent = nullptr);

    void setFullText(const QString &text);
    /// Also where there is no room for all of it.
    const QString &fullText() const { return m_fullText; }
    /// Forgets the press: a drag under way reports nothing more, not even its end.
    void forgetPress();

signals:
    void scrubStarted();
    /// Pixels since the press, weighed by the modifiers.
    void scrubbed(double pixels);
    void scrubFinished(bool cancelled);
    void doubleClicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void finish(bool cancelled);

    QString m_fullText;
    int m_lastX = 0;
    double m_pixels = 0.0;
    bool m_pressed = false;
    bool m_scrubbing = false;
};
