#include "rycore/io/obj/RyObjParser.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>

namespace {

constexpr double largestNumber = 1e30;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

/// Neither a blank nor the end of a line.
bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return int(byte < 0x09) | int(static_cast<unsigned char>(byte - 0x0e) < 0x12) | int(byte == 0x7f);
}

/// Where the first control byte stands; the text's size without one.
std::size_t findControl(std::string_view text)
{
    constexpr std::size_t Block = 64; // a loop of fixed length, without a way out, is done in wide registers
    std::size_t at = 0;
    for (; at + Block <= text.size(); at += Block) {
        unsigned char found = 0;
        for (std::size_t i = 0; i < Block; ++i)
            found |= static_cast<unsigned char>(isControl(text[at + i]));
        if (found)
            break;
    }
    while (at < text.size() && !isControl(text[at]))
        ++at;
    return at;
}

/// Some programs end a text with a control byte of old, or fill it up with zeros.
std::size_t endOfText(std::string_view text)
{
    std::size_t end = text.size();
    while (end > 0 && (isControl(text[end - 1]) || isBlank(text[end - 1]) || text[end - 1] == '\n'))
        --end;
    while (end < text.size() && !isControl(text[end]))
        ++end;
    return end;
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Cuts the next word off the front; empty at the end.
std::string_view takeWord(std::string_view &line)
{
    while (!line.empty() && isBlank(line.front()))
        line.remove_prefix(1);
    std::size_t length = 0;
    while (length < line.size() && !isBlank(line[length]))
        ++length;
    const std::string_view word = line.substr(0, length);
    line.remove_prefix(length);
    return word;
}

QString shown(std::string_view text)
{
    const QString result = QString::fromUtf8(text.data(), int(std::min<std::size_t>(text.size(), 40)));
    return text.size() > 40 ? result + QStringLiteral("...") : result;
}

bool isUtf8(std::string_view text)
{
    const QString decoded = QString::fromUtf8(text.data(), int(text.size()));
    const QByteArray encoded = decoded.toUtf8();
    return std::string_view(encoded.constData(), std::size_t(encoded.size())) == text;
}

QString decodedName(std::string_view text)
{
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return QString::fromLatin1(text.data(), int(text.size()));
    return isUtf8(text) ? QString::fromUtf8(text.data(), int(text.size()))
                        : QString::fromLatin1(text.data(), int(text.size()));
}

bool toNumber(std::string_view word, double &number)
{
    if (word.size() > 1 && word.front() == '+')
        word.remove_prefix(1);
    const std::from_chars_result result = std::from_chars(word.data(), word.data() + word.size(), number);
    return result.ec == std::errc() && result.ptr == word.data() + word.size() && std::abs(number) <= largestNumber;
}

} // namespace

bool RyObjParser::failAt(int line, const QString &reason)
{
    m_error = QStringLiteral("line %1: %2").arg(line).arg(reason);
    return false;
}

bool RyObjParser::fail(const QString &reason)
{
    return failAt(m_line, m_isUnfinishedLine ? reason + QStringLiteral(" (the file is cut off here)") : reason);
}

void RyObjParser::warn(int line, const QString &text)
{
    constexpr int most = 100;
    if (m_warningCount < most)
        m_file.warnings.append(QStringLiteral("line %1: %2").arg(line).arg(text));
    else if (m_warningCount == most)
        m_file.warnings.append(QStringLiteral("there are more warnings like these"));
    ++m_warningCount;
}

bool RyObjParser::checkText()
{
    const std::string_view text = m_text.substr(0, endOfText(m_text));
    const std::size_t at = findControl(text);
    if (at == text.size())
        return true;
    const auto found = text.begin() + std::ptrdiff_t(at);
    return failAt(
        1 + int(std::count(text.begin(), found, '\n')),
        QStringLiteral("the control byte %1; this is not a text").arg(int(static_cast<unsigned char>(*found))));
}

