#include "rycore/ui/RyNodeLabelValidator.h"

#include <QVector>

QValidator::State RyNodeLabelValidator::validate(QString &text, int &) const
{
    const QVector<uint> characters = text.toUcs4();
    for (uint character : characters) {
        if (!QChar::isPrint(character))
            return Invalid;
    }
    return text.trimmed().isEmpty() ? Intermediate : Acceptable;
}
