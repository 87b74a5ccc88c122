#include "rycore/ui/RyFloatPropertyWgt.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/ui/RyNumberExpression.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/ui/RyValueSlider.h"
#include "rycore/undo/RyUndoHistoryAccess.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {
constexpr int SliderSteps = 2000;
}

RyFloatPropertyWgt::RyFloatPropertyWgt(QWidget *parent)
    : QWidget(parent), m_label(new RyScrubLabel(this)), m_slider(new RyValueSlider(this)),
      m_field(new RyNumberField(this))
{
    m_label->setObjectName(QStringLiteral("Label"));
    m_slider->setObjectName(QStringLiteral("Slider"));
    m_field->setObjectName(QStringLiteral("Field"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(RyStandardMetrics::Spacing);
    layout->addWidget(m_label, 3);
    layout->addWidget(m_slider, 4);
    layout->addWidget(m_field, 0);
    m_label->setMinimumWidth(24);
    m_field->setFixedWidth(RyStandardMetrics::FieldWidth);
    m_slider->setRange(0, SliderSteps);
    m_slider->setMinimumWidth(40);
    m_slider->setFocusPolicy(Qt::TabFocus);
    setFocusProxy(m_field);

    connect(m_field, &RyNumberField::valueEdited, this, &RyFloatPropertyWgt::applyValue);
    connect(m_field, &RyNumberField::refused, this,
            [this](const QString &reason) { emit messagePosted(tr("%1: not taken, %2.").arg(spokenName(), reason)); });
    connect(m_label, &RyScrubLabel::scrubStarted, this, &RyFloatPropertyWgt::beginDrag);
    connect(m_label, &RyScrubLabel::scrubbed, this,
            [this](double pixels) { dragTo(m_dragStart + pixels * m_field->step() * 0.5); });
    connect(m_label, &RyScrubLabel::scrubFinished, this, &RyFloatPropertyWgt::endDrag);
    connect(m_slider, &QSlider::sliderPressed, this, &RyFloatPropertyWgt::beginDrag);
    connect(m_slider, &QSlider::sliderReleased, this, [this] { endDrag(false); });
    connect(m_slider, &QSlider::valueChanged, this, [this](int place) {
        const double value = sliderMin() + (double(sliderMax()) - sliderMin()) * place / SliderSteps;
        if (m_dragHold)
            dragTo(value);
        else
            applyValue(value);
    });
    connect(m_slider, &RyValueSlider::stepped, this, &RyFloatPropertyWgt::stepSlider);
    connect(m_slider, &RyValueSlider::defaultAsked, this, &RyFloatPropertyWgt::restoreDefault);
    connect(m_slider, &RyValueSlider::aboutToPress, this, &RyFloatPropertyWgt::notePress);
    connect(m_slider, &RyValueSlider::doubleClicked, this, [this] {
        takeBackClick();
        restoreDefault();
    });
    connect(m_label, &RyScrubLabel::doubleClicked, this, [this] {
        // Where there is no slider the default is a rest that another command brings back.
        if (!m_fullLength)
            restoreDefault();
    });
    refresh();
}

RyFloatPropertyWgt::~RyFloatPropertyWgt() = default;

QSlider *RyFloatPropertyWgt::slider() const
{
    return m_slider;
}

void RyFloatPropertyWgt::addProperty(RyFloatProperty *property)
{
    if (!property)
        return;
    m_properties.emplace_back(property);
    connect(property, &RyFloatProperty::currentValueChanged, this, &RyFloatPropertyWgt::refresh);
    connect(property, &RyFloatProperty::limitsChanged, this, &RyFloatPropertyWgt::refresh);
    connect(property, &RyElement::labelChanged, this, &RyFloatPropertyWgt::refresh);
    connect(property, &QObject::destroyed, this, &RyFloatPropertyWgt::propertyGone);
    refresh();
}

void RyFloatPropertyWgt::clearProperties()
{
    endDrag(true);
    for (const QPointer<RyFloatProperty> &property : m_properties) {
        if (property)
            disconnect(property, nullptr, this, nullptr);
    }
    m_properties.clear();
    m_field->setModified(false);
    refresh();
}

void RyFloatPropertyWgt::finishEdit()
{
    m_field->commitText();
    endDrag(false);
}

void RyFloatPropertyWgt::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange) {
        m_label->setEnabled(isEnabled());
        if (!isEnabled())
            endDrag(false);
    }
    QWidget::changeEvent(event);
}

void RyFloatPropertyWgt::hideEvent(QHideEvent *event)
{
    endDrag(false);
    QWidget::hideEvent(event);
}

