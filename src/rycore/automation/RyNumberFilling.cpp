#include "rycore/automation/RyNumberFilling.h"

#include "rycore/automation/RyFocusEvents.h"

#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QSlider>
#include <QSpinBox>

#include <cmath>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyNumberFilling)
};

bool fail(QString *error, const QString &message)
{
    *error = message;
    return false;
}

template<typename Number>
bool checkRange(double number, bool isNumber, Number low, Number high, const QString &value, QString *error)
{
    if (!isNumber || !std::isfinite(number))
        return fail(error, Texts::tr("takes a number, not \"%1\"").arg(value));
    return (number >= double(low) && number <= double(high)) ||
           fail(error, Texts::tr("takes %1 to %2, not %3").arg(low).arg(high).arg(value));
}

bool fillWholeNumber(const QString &value, int low, int high, int *number, QString *error)
{
    bool isNumber = false;
    *number = value.trimmed().toInt(&isNumber);
    bool isReal = false;
    const double real = value.trimmed().toDouble(&isReal);
    if (!isNumber && isReal && real == std::floor(real) && std::abs(real) < 1e9) {
        *number = int(real);
        isNumber = true;
    }
    if (!isNumber && isReal)
        return fail(error, Texts::tr("takes whole numbers, not %1").arg(value));
    return checkRange(double(*number), isNumber, low, high, value, error);
}

} // namespace

bool RyNumberFilling::fillSpinBox(QAbstractSpinBox *box, const QString &value, QString *error)
{
    if (box->isReadOnly())
        return fail(error, Texts::tr("cannot be written"));
    if (auto *whole = qobject_cast<QSpinBox *>(box)) {
        int number = 0;
        if (!fillWholeNumber(value, whole->minimum(), whole->maximum(), &number, error))
            return false;
        RyFocusEvents::enter(box);
        whole->setValue(number);
    } else if (auto *real = qobject_cast<QDoubleSpinBox *>(box)) {
        bool isNumber = false;
        const double number = value.trimmed().toDouble(&isNumber);
        if (!checkRange(number, isNumber, real->minimum(), real->maximum(), value, error))
            return false;
        RyFocusEvents::enter(box);
        real->setValue(number);
    } else {
        return fail(error, Texts::tr("cannot be filled"));
    }
    RyFocusEvents::leave(box);
    return true;
}

bool RyNumberFilling::fillSlider(QAbstractSlider *slider, const QString &value, QString *error)
{
    int number = 0;
    if (!fillWholeNumber(value, slider->minimum(), slider->maximum(), &number, error))
        return false;
    emit slider->sliderPressed();
    slider->setValue(number);
    emit slider->sliderReleased();
    return true;
}
