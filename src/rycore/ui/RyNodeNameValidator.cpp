#include "rycore/ui/RyNodeNameValidator.h"

#include <QVector>

static bool isNameCharacter(uint character)
{
    return QChar::isLetterOrNumber(character) || QChar::isMark(character) || character == '_' || character == '-' ||
           character == '(' || character == ')' || character == ' ';
}

QValidator::State RyNodeNameValidator::validate(QString &text, int &) const
{
    const QVector<uint> characters = text.toUcs4();
    for (uint character : characters) {
        if (!isNameCharacter(character))
            return Invalid;
    }
    return text.isEmpty() || text.startsWith(' ') || text.endsWith(' ') ? Intermediate : Acceptable;
}

void RyNodeNameValidator::fixup(QString &text) const
{
    text = text.trimmed();
}
