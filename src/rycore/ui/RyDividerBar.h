#pragma once

#include <QAbstractButton>

/// The bar between two widgets: a click, Space or Return folds one of them away or brings it back. Checked: folded.
/// Where it may be moved, it reports drags and the arrow keys.
class RyDividerBar : public QAbstractButton
{
    Q_OBJECT
public:
    explicit RyDividerBar(QWidget *parent = nullptr);

    void setMovesEnabled(bool onOff);
    bool areMovesEnabled() const { return m_movesEnabled; }
    /// Where the folded widget is: below the bar or above it.
    void setFoldsDown(bool onOff);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    /// By so many pixels downwards.
    void moved(int pixels);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;

private:
    bool m_movesEnabled = true;
    bool m_foldsDown = true;
    bool m_isDragged = false;
    int m_lastY = 0;
};
