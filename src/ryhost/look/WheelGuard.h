#pragma once

#include <QObject>

/// Keeps the wheel from changing values in passing: over a combo box, slider or spin box without the keyboard focus it
/// goes to what is around; number fields see to that themselves. Filters the events of the application.
class WheelGuard : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override;
};
