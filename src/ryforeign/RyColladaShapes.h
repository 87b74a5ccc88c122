#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

class QXmlStreamReader;

/// What a Collada file says of its morphs, and of the meshes as far as morphs need it: where their points lie, and
/// which point stands at which corner of their polygons.
class RyColladaShapes
{
public:
    /// A list of polygons, lines or points of one material.
    struct Polygons
    {
        std::vector<unsigned> corners; // numbers of points, in the order of the file
        bool isKnown = true;           // whether all corners are there, in that order
    };
    struct Geometry
    {
        QString id, name;
        std::vector<Polygons> lists;
        QString points; // id of a source
    };
    /// A morph controller.
    struct Morphs
    {
        QString id, weightsId;
        QString base; // id of a geometry
        QStringList targets;
        std::vector<float> weights;
        bool isRelative = false; // targets are what is added, otherwise where it ends up
    };

    /// As far as the file is well formed.
    explicit RyColladaShapes(const QString &path);

    std::vector<Morphs> morphs;
    QStringList driven; // ids of what clips drive

    const Geometry *find(const QString &id) const;
    /// Three numbers a point; empty where they are not there.
    std::vector<float> pointsOf(const Geometry &geometry) const;

private:
    /// A view of an array of numbers or words.
    struct Accessor
    {
        QString array;
        size_t offset = 0, stride = 1, count = 0;
    };

    void read(QXmlStreamReader &reader);
    void readGeometry(QXmlStreamReader &reader);
    void readPolygons(QXmlStreamReader &reader, Geometry &geometry);
    void readMorphs(QXmlStreamReader &reader, const QString &id);
    /// A `<source>`, at whose start the reader stands.
    void readSource(QXmlStreamReader &reader);
    QStringList wordsOf(const QString &source) const;
    std::vector<float> numbersOf(const QString &source, size_t components) const;

    std::vector<Geometry> m_geometries;
    QHash<QString, int> m_geometryOf;             // by ids
    QHash<QString, Accessor> m_accessors;         // by ids of sources
    QHash<QString, std::vector<float>> m_numbers; // by ids of arrays
    QHash<QString, QStringList> m_words;          // likewise
};
