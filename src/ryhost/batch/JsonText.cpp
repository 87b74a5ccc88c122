#include "ryhost/batch/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

/// By the toolkit, which knows how it wants what is rare.
QByteArray rareText(const QJsonValue &value)
{
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

bool isPlain(QChar letter)
{
    return letter.unicode() >= 0x20 && letter != QLatin1Char('"') && letter != QLatin1Char('\\') &&
           !letter.isSurrogate();
}

} // namespace

void JsonText::breakLine()
{
    m_text += '\n';
    m_text.append(4 * m_depth, ' ');
}

void JsonText::separate()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_hasBefore)
        m_text += ',';
    if (m_depth > 0)
        breakLine();
    m_hasBefore = true;
}

void JsonText::begin(char bracket)
{
    separate();
    m_text += bracket;
    ++m_depth;
    m_hasBefore = false;
}

void JsonText::end(char bracket)
{
    --m_depth;
    breakLine();
    m_text += bracket;
    m_hasBefore = true;
}

void JsonText::key(QLatin1String name)
{
    separate();
    m_text += '"';
    m_text.append(name.data(), name.size());
    m_text += "\": ";
    m_afterKey = true;
}

void JsonText::add(const QString &text)
{
    separate();
    if (!std::all_of(text.begin(), text.end(), isPlain)) {
        m_text += rareText(text);
        return;
    }
    m_text += '"';
    m_text += text.toUtf8();
    m_text += '"';
}

void JsonText::add(double number)
{
    separate();
    const double size = std::abs(number);
    const bool isInteger = number == std::trunc(number);
    std::array<char, 40> letters;
    std::to_chars_result written{letters.data(), std::errc::invalid_argument};
    // Between these bounds the toolkit writes no exponent.
    if (isInteger && size < 1e9)
        written = std::to_chars(letters.begin(), letters.end(), int(number));
    else if (!isInteger && size >= 1e-3 && size < 1e5)
        written = std::to_chars(letters.begin(), letters.end(), number, std::chars_format::fixed);
    if (written.ec == std::errc())
        m_text.append(letters.data(), int(written.ptr - letters.data()));
    else
        m_text += rareText(number);
}

void JsonText::add(bool yes)
{
    separate();
    m_text += yes ? "true" : "false";
}

void JsonText::add(const QJsonValue &value)
{
    if (value.isObject()) {
        beginObject();
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            separate();
            m_text += rareText(member.key()) + ": ";
            m_afterKey = true;
            add(QJsonValue(*member));
        }
        endObject();
    } else if (value.isArray()) {
        beginArray();
        const QJsonArray array = value.toArray();
        for (const QJsonValue &each : array)
            add(each);
        endArray();
    } else if (value.isString()) {
        add(value.toString());
    } else {
        separate();
        m_text += rareText(value);
    }
}
