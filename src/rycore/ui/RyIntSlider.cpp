#include "rycore/ui/RyIntSlider.h"

#include "rycore/ui/RyStandardMetrics.h"

#include <QHBoxLayout>
#include <QSlider>
#include <QSpinBox>

RyIntSlider::RyIntSlider(QWidget *parent)
    : QWidget(parent), m_slider(new QSlider(Qt::Horizontal, this)), m_field(new QSpinBox(this))
{
    m_slider->setObjectName(QStringLiteral("Slider"));
    m_slider->setRange(0, 100);
    m_slider->setPageStep(10);
    m_slider->setMinimumWidth(80);
    m_field->setObjectName(QStringLiteral("Field"));
    m_field->setRange(0, 100);
    m_field->setSuffix(tr(" %"));
    m_field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(RyStandardMetrics::Margin);
    layout->addWidget(m_slider, 1);
    layout->addWidget(m_field);
    setFocusProxy(m_slider);

    // The slider has the value; both show it before anybody hears of it.
    connect(m_slider, &QSlider::valueChanged, m_field, &QSpinBox::setValue);
    connect(m_slider, &QSlider::valueChanged, this, &RyIntSlider::valueChanged);
    connect(m_field, QOverload<int>::of(&QSpinBox::valueChanged), m_slider, &QSlider::setValue);
}

int RyIntSlider::value() const
{
    return m_slider->value();
}

void RyIntSlider::setValue(int value)
{
    m_slider->setValue(value);
}

void RyIntSlider::setSpokenName(const QString &name)
{
    m_slider->setAccessibleName(name);
    m_field->setAccessibleName(name);
}