bool RyObjParser::parse()
{
    if (!checkText())
        return false;
    std::string_view rest = m_text.substr(0, endOfText(m_text));
    if (rest.substr(0, 3) == "\xef\xbb\xbf")
        rest.remove_prefix(3);
    int lineNumber = 0;
    while (!rest.empty()) {
        m_line = ++lineNumber;
        std::size_t end = rest.find('\n');
        m_isUnfinishedLine = end == std::string_view::npos;
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(m_isUnfinishedLine ? rest.size() : end + 1);
        m_joined.clear();
        // A backslash at the end continues the line.
        while (!trimmed(line).empty() && trimmed(line).back() == '\\' && !rest.empty()) {
            m_joined.append(line.data(), int(line.rfind('\\')));
            m_joined.append(' ');
            ++lineNumber;
            end = rest.find('\n');
            m_isUnfinishedLine = end == std::string_view::npos;
            line = rest.substr(0, end);
            rest.remove_prefix(m_isUnfinishedLine ? rest.size() : end + 1);
        }
        if (!m_joined.isEmpty()) {
            m_joined.append(line.data(), int(line.size()));
            line = std::string_view(m_joined.constData(), std::size_t(m_joined.size()));
        }
        if (!readLine(line))
            return false;
    }
    m_isUnfinishedLine = false;
    if (m_file.positions.empty()) {
        m_error = QStringLiteral("there are no vertices: this is not an OBJ file or it is empty");
        return false;
    }
    return checkCorners();
}

bool RyObjParser::readLine(std::string_view line)
{
    const std::string_view keyword = takeWord(line);
    if (keyword.empty())
        return true;
    if (keyword.front() == '#') {
        rememberUnit(line);
        return true;
    }
    if (keyword == "v")
        return readVertex(line);
    if (keyword == "vt") {
        double numbers[3];
        readLooseNumbers(line, numbers, 1, "a texture coordinate");
        m_file.texcoords.push_back({numbers[0], numbers[1]});
    } else if (keyword == "vn") {
        double numbers[3];
        readLooseNumbers(line, numbers, 3, "a normal");
        m_file.normals.push_back({numbers[0], numbers[1], numbers[2]});
    } else if (keyword == "f" || keyword == "fo") {
        return readFacet(line);
    } else if (keyword == "g") {
        rememberName(line, m_file.groups, m_groupPlaces, m_group);
    } else if (keyword == "o") {
        rememberName(line, m_file.objects, m_objectPlaces, m_object);
    } else if (keyword == "usemtl") {
        rememberName(line, m_file.materials, m_materialPlaces, m_material);
    } else if (keyword == "mtllib") {
        m_file.materialLibraries.append(decodedName(trimmed(line)));
    }
    return true; // everything else is kept in the text and means nothing here
}

void RyObjParser::readLooseNumbers(std::string_view line, double out[3], int least, const char *what)
{
    bool fits = true;
    for (int i = 0; i < 3; ++i) {
        out[i] = 0.0;
        const std::string_view word = takeWord(line);
        if (!word.empty() && word.front() != '#' && toNumber(word, out[i]))
            continue;
        out[i] = 0.0;
        if (i < least || !word.empty())
            fits = false;
        if (word.empty())
            line = {};
    }
    if (!fits)
        warn(m_line, QStringLiteral("%1 has numbers that cannot be used; they read as 0").arg(QString::fromUtf8(what)));
}

bool RyObjParser::readVertex(std::string_view line)
{
    std::array<double, 3> position;
    const std::string_view rest = trimmed(line);
    for (int i = 0; i < 3; ++i) {
        const std::string_view word = takeWord(line);
        if (word.empty())
            return fail(QStringLiteral("a vertex needs three numbers and has %1").arg(i));
        if (!toNumber(word, position[std::size_t(i)]))
            return fail(QStringLiteral("\"%1\" is not a number that can be used").arg(shown(word)));
    }
    m_file.positions.push_back(position);
    // A continued line does not stand in the source in one piece and cannot be patched there.
    m_file.m_numberOffsets.push_back(m_joined.isEmpty() ? int(rest.data() - m_text.data()) : -1);
    return true;
}

bool RyObjParser::readIndex(std::string_view text, std::size_t count, const char *what, int &index)
{
    long long number = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec == std::errc::result_out_of_range || number > INT_MAX || number < -INT_MAX)
        return fail(QStringLiteral("%1 %2 does not exist").arg(QString::fromUtf8(what), shown(text)));
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        return fail(QStringLiteral("\"%1\" is not the index of a %2").arg(shown(text), QString::fromUtf8(what)));
    if (number < 0)
        number += static_cast<long long>(count) + 1; // counted back from the last one so far
    if (number < 1)
        return fail(QStringLiteral("%1 %2 does not exist").arg(QString::fromUtf8(what), shown(text)));
    index = int(number - 1);
    return true;
}

