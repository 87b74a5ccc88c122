#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QSlider;
class RyFloatProperty;
class RyNumberField;
class RyScrubLabel;
class RyUndoStackHold;
class RyValueSlider;

/// Shows the value of its float properties, "mixed" where they differ, and writes every edit to all of them; steps and
/// drags start from the first one. One edit is one undo step: a typed value, a key step, a whole drag of the slider or
/// of the label, a double click on either of them, which brings the default back.
///
/// A drag ends as by its release when the field is disabled or hidden, or when one of the properties goes.
///
/// It is enabled when it gets its first property and disabled when it has none left; in between others may say.
class RyFloatPropertyWgt : public QWidget
{
    Q_OBJECT
public:
    explicit RyFloatPropertyWgt(QWidget *parent = nullptr);
    ~RyFloatPropertyWgt() override;

    void addProperty(RyFloatProperty *property);
    /// Cancels a drag and drops a text that was not entered.
    void clearProperties();
    /// Ends what is going on here as the release of the mouse and Enter do.
    void finishEdit();
    /// Null when there is none.
    RyFloatProperty *getFirstProperty() const;
    /// True: no slider, the text field takes the room.
    void setFullLengthTextEdit(bool fullLength);
    /// Range of the slider for properties that are not clamped; equal numbers: no slider for those.
    void setSliderRange(float min, float max);
    void setStep(float step);
    void setSuffix(const QString &suffix);
    /// Instead of the property's label; null goes back to that.
    void setLabelText(const QString &text);
    /// What undo steps, messages and screen readers call the value where the label alone would not tell it.
    void setSpokenName(const QString &name);

    RyNumberField *numberField() const { return m_field; }
    /// May be put into a layout outside; it is enabled with this.
    RyScrubLabel *label() const { return m_label; }
    QSlider *slider() const;

signals:
    /// Around each edit, within its step: what listeners write becomes part of the step. Finished without a change: the
    /// edit was cancelled and the values of before are back, or a drag came back to where it began, or the limits let
    /// nothing change. Such an edit leaves no step.
    void editStarted();
    void editFinished(bool changed);
    /// A typed text was not taken, and why.
    void messagePosted(const QString &message);

public slots:
    void refresh();

protected:
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void applyValue(double value);
    /// Runs `write` as one edit: a step named `caption` when it changed something, nothing otherwise.
    void edit(const QString &caption, const std::function<void()> &write);
    void stepSlider(double steps);
    void restoreDefault();
    /// The first click of a double click may have moved the slider: it is as if it had not been, in the history too.
    void takeBackClick();
    void notePress();
    void writeAll(float value);
    void beginDrag();
    void dragTo(double value);
    void endDrag(bool cancelled);
    float sliderMin() const;
    float sliderMax() const;
    QString spokenName() const;
    QString caption() const;
    /// As it is shown; of the first one where they differ.
    QString shownValue() const;
    bool isMixed() const;
    /// Of each property, NaN for one that is gone.
    std::vector<float> values() const;
    /// Whether a property that is still there has another value.
    bool differsFrom(const std::vector<float> &before) const;
    void propertyGone();

    std::vector<QPointer<RyFloatProperty>> m_properties;
    RyScrubLabel *m_label;
    RyValueSlider *m_slider;
    std::function<void()> m_takeBackPress; // empty but for the time of a double click
    RyNumberField *m_field;
    std::unique_ptr<RyUndoStackHold> m_dragHold;
    double m_dragStart = 0.0; // of the first property
    std::vector<float> m_valuesAtPress;
    float m_rangeMin = 0.0f;
    float m_rangeMax = 0.0f;
    QString m_labelText;
    QString m_spokenName;
    bool m_hasProperty = true;
    bool m_fullLength = false;
};
