#include "rycore/ui/RyNumberExpression.h"

#include <QCoreApplication>

#include <cmath>

namespace {

constexpr int DeepestNesting = 50;

/// A parser that goes down one function for each level of binding.
class Parser
{
public:
    explicit Parser(const QString &text) : m_text(text) {}

    bool parse(double &value)
    {
        value = sum();
        skipBlanks();
        if (m_error.isEmpty() && m_place < m_text.size())
            fail(tr("“%1” is not expected here").arg(m_text.mid(m_place)));
        if (m_error.isEmpty() && !std::isfinite(value))
            fail(tr("the result is not a number"));
        return m_error.isEmpty();
    }
    const QString &error() const { return m_error; }

private:
    static QString tr(const char *text) { return QCoreApplication::translate("RyNumberExpression", text); }

    void fail(const QString &reason)
    {
        if (m_error.isEmpty())
            m_error = reason;
    }
    void skipBlanks()
    {
        while (m_place < m_text.size() && m_text[m_place].isSpace())
            ++m_place;
    }
    bool take(char c)
    {
        skipBlanks();
        if (m_place >= m_text.size() || m_text[m_place] != QLatin1Char(c))
            return false;
        ++m_place;
        return true;
    }
    double sum()
    {
        double value = product();
        while (m_error.isEmpty()) {
            if (take('+'))
                value += product();
            else if (take('-'))
                value -= product();
            else
                break;
        }
        return value;
    }
    double product()
    {
        double value = factor();
        while (m_error.isEmpty()) {
            if (take('*')) {
                value *= factor();
            } else if (take('/')) {
                const double divisor = factor();
                if (divisor == 0.0)
                    fail(tr("division by zero"));
                else
                    value /= divisor;
            } else {
                break;
            }
        }
        return value;
    }
    double factor()
    {
        if (++m_depth > DeepestNesting) {
            fail(tr("too many parentheses"));
            return 0.0;
        }
        double value = 0.0;
        if (take('-')) {
            value = -factor();
        } else if (take('+')) {
            value = factor();
        } else if (take('(')) {
            value = sum();
            if (!take(')'))
                fail(tr("a closing parenthesis is missing"));
        } else {
            value = number();
        }
        --m_depth;
        return value;
    }
    double number()
    {
        skipBlanks();
        const int start = m_place;
        while (m_place < m_text.size() && isNumberPart(start))
            ++m_place;
        bool valid = false;
        QString digits = m_text.mid(start, m_place - start);
        const double value = digits.replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&valid);
        if (!valid) {
            const QString rest = m_text.mid(start).trimmed();
            fail(rest.isEmpty() ? tr("a number is missing") : tr("“%1” is not a number").arg(rest));
        }
        return value;
    }
    bool isNumberPart(int start) const
    {
        const QChar c = m_text[m_place];
        if (c.isDigit() || c == QLatin1Char('.') || c == QLatin1Char(','))
            return true;
        const auto isExponent = [&](int i) { return i > start && m_text[i].toLower() == QLatin1Char('e'); };
        return isExponent(m_place) ||
               ((c == QLatin1Char('-') || c == QLatin1Char('+')) && m_place > start + 1 && isExponent(m_place - 1));
    }

    QString m_text;
    QString m_error;
    int m_place = 0;
    int m_depth = 0;
};

} // namespace

bool RyNumberExpression::evaluate(const QString &text, double &value, QString *error)
{
    Parser parser(text);
    double result = 0.0;
    const bool ok = parser.parse(result);
    if (ok)
        value = result;
    if (error)
        *error = parser.error();
    return ok;
}

QString RyNumberExpression::format(double value)
{
    QString text = QString::number(value, 'f', 4);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}