void RyFloatPropertyWgt::propertyGone()
{
    endDrag(false);
    refresh();
}

RyFloatProperty *RyFloatPropertyWgt::getFirstProperty() const
{
    for (const QPointer<RyFloatProperty> &property : m_properties) {
        if (property)
            return property;
    }
    return nullptr;
}

void RyFloatPropertyWgt::setFullLengthTextEdit(bool fullLength)
{
    m_fullLength = fullLength;
    m_field->setMinimumWidth(fullLength ? 40 : RyStandardMetrics::FieldWidth);
    static_cast<QHBoxLayout *>(layout())->setStretchFactor(m_label, fullLength ? 2 : 3);
    static_cast<QHBoxLayout *>(layout())->setStretchFactor(m_field, fullLength ? 5 : 0);
    m_field->setMaximumWidth(fullLength ? QWIDGETSIZE_MAX : RyStandardMetrics::FieldWidth);
    refresh();
}

void RyFloatPropertyWgt::setSliderRange(float min, float max)
{
    m_rangeMin = min;
    m_rangeMax = max;
    refresh();
}

void RyFloatPropertyWgt::setStep(float step)
{
    m_field->setStep(double(step));
    refresh();
}

void RyFloatPropertyWgt::setSuffix(const QString &suffix)
{
    m_field->setSuffix(suffix);
}

void RyFloatPropertyWgt::setLabelText(const QString &text)
{
    m_labelText = text;
    refresh();
}

void RyFloatPropertyWgt::setSpokenName(const QString &name)
{
    m_spokenName = name;
    refresh();
}

float RyFloatPropertyWgt::sliderMin() const
{
    const RyFloatProperty *property = getFirstProperty();
    return property && property->isClamped() ? property->getMin() : m_rangeMin;
}

float RyFloatPropertyWgt::sliderMax() const
{
    const RyFloatProperty *property = getFirstProperty();
    return property && property->isClamped() ? property->getMax() : m_rangeMax;
}

QString RyFloatPropertyWgt::spokenName() const
{
    const RyFloatProperty *property = getFirstProperty();
    if (!m_spokenName.isEmpty())
        return m_spokenName;
    return m_labelText.isEmpty() && property ? property->getLabel() : m_labelText;
}

QString RyFloatPropertyWgt::caption() const
{
    return tr("Change %1").arg(spokenName());
}

void RyFloatPropertyWgt::refresh()
{
    const RyFloatProperty *property = getFirstProperty();
    if (m_hasProperty != (property != nullptr)) {
        m_hasProperty = property != nullptr;
        setEnabled(m_hasProperty);
    }
    m_label->setFullText(m_labelText.isNull() && property ? property->getLabel() : m_labelText);
    m_field->setAccessibleName(spokenName());
    m_slider->setAccessibleName(spokenName());
    const double value = property ? double(property->getValue()) : 0.0;
    const bool mixed = isMixed();
    m_field->setPlaceholderText(mixed ? tr("mixed") : QString());
    m_field->setBlank(!property || mixed);
    m_field->setValue(value);
    const double min = double(sliderMin());
    const double max = double(sliderMax());
    m_slider->setVisible(!m_fullLength && property && max > min);
    if (max > min) {
        const QSignalBlocker blocker(m_slider);
        const auto placeOf = [min, max](double number) {
            return int(std::lround(SliderSteps * std::min(std::max((number - min) / (max - min), 0.0), 1.0)));
        };
        m_slider->setZeroPlace(placeOf(0.0));
        m_slider->setValue(placeOf(value));
        m_slider->setToolTip(tr("Double click or Delete: back to %1")
                                 .arg(RyNumberExpression::format(double(property ? property->getDefaultValue() : 0)) +
                                      m_field->suffix()));
        m_slider->setPageStep(std::max(1, placeOf(min + 10.0 * m_field->step())));
    }
}

QString RyFloatPropertyWgt::shownValue() const
{
    const RyFloatProperty *property = getFirstProperty();
    return property ? RyNumberExpression::format(double(property->getValue())) : QString();
}

bool RyFloatPropertyWgt::isMixed() const
{
    const QString shown = shownValue();
    return std::any_of(m_properties.begin(), m_properties.end(), [&](const QPointer<RyFloatProperty> &property) {
        return property && RyNumberExpression::format(double(property->getValue())) != shown;
    });
}

std::vector<float> RyFloatPropertyWgt::values() const
{
    std::vector<float> values;
    for (const QPointer<RyFloatProperty> &property : m_properties)
        values.push_back(property ? property->getValue() : std::numeric_limits<float>::quiet_NaN());
    return values;
}

