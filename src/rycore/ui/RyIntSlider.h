#pragma once

#include <QWidget>

class QSlider;
class QSpinBox;

/// A whole number from 0 to 100 on a slider, shown and typed as a percentage beside it.
class RyIntSlider : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged USER true)
public:
    explicit RyIntSlider(QWidget *parent = nullptr);

    int value() const;
    /// What screen readers call its parts.
    void setSpokenName(const QString &name);

public slots:
    /// Brought into 0 to 100.
    void setValue(int value);

signals:
    /// Once for each change, whether by hand or by setValue.
    void valueChanged(int value);

private:
    QSlider *m_slider;
    QSpinBox *m_field;
};
