#pragma once

#include <QLineEdit>

/// A text field for one number: takes arithmetic, also "*2" and "/2" of what it shows, steps with the arrow keys (Shift
/// ten times, Ctrl a tenth of the step), shows at most four decimals. Nonsense, and what a float cannot
/// hold, puts the old value back and says why. Undo and redo are its own only while something is being typed.
class RyNumberField : public QLineEdit
{
    Q_OBJECT
public:
    explicit RyNumberField(QWidget *parent = nullptr);

    double value() const { return m_value; }
    /// Shows a value; an edit in progress is left alone until it ends. Emits nothing.
    void setValue(double value);
    void setStep(double step) { m_step = step; }
    double step() const { return m_step; }
    /// Shown after the number; may be typed or left out.
    void setSuffix(const QString &suffix);
    const QString &suffix() const { return m_suffix; }
    /// Shows no number until one is typed or set.
    void setBlank(bool blank);

    /// Step size for these modifiers.
    static double stepFactor(Qt::KeyboardModifiers modifiers);

public slots:
    /// Takes the text as it stands, as Enter does.
    void commitText();

signals:
    /// The user asks for this value, which need not differ from the one shown.
    void valueEdited(double value);
    void refused(const QString &reason);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void showValue();
    void stepBy(double steps);

    double m_value = 0.0;
    double m_step = 1.0;
    QString m_suffix;
    bool m_blank = false;
    bool m_opensMenu = false;
};
