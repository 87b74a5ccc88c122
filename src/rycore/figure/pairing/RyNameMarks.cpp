#include "rycore/figure/pairing/RyNameMarks.h"

namespace {

bool isSeparator(QChar c)
{
    return !c.isLetterOrNumber();
}

/// The word of the other side in the case of `like`.
QString otherSide(const QString &like, bool isLeft)
{
    const QString word = like.length() > 1 ? (isLeft ? QStringLiteral("right") : QStringLiteral("left"))
                                           : (isLeft ? QStringLiteral("r") : QStringLiteral("l"));
    if (like.back().isUpper())
        return word.toUpper();
    return like.front().isUpper() ? word.left(1).toUpper() + word.mid(1) : word;
}

} // namespace

RyNameMarks::RyNameMarks(const QString &name) : m_name(name)
{
    int start = -1;
    for (int i = 0; i < name.length(); ++i) {
        if (!name[i].isLetter())
            continue;
        if (start < 0)
            start = i;
        const bool isLast = i + 1 == name.length() || !name[i + 1].isLetter();
        if (isLast || (name[i].isLower() && name[i + 1].isUpper())) {
            addWord(start, i + 1 - start);
            start = -1;
        }
    }
}

void RyNameMarks::addWord(int start, int length)
{
    const QString word = folded(m_name.mid(start, length));
    const bool isLetter = word == QLatin1String("l") || word == QLatin1String("r");
    if (isLetter ? isLoneLetter(start) : word == QLatin1String("left") || word == QLatin1String("right"))
        m_marks.push_back({start, length, word[0] == QLatin1Char('l')});
}

bool RyNameMarks::isLoneLetter(int place) const
{
    const bool isFirst = place == 0;
    const bool isLast = place + 1 == m_name.length();
    const bool letterBefore = !isFirst && m_name[place - 1].isLetter();
    const bool letterAfter = !isLast && m_name[place + 1].isLetter();
    if (!letterBefore && !letterAfter)
        return true;
    if (letterBefore)
        return m_name[place].isUpper() && (isLast || m_name[place + 1].isDigit());
    return isFirst && m_name[place].isLower();
}

QString RyNameMarks::exchanged(Which which) const
{
    QString name = m_name;
    // From the end on, so that places before stay where they are.
    for (size_t i = m_marks.size(); i-- > 0;) {
        const bool isMeant = which == Which::All || i == (which == Which::First ? 0 : m_marks.size() - 1);
        if (isMeant)
            name.replace(m_marks[i].start, m_marks[i].length,
                         otherSide(m_name.mid(m_marks[i].start, m_marks[i].length), m_marks[i].isLeft));
    }
    return name;
}

QString RyNameMarks::folded(QString text)
{
    for (QChar &c : text)
        c = c.toCaseFolded();
    return text;
}

QString RyNameMarks::withoutNumber(const QString &name)
{
    int end = name.length();
    while (end > 0 && isSeparator(name[end - 1]))
        --end;
    int digits = end;
    while (digits > 0 && name[digits - 1].isDigit())
        --digits;
    int rest = digits;
    while (rest > 0 && isSeparator(name[rest - 1]))
        --rest;
    return digits < end && rest < digits && rest > 0 ? name.left(rest) : name;
}
