#include "rycore/ui/RyPlainText.h"

static void removeOpenedBracket(QString &text)
{
    text.chop(1);
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
}

QString ryPlainText(const QString &text)
{
    const QString name = text.section(QLatin1Char('\t'), 0, 0);
    QString plain;
    for (int i = 0; i < name.size(); ++i) {
        if (name[i] != QLatin1Char('&')) {
            plain += name[i];
            continue;
        }
        if (++i == name.size())
            break;
        // Where no letter of a text can be marked, one stands in brackets behind it.
        const bool isBracketed = plain.endsWith(QLatin1Char('(')) && name[i] != QLatin1Char('&') &&
                                 i + 1 < name.size() && name[i + 1] == QLatin1Char(')');
        if (isBracketed) {
            removeOpenedBracket(plain);
            ++i;
        } else {
            plain += name[i];
        }
    }
    return plain;
}
