#pragma once

#include <QByteArray>
#include <QLatin1String>
#include <QString>

#include <utility>

class QJsonValue;

/// JSON written as it comes, without a tree of values: the text is the one that QJsonDocument writes of the same
/// values, byte by byte, if the keys of each object come in their order (QJsonDocument sorts them). Indented, UTF-8,
/// ends with a line break.
class JsonText
{
public:
    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    /// Of the value that comes next; plain letters.
    void key(QLatin1String name);

    void add(const QString &text);
    /// What is no finite number becomes null.
    void add(double number);
    void add(int number) { add(double(number)); }
    void add(bool yes);
    /// Any value, with all below it.
    void add(const QJsonValue &value);
    template<class Value>
    void add(QLatin1String name, const Value &value)
    {
        key(name);
        add(value);
    }

    /// The document, once everything that began has ended. Nothing is left here.
    QByteArray takeText() { return std::move(m_text += '\n'); }

private:
    void begin(char bracket);
    void end(char bracket);
    /// In front of a value or a key: a comma, the line, the indent.
    void separate();
    void breakLine();

    QByteArray m_text;
    int m_depth = 0;
    bool m_hasBefore = false; // something stands before the next entry of the innermost list
    bool m_afterKey = false;
};
