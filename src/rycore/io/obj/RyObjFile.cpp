#include "rycore/io/obj/RyObjFile.h"

#include "rycore/io/RySafeFile.h"
#include "rycore/io/obj/RyObjParser.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

/// The shortest text that reads back as the same number; 0 for what is not finite.
void appendNumber(QByteArray &text, double number)
{
    if (!std::isfinite(number))
        number = 0.0;
    char digits[64];
    const std::to_chars_result result = std::to_chars(digits, digits + sizeof(digits), number);
    text.append(digits, int(result.ptr - digits));
}

template<std::size_t N>
void appendLine(QByteArray &text, const char *keyword, const std::array<double, N> &numbers)
{
    text.append(keyword);
    for (const double number : numbers) {
        text.append(' ');
        appendNumber(text, number);
    }
    text.append('\n');
}

void appendName(QByteArray &text, const char *keyword, const std::vector<QString> &names, int index)
{
    text.append(keyword);
    if (index >= 0) {
        text.append(' ');
        text.append(RyObjFile::plainName(names[std::size_t(index)]).toUtf8());
    }
    text.append('\n');
}

/// The place behind `count` words that begin at `from`.
int skipWords(const QByteArray &text, int from, int count)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; };
    int at = from;
    for (int i = 0; i < count; ++i) {
        while (at < text.size() && isBlank(text[at]))
            ++at;
        while (at < text.size() && !isBlank(text[at]) && text[at] != '\n')
            ++at;
    }
    return at;
}

} // namespace

std::unique_ptr<RyObjFile> RyObjFile::read(const QString &path, QString *error)
{
    const auto refuse = [&path, error](const QString &reason) {
        if (error)
            *error = QStringLiteral("%1 cannot be opened: %2").arg(path, reason);
        return nullptr;
    };
    const QFileInfo info(path);
    if (!info.exists())
        return refuse(QStringLiteral("the file does not exist"));
    if (!info.isFile())
        return refuse(QStringLiteral("it is not a file"));
    if (info.size() > 0x7fff0000)
        return refuse(QStringLiteral("it has more than two gigabytes"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return refuse(file.errorString());
    const QByteArray text = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return refuse(file.errorString());
    return parse(text, path, error);
}

std::unique_ptr<RyObjFile> RyObjFile::parse(const QByteArray &text, const QString &name, QString *error)
{
    auto file = std::make_unique<RyObjFile>();
    RyObjParser parser(text, *file);
    if (!parser.parse()) {
        if (error)
            *error = QStringLiteral("%1 cannot be opened: %2").arg(name, parser.error());
        return nullptr;
    }
    file->m_source = text;
    file->m_sourcePositions = file->positions;
    return file;
}

QString RyObjFile::plainName(const QString &name)
{
    QString plain = name;
    for (QChar &c : plain) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            c = QLatin1Char('_');
    }
    if (plain.endsWith(QLatin1Char('\\')))
        plain.back() = QLatin1Char('_');
    return plain.trimmed();
}

std::vector<RyObjFile::Run> RyObjFile::groupRuns() const
{
    std::vector<Run> runs;
    for (int i = 0; i < int(facets.size()); ++i) {
        if (runs.empty() || runs.back().group != facets[std::size_t(i)].group)
            runs.push_back({facets[std::size_t(i)].group, i, 0});
        ++runs.back().facetCount;
    }
    return runs;
}

QByteArray RyObjFile::toBytes() const
{
    if (m_source.isEmpty() || positions.size() != m_sourcePositions.size())
        return compose();
    QByteArray result;
    result.reserve(m_source.size() + m_source.size() / 8);
    int copied = 0;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (positions[i] == m_sourcePositions[i])
            continue;
        const int from = m_numberOffsets[i];
        if (from < 0)
            return compose();
        result.append(m_source.constData() + copied, from - copied);
        for (int k = 0; k < 3; ++k) {
            if (k > 0)
                result.append(' ');
            appendNumber(result, positions[i][std::size_t(k)]);
        }
        copied = skipWords(m_source, from, 3);
    }
    result.append(m_source.constData() + copied, m_source.size() - copied);
    return result;
}

QByteArray RyObjFile::compose() const
{
    QByteArray text;
    for (const QString &library : materialLibraries)
        text.append("mtllib ").append(library.toUtf8()).append('\n');
    for (const auto &position : positions)
        appendLine(text, "v", position);
    for (const auto &texcoord : texcoords)
        appendLine(text, "vt", texcoord);
    for (const auto &normal : normals)
        appendLine(text, "vn", normal);
    int object = -1;
    int group = -1;
    int material = -1;
    for (const Facet &facet : facets) {
        if (facet.object != object)
            appendName(text, "o", objects, object = facet.object);
        if (facet.group != group)
            appendName(text, "g", groups, group = facet.group);
        if (facet.material != material)
            appendName(text, "usemtl", materials, material = facet.material);
        text.append('f');
        for (int k = 0; k < facet.cornerCount; ++k) {
            const Corner &corner = corners[std::size_t(facet.firstCorner + k)];
            text.append(' ').append(QByteArray::number(corner.vertex + 1));
            if (corner.texcoord >= 0 || corner.normal >= 0)
                text.append('/');
            if (corner.texcoord >= 0)
                text.append(QByteArray::number(corner.texcoord + 1));
            if (corner.normal >= 0)
                text.append('/').append(QByteArray::number(corner.normal + 1));
        }
        text.append('\n');
    }
    return text;
}

bool RyObjFile::write(const QString &path, QString *error) const
{
    return RySafeFile::write(path, toBytes(), error);
}
