#include "ryforeign/RyColladaShapes.h"

#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>
#include <cctype>
#include <charconv>

namespace {

QString attribute(const QXmlStreamReader &reader, const char *name)
{
    return reader.attributes().value(QLatin1String(name)).toString();
}

/// Of a reference to something in the same file.
QString reference(const QXmlStreamReader &reader, const char *name)
{
    const QString url = attribute(reader, name);
    return url.startsWith(QLatin1Char('#')) ? url.mid(1) : url;
}

QByteArray textOf(QXmlStreamReader &reader)
{
    return reader.readElementText(QXmlStreamReader::SkipChildElements).toLatin1();
}

/// As far as they are numbers. Independent of the language that the system speaks.
template<typename T>
std::vector<T> numbersIn(const QByteArray &text)
{
    std::vector<T> numbers;
    const char *at = text.constData();
    const char *end = at + text.size();
    for (;;) {
        while (at < end && (std::isspace(static_cast<unsigned char>(*at)) || *at == '+'))
            ++at;
        T number{};
        const auto [behind, failure] = std::from_chars(at, end, number);
        if (behind == at)
            return numbers;
        numbers.push_back(failure == std::errc() ? number : T{}); // too small or too large
        at = behind;
    }
}

/// To the next element that starts within one of that name; false where that one ends.
bool goToNext(QXmlStreamReader &reader, const QString &within)
{
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement && reader.name() == within)
            return false;
        if (token == QXmlStreamReader::StartElement)
            return true;
    }
    return false;
}

} // namespace

RyColladaShapes::RyColladaShapes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QXmlStreamReader reader(&file);
    read(reader);
}

void RyColladaShapes::read(QXmlStreamReader &reader)
{
    QString controller;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == QLatin1String("geometry"))
            readGeometry(reader);
        else if (reader.name() == QLatin1String("controller"))
            controller = attribute(reader, "id");
        else if (reader.name() == QLatin1String("morph"))
            readMorphs(reader, controller);
        else if (reader.name() == QLatin1String("channel"))
            driven.append(attribute(reader, "target").section(QLatin1Char('/'), 0, 0).section(QLatin1Char('('), 0, 0));
        else if (reader.name() == QLatin1String("extra"))
            reader.skipCurrentElement();
    }
}

void RyColladaShapes::readGeometry(QXmlStreamReader &reader)
{
    static const QStringList lists{QStringLiteral("triangles"),  QStringLiteral("polylist"),
                                   QStringLiteral("polygons"),   QStringLiteral("lines"),
                                   QStringLiteral("trifans"),    QStringLiteral("tristrips"),
                                   QStringLiteral("linestrips"), QStringLiteral("points")};
    Geometry geometry;
    geometry.id = attribute(reader, "id");
    geometry.name = attribute(reader, "name");
    while (goToNext(reader, QStringLiteral("geometry"))) {
        if (reader.name() == QLatin1String("source"))
            readSource(reader);
        else if (reader.name() == QLatin1String("extra"))
            reader.skipCurrentElement();
        else if (reader.name() == QLatin1String("input") && attribute(reader, "semantic") == QLatin1String("POSITION"))
            geometry.points = reference(reader, "source");
        else if (lists.contains(reader.name()))
            readPolygons(reader, geometry);
    }
    m_geometryOf.insert(geometry.id, int(m_geometries.size()));
    m_geometries.push_back(std::move(geometry));
}

void RyColladaShapes::readPolygons(QXmlStreamReader &reader, Geometry &geometry)
{
    const QString kind = reader.name().toString();
    Polygons list;
    // The importers' library changes the order of strips.
    list.isKnown = !kind.endsWith(QLatin1String("strips"));
    size_t stride = 1, offset = 0;
    while (goToNext(reader, kind)) {
        if (reader.name() == QLatin1String("input")) {
            const size_t place = std::min(attribute(reader, "offset").toUInt(), 1000u);
            stride = std::max(stride, place + 1);
            if (attribute(reader, "semantic") == QLatin1String("VERTEX"))
                offset = place;
        } else if (reader.name() == QLatin1String("ph")) { // a polygon with holes
            list.isKnown = false;
            reader.skipCurrentElement();
        } else if (reader.name() == QLatin1String("p")) {
            const std::vector<unsigned> numbers = numbersIn<unsigned>(textOf(reader));
            for (size_t i = offset; i < numbers.size(); i += stride)
                list.corners.push_back(numbers[i]);
        }
    }
    geometry.lists.push_back(std::move(list));
}

void RyColladaShapes::readMorphs(QXmlStreamReader &reader, const QString &id)
{
    Morphs all;
    all.id = id;
    all.base = reference(reader, "source");
    all.isRelative = attribute(reader, "method") == QLatin1String("RELATIVE");
    QString targets, weights;
    while (goToNext(reader, QStringLiteral("morph"))) {
        if (reader.name() == QLatin1String("source")) {
            readSource(reader);
        } else if (reader.name() == QLatin1String("input")) {
            const QString semantic = attribute(reader, "semantic");
            if (semantic == QLatin1String("MORPH_TARGET"))
                targets = reference(reader, "source");
            else if (semantic == QLatin1String("MORPH_WEIGHT"))
                weights = reference(reader, "source");
        }
    }
    all.targets = wordsOf(targets);
    all.weights = numbersOf(weights, 1);
    all.weightsId = weights;
    morphs.push_back(std::move(all));
}

void RyColladaShapes::readSource(QXmlStreamReader &reader)
{
    const QString id = attribute(reader, "id");
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement && reader.name() == QLatin1String("source"))
            return;
        if (token != QXmlStreamReader::StartElement)
            continue;
        const QString array = attribute(reader, "id");
        if (reader.name() == QLatin1String("float_array")) {
            m_numbers.insert(array, numbersIn<float>(textOf(reader)));
        } else if (reader.name() == QLatin1String("IDREF_array") || reader.name() == QLatin1String("Name_array")) {
            const QString words = reader.readElementText(QXmlStreamReader::SkipChildElements).simplified();
            m_words.insert(array, words.split(QLatin1Char(' '), Qt::SkipEmptyParts));
        } else if (reader.name() == QLatin1String("accessor")) {
            const QString stride = attribute(reader, "stride");
            m_accessors.insert(id, {reference(reader, "source"), attribute(reader, "offset").toUInt(),
                                    stride.isEmpty() ? 1 : std::max(1u, stride.toUInt()),
                                    attribute(reader, "count").toUInt()});
        }
    }
}

QStringList RyColladaShapes::wordsOf(const QString &source) const
{
    const Accessor accessor = m_accessors.value(source);
    return m_words.value(accessor.array).mid(int(accessor.offset), int(accessor.count));
}

std::vector<float> RyColladaShapes::numbersOf(const QString &source, size_t components) const
{
    const Accessor accessor = m_accessors.value(source);
    const std::vector<float> all = m_numbers.value(accessor.array);
    std::vector<float> numbers;
    for (size_t i = 0; i < accessor.count; ++i) {
        const size_t at = accessor.offset + i * accessor.stride;
        if (at + components > all.size())
            break;
        numbers.insert(numbers.end(), all.begin() + std::ptrdiff_t(at), all.begin() + std::ptrdiff_t(at + components));
    }
    return numbers;
}

const RyColladaShapes::Geometry *RyColladaShapes::find(const QString &id) const
{
    const auto found = m_geometryOf.constFind(id);
    return found == m_geometryOf.cend() ? nullptr : &m_geometries[size_t(*found)];
}

std::vector<float> RyColladaShapes::pointsOf(const Geometry &geometry) const
{
    return numbersOf(geometry.points, 3);
}