bool RyFloatPropertyWgt::differsFrom(const std::vector<float> &before) const
{
    for (size_t i = 0; i < std::min(before.size(), m_properties.size()); ++i) {
        if (m_properties[i] && m_properties[i]->getValue() != before[i])
            return true;
    }
    return false;
}

void RyFloatPropertyWgt::writeAll(float value)
{
    // The first one last: who follows it and corrects all of them has the last word.
    const std::vector<QPointer<RyFloatProperty>> properties(m_properties.rbegin(), m_properties.rend());
    for (const QPointer<RyFloatProperty> &property : properties) {
        if (property)
            property->adjustValue(value);
    }
}

void RyFloatPropertyWgt::applyValue(double value)
{
    const RyFloatProperty *property = getFirstProperty();
    // What is shown with four decimals must not round the value when it is merely confirmed.
    if (!property || m_dragHold || (!isMixed() && RyNumberExpression::format(value) == shownValue())) {
        refresh();
        return;
    }
    edit(caption(), [this, value] { writeAll(float(value)); });
}

void RyFloatPropertyWgt::edit(const QString &caption, const std::function<void()> &write)
{
    const std::vector<float> before = values();
    RyUndoStackHold hold;
    emit editStarted();
    write();
    const bool changed = differsFrom(before);
    // A step that changes nothing would take the undone ones with it.
    if (!changed)
        hold.cancel();
    emit editFinished(changed);
    if (changed)
        hold.accept(caption);
    refresh();
}

void RyFloatPropertyWgt::stepSlider(double steps)
{
    const RyFloatProperty *property = getFirstProperty();
    if (!property)
        return;
    m_field->commitText();
    // A value beyond the slider's end stays there rather than being drawn in.
    const double value = double(property->getValue());
    const double least = std::min(value, double(sliderMin()));
    const double most = std::max(value, double(sliderMax()));
    applyValue(std::min(std::max(value + steps * m_field->step(), least), most));
}

void RyFloatPropertyWgt::restoreDefault()
{
    if (!getFirstProperty() || m_dragHold)
        return;
    m_field->setModified(false);
    edit(tr("Restore %1").arg(spokenName()), [this] {
        const std::vector<QPointer<RyFloatProperty>> properties(m_properties.rbegin(), m_properties.rend());
        for (const QPointer<RyFloatProperty> &property : properties) {
            if (property)
                property->setValue(property->getDefaultValue());
        }
    });
}

void RyFloatPropertyWgt::notePress()
{
    const RyUndoHistoryAccess access(ryUndoStack());
    const auto history = std::make_shared<RyUndoHistoryAccess::History>(access.history());
    m_takeBackPress = [this, history] {
        RyUndoStack *stack = ryUndoStack();
        if (stack->index() != history->index + 1 || stack->undoText() != caption())
            return;
        stack->undo();
        if (stack->index() == history->index)
            RyUndoHistoryAccess(stack).exchangeHistory(*history, [] {});
    };
    // Steps shall not live longer here than in the history.
    QTimer::singleShot(2 * QApplication::doubleClickInterval(), this, [this, weak = std::weak_ptr(history)] {
        if (!weak.expired()) // no later press has taken its place
            m_takeBackPress = nullptr;
    });
}

void RyFloatPropertyWgt::takeBackClick()
{
    if (const std::function<void()> takeBack = std::exchange(m_takeBackPress, nullptr))
        takeBack();
}

void RyFloatPropertyWgt::beginDrag()
{
    if (!getFirstProperty() || m_dragHold)
        return;
    m_field->commitText();
    m_dragStart = double(getFirstProperty()->getValue());
    m_valuesAtPress = values();
    m_dragHold = std::make_unique<RyUndoStackHold>();
    emit editStarted();
}

void RyFloatPropertyWgt::dragTo(double value)
{
    if (m_dragHold)
        writeAll(float(std::round(value * 1e4) / 1e4));
}

void RyFloatPropertyWgt::endDrag(bool cancelled)
{
    m_label->forgetPress();
    if (!m_dragHold)
        return;
    const QString text = caption();
    const bool changed = !cancelled && differsFrom(m_valuesAtPress);
    const std::unique_ptr<RyUndoStackHold> hold = std::move(m_dragHold);
    // Values that are to be taken back are back before listeners look at them.
    if (!changed)
        hold->cancel();
    emit editFinished(changed);
    if (changed)
        hold->accept(text);
    refresh();
}
