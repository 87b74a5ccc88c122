#include "rycore/ui/RyColorWgt.h"

#include "rycore/ui/RyColorSwatch.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QToolTip>

RyColorWgt::RyColorWgt(QWidget *parent)
    : QWidget(parent), m_swatch(new RyColorSwatch(this)), m_field(new QLineEdit(this))
{
    m_swatch->setObjectName(QStringLiteral("Swatch"));
    m_field->setObjectName(QStringLiteral("Field"));
    m_field->setFixedWidth(m_field->sizeHint().width() -
                           m_field->fontMetrics().horizontalAdvance(QLatin1Char('x')) * 17 +
                           m_field->fontMetrics().horizontalAdvance(QStringLiteral("#dddddd ")));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(RyStandardMetrics::Margin);
    layout->addWidget(m_swatch, 1);
    layout->addWidget(m_field);
    setFocusProxy(m_swatch);
    showColor();
    connect(m_swatch, &QAbstractButton::clicked, this, &RyColorWgt::openDialog);
    connect(m_field, &QLineEdit::editingFinished, this, &RyColorWgt::takeText);
}

void RyColorWgt::setSpokenName(const QString &name)
{
    m_swatch->setAccessibleName(name);
    m_field->setAccessibleName(name);
}

void RyColorWgt::setColor(const QColor &color)
{
    if (!color.isValid() || color.rgb() == m_color.rgb())
        return;
    m_color = QColor(color.rgb());
    showColor();
    emit colorChanged(m_color);
}

void RyColorWgt::showColor()
{
    m_swatch->setColor(m_color);
    m_field->setText(m_color.name());
    m_field->setModified(false);
}

void RyColorWgt::takeText()
{
    if (!m_field->isModified())
        return;
    const QString text = m_field->text().trimmed();
    QColor color(text);
    if (!color.isValid())
        color.setNamedColor(QLatin1Char('#') + text);
    const bool isTaken = color.isValid() && color.alpha() == 255;
    if (isTaken)
        setColor(color);
    showColor();
    if (!isTaken && isVisible())
        QToolTip::showText(mapToGlobal(QPoint(0, height())), tr("Not taken: \"%1\" is no color.").arg(text), this);
}

void RyColorWgt::openDialog()
{
    const QColor before = m_color;
    const QPointer<RyColorWgt> self = this;
    const QPointer<QColorDialog> dialog = new QColorDialog(window());
    dialog->setObjectName(QStringLiteral("ColorDialog"));
    dialog->setOption(QColorDialog::DontUseNativeDialog);
    if (!m_swatch->accessibleName().isEmpty())
        dialog->setWindowTitle(m_swatch->accessibleName());
    dialog->setCurrentColor(before);
    connect(dialog, &QColorDialog::currentColorChanged, this, &RyColorWgt::setColor);
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    if (self && !isAccepted)
        setColor(before);
    delete dialog;
}