bool RyObjParser::readCorner(std::string_view token, RyObjFile::Corner &corner)
{
    const std::size_t first = token.find('/');
    if (!readIndex(token.substr(0, first), m_file.positions.size(), "vertex", corner.vertex))
        return false;
    if (first == std::string_view::npos)
        return true;
    token.remove_prefix(first + 1);
    const std::size_t second = token.find('/');
    const std::string_view texcoord = token.substr(0, second);
    if (!texcoord.empty() && !readIndex(texcoord, m_file.texcoords.size(), "texture coordinate", corner.texcoord))
        return false;
    if (second == std::string_view::npos)
        return true;
    const std::string_view normal = token.substr(second + 1);
    return normal.empty() || readIndex(normal, m_file.normals.size(), "normal", corner.normal);
}

bool RyObjParser::readFacet(std::string_view line)
{
    RyObjFile::Facet facet;
    facet.firstCorner = int(m_file.corners.size());
    facet.group = m_group;
    facet.object = m_object;
    facet.material = m_material;
    for (;;) {
        const std::string_view token = takeWord(line);
        if (token.empty() || token.front() == '#')
            break;
        RyObjFile::Corner corner;
        if (!readCorner(token, corner))
            return false;
        m_file.corners.push_back(corner);
    }
    facet.cornerCount = int(m_file.corners.size()) - facet.firstCorner;
    if (facet.cornerCount < 3) {
        m_file.corners.resize(std::size_t(facet.firstCorner));
        if (m_isUnfinishedLine)
            return fail(QStringLiteral("a face with %1 corners").arg(facet.cornerCount));
        warn(m_line, QStringLiteral("a face with %1 corners is passed over").arg(facet.cornerCount));
        return true;
    }
    m_file.facets.push_back(facet);
    m_facetLines.push_back(m_line);
    return true;
}

void RyObjParser::rememberUnit(std::string_view comment)
{
    static const QHash<QByteArray, double> centimetres = {
        {"mm", 0.1},         {"millimeter", 0.1}, {"millimetre", 0.1}, {"cm", 1.0},      {"centimeter", 1.0},
        {"centimetre", 1.0}, {"dm", 10.0},        {"decimeter", 10.0}, {"m", 100.0},     {"decimetre", 10.0},
        {"meter", 100.0},    {"metre", 100.0},    {"in", 2.54},        {"inch", 2.54},   {"ft", 30.48},
        {"foot", 30.48},     {"yd", 91.44},       {"yard", 91.44},     {"inches", 2.54}, {"feet", 30.48}};
    bool isAsked = false;
    while (m_file.statedUnit == 0.0) {
        const std::string_view word = takeWord(comment);
        if (word.empty())
            return;
        QByteArray plain;
        for (const char c : word) {
            if (c != ':' && c != '=' && c != '(' && c != ')' && c != ',')
                plain.append(c);
        }
        plain = plain.toLower();
        if (plain == "unit" || plain == "units") {
            isAsked = true;
            continue;
        }
        if (!isAsked || plain.isEmpty() || plain == "are" || plain == "is")
            continue;
        if (!centimetres.contains(plain) && plain.endsWith('s'))
            plain.chop(1);
        m_file.statedUnit = centimetres.value(plain, 0.0);
        return;
    }
}

void RyObjParser::rememberName(std::string_view line, std::vector<QString> &names, RyFirstPlaces<QString> &places,
                               int &current)
{
    QString name = decodedName(trimmed(line));
    const auto nameAt = [&names](int place) -> const QString & { return names[std::size_t(place)]; };
    current = places.find(name, int(names.size()), nameAt);
    if (current >= 0)
        return;
    current = int(names.size());
    places.append(name, current, nameAt);
    names.push_back(std::move(name));
}

bool RyObjParser::checkCorners()
{
    // Only now: a face may stand before its vertices.
    for (std::size_t i = 0; i < m_file.facets.size(); ++i) {
        const RyObjFile::Facet &facet = m_file.facets[i];
        for (int k = 0; k < facet.cornerCount; ++k) {
            RyObjFile::Corner &corner = m_file.corners[std::size_t(facet.firstCorner + k)];
            if (corner.vertex >= int(m_file.positions.size())) {
                return failAt(m_facetLines[i], QStringLiteral("vertex %1 does not exist (there are %2)")
                                                   .arg(corner.vertex + 1)
                                                   .arg(m_file.positions.size()));
            }
            if (corner.texcoord >= int(m_file.texcoords.size())) {
                warn(m_facetLines[i], QStringLiteral("texture coordinate %1 does not exist").arg(corner.texcoord + 1));
                corner.texcoord = -1;
            }
            if (corner.normal >= int(m_file.normals.size())) {
                warn(m_facetLines[i], QStringLiteral("normal %1 does not exist").arg(corner.normal + 1));
                corner.normal = -1;
            }
        }
    }
    return true;
}
