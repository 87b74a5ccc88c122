#include "ryhost/look/clearButton.h"

#include <QLineEdit>

void giveClearButton(QLineEdit *field)
{
    QObject::connect(field, &QLineEdit::textChanged, field, [field] { field->setClearButtonEnabled(true); });
}
