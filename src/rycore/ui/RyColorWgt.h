#pragma once

#include <QColor>
#include <QWidget>

class QLineEdit;
class RyColorSwatch;

/// An opaque colour: a swatch that opens a colour dialog, and a field that shows it as "#rrggbb" and takes that form
/// and the names of colours. While the colour dialog is open the colour follows it; its Cancel puts the old one back.
class RyColorWgt : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ getColor WRITE setColor NOTIFY colorChanged USER true)
public:
    explicit RyColorWgt(QWidget *parent = nullptr);

    const QColor &getColor() const { return m_color; }
    /// What screen readers call its parts, and the title of the colour dialog.
    void setSpokenName(const QString &name);

public slots:
    /// Without its transparency. Nothing for an invalid colour.
    void setColor(const QColor &color);

signals:
    /// Once for each change, whether by hand or by setColor.
    void colorChanged(const QColor &color);

private:
    void openDialog();
    void takeText();
    void showColor();

    QColor m_color = Qt::white;
    RyColorSwatch *m_swatch;
    QLineEdit *m_field;
};
