#pragma once

#include <QAbstractButton>

/// A button filled with a colour.
class RyColorSwatch : public QAbstractButton
{
    Q_OBJECT
public:
    explicit RyColorSwatch(QWidget *parent = nullptr);

    void setColor(const QColor &color);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
};
