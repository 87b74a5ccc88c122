#include "rycore/base/RyGuid.h"

static bool isDashPlace(int index)
{
    return index == 8 || index == 13 || index == 18 || index == 23;
}

static int hexDigit(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    return -1;
}

RyGuid RyGuid::fromString(const QString &text)
{
    QString plain = text;
    if (plain.startsWith(QLatin1Char('{')) && plain.endsWith(QLatin1Char('}')))
        plain = plain.mid(1, plain.size() - 2);
    if (plain.size() != 36)
        return {};
    RyGuid guid;
    int nibble = 0;
    for (int i = 0; i < plain.size(); ++i) {
        if (isDashPlace(i)) {
            if (plain[i] != QLatin1Char('-'))
                return {};
            continue;
        }
        const int digit = hexDigit(plain[i]);
        if (digit < 0)
            return {};
        quint8 &byte = guid.m_bytes[size_t(nibble / 2)];
        byte = quint8(byte << 4 | digit);
        ++nibble;
    }
    return guid;
}

QString RyGuid::toString() const
{
    static const char digits[] = "0123456789ABCDEF";
    QString text;
    text.reserve(36);
    for (const quint8 byte : m_bytes) {
        if (isDashPlace(text.size()))
            text += QLatin1Char('-');
        text += QLatin1Char(digits[byte >> 4]);
        text += QLatin1Char(digits[byte & 15]);
    }
    return text;
}
