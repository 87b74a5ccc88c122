#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <vector>

/// A Wavefront OBJ file as it stands: vertices in their order, polygons of any number of corners, the names of groups,
/// objects and materials facet by facet. The text itself is kept, so that a file of which only vertices moved comes out
/// with every other line as it was.
class RyObjFile
{
public:
    struct Corner
    {
        int vertex = 0;
        int texcoord = -1; // -1: none
        int normal = -1;
    };

    struct Facet
    {
        int firstCorner = 0;
        int cornerCount = 0;
        int group = -1; // places in `groups`, `objects`, `materials`; -1 before the first such line
        int object = -1;
        int material = -1;
    };

    /// Facets that follow one another with the same group.
    struct Run
    {
        int group = -1;
        int firstFacet = 0;
        int facetCount = 0;
    };

    std::vector<std::array<double, 3>> positions; // in file units
    std::vector<std::array<double, 2>> texcoords;
    std::vector<std::array<double, 3>> normals;
    std::vector<Corner> corners;
    std::vector<Facet> facets;
    std::vector<QString> groups; // each name once, in the order they come first; "g a b" is the one name "a b"
    std::vector<QString> objects;
    std::vector<QString> materials;
    QStringList materialLibraries;
    double statedUnit = 0.0; // centimetres in one unit, as a comment such as "# units: mm" says; 0 when none does
    QStringList warnings;    // what was passed over, with line numbers

    /// Null with a message that names file, line and reason: an index that does not exist, a number that is none, a
    /// file that is cut off, no vertices at all.
    static std::unique_ptr<RyObjFile> read(const QString &path, QString *error);
    /// `name` stands for the file in the message.
    static std::unique_ptr<RyObjFile> parse(const QByteArray &text, const QString &name, QString *error);

    /// A name as a line of the text can hold it: no control characters, nothing that goes on in the next line.
    static QString plainName(const QString &name);

    std::vector<Run> groupRuns() const;

    /// The text that was read with the numbers of the moved vertices replaced; where there is no such text, or its
    /// vertices are not as many as `positions`, a new text of everything here.
    QByteArray toBytes() const;
    /// Writes safely; on failure the old file stays.
    bool write(const QString &path, QString *error) const;

private:
    friend class RyObjParser;
    QByteArray compose() const;

    QByteArray m_source;
    std::vector<std::array<double, 3>> m_sourcePositions;
    std::vector<int> m_numberOffsets; // per vertex, where its three numbers begin in the source
};
