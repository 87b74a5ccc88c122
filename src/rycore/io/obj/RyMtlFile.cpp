#include "rycore/io/obj/RyMtlFile.h"

#include <QHash>
#include <QStringRef>

#include <algorithm>
#include <cmath>

namespace {

/// Between 0 and 1; false for what is no number.
bool toShare(const QStringRef &word, float &share)
{
    bool isNumber = false;
    const double number = word.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return false;
    share = float(std::clamp(number, 0.0, 1.0));
    return true;
}

/// Cuts the next word off the front.
QStringRef takeWord(QStringRef &line)
{
    const auto isBlank = [](QChar c) { return c.isSpace(); };
    const auto begin = std::find_if_not(line.begin(), line.end(), isBlank);
    const auto end = std::find_if(begin, line.end(), isBlank);
    const QStringRef word = line.mid(int(begin - line.begin()), int(end - begin));
    line = line.mid(int(end - line.begin()));
    return word;
}

/// What stands behind the options of a map: a file name, blanks and all.
QString pictureOf(QStringRef line)
{
    static const QHash<QString, int> words = {{"-blendu", 1}, {"-blendv", 1},  {"-boost", 1}, {"-cc", 1},
                                              {"-clamp", 1},  {"-imfchan", 1}, {"-mm", 2},    {"-texres", 1},
                                              {"-bm", 1},     {"-type", 1}}; // that follow an option
    for (;;) {
        QStringRef rest = line;
        const QString option = takeWord(rest).toString();
        if (words.contains(option)) {
            for (int i = words.value(option); i > 0; --i)
                takeWord(rest);
        } else if (option == QLatin1String("-o") || option == QLatin1String("-s") || option == QLatin1String("-t")) {
            for (int i = 0; i < 3; ++i) { // as many numbers as there are
                QStringRef behind = rest;
                bool isNumber = false;
                takeWord(behind).toDouble(&isNumber);
                if (!isNumber)
                    break;
                rest = behind;
            }
        } else {
            return line.trimmed().toString();
        }
        line = rest;
    }
}

QString decoded(const QByteArray &line)
{
    const QString text = QString::fromUtf8(line);
    return text.toUtf8() == line ? text : QString::fromLatin1(line);
}

} // namespace

RyMtlFile::RyMtlFile(const QByteArray &text)
{
    for (int from = 0; from < text.size();) {
        const int end = text.indexOf('\n', from);
        const int length = (end < 0 ? text.size() : end) - from;
        readLine(decoded(QByteArray::fromRawData(text.constData() + from, length)));
        from += length + 1;
    }
}

void RyMtlFile::readLine(const QString &line)
{
    QStringRef rest(&line);
    const QStringRef keyword = takeWord(rest);
    if (keyword == QLatin1String("newmtl")) {
        materials.emplace_back();
        materials.back().name = rest.trimmed().toString();
        m_hasOpacity = false;
    }
    if (materials.empty())
        return;
    Material &material = materials.back();
    if (keyword == QLatin1String("Kd")) {
        std::array<float, 3> color{1, 1, 1};
        if (!toShare(takeWord(rest), color[0]))
            return;
        if (!toShare(takeWord(rest), color[1]) || !toShare(takeWord(rest), color[2]))
            color[1] = color[2] = color[0]; // one number stands for all three
        material.diffuse = color;
    } else if (keyword == QLatin1String("d")) {
        QStringRef word = takeWord(rest);
        if (word == QLatin1String("-halo"))
            word = takeWord(rest);
        m_hasOpacity = toShare(word, material.opacity) || m_hasOpacity;
    } else if (keyword == QLatin1String("Tr")) {
        float transparency = 0.0f;
        // Some programs write it the wrong way round beside a right d.
        if (!m_hasOpacity && toShare(takeWord(rest), transparency))
            material.opacity = 1.0f - transparency;
    } else if (keyword == QLatin1String("map_Kd")) {
        material.picture = pictureOf(rest);
    }
}
