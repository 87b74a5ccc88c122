#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"

class RyFacetMesh;

/// Meshes in scripts: what they are made of, to read, and their face groups. Vertices and facets go by numbers from 0.
class RyFacetMeshPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyFacetMeshPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    Q_INVOKABLE int getNumVertices() const;
    Q_INVOKABLE int getNumFacets() const;
    /// A place in figure space, in centimetres, as bound. Throws for a number that no vertex has.
    Q_INVOKABLE QScriptValue getVertex(int index) const;
    /// The vertices at the three or four corners. Throws for a number that no facet has.
    Q_INVOKABLE QScriptValue getFacetVertices(int index) const;
    Q_INVOKABLE QStringList getFaceGroupNames() const;
    /// The facets of a group, ascending. Throws for a name that no group has.
    Q_INVOKABLE QScriptValue getFaceGroup(const QString &name) const;
    /// Makes a group of exactly these facets, which leave the groups they are in; what else was in it is in none.
    /// Throws for an empty name and for what is no number of a facet. Undoable.
    Q_INVOKABLE void setFaceGroup(const QString &name, const QScriptValue &facets) const;

    // --- The same of a mesh outside of a script; 0 and none for null.
    static int numVertices(const RyFacetMesh *mesh);
    static int numFacets(const RyFacetMesh *mesh);
    static QStringList faceGroupNames(const RyFacetMesh *mesh);
};
