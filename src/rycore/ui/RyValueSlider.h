#pragma once

#include <QSlider>

/// The slider of a value field: it knows where zero is, so that a style may fill it from there, and asks for exact
/// steps instead of taking the nearest place that it has. Arrow keys and wheel ask for one step, the page keys for ten;
/// Shift ten times as many, Ctrl a tenth. A double click or Delete asks for the value's default.
class RyValueSlider : public QSlider
{
    Q_OBJECT
    /// Where zero lies, between minimum and maximum.
    Q_PROPERTY(int zeroPlace READ zeroPlace WRITE setZeroPlace)
public:
    explicit RyValueSlider(QWidget *parent = nullptr) : QSlider(Qt::Horizontal, parent) {}

    int zeroPlace() const { return m_zeroPlace; }
    void setZeroPlace(int place);

signals:
    void stepped(double steps);
    /// A press is about to act; what it does is part of a double click that may follow.
    void aboutToPress();
    void doubleClicked();
    void defaultAsked();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    int m_zeroPlace = 0;
    int m_wheel = 0; // eighths of degrees that make no whole step yet
};
