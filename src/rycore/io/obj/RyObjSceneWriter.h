#pragma once

#include "rycore/io/RyPartNormals.h"
#include "rycore/io/obj/RyObjFile.h"

#include <QHash>
#include <QSet>

class RyFacetMesh;
class RyFacetShape;
class RyScene;
struct RyMaterialLook;
struct RyMeshPart;
struct RyMeshParts;

/// Writes the rest meshes of a scene as an OBJ file: vertices and polygons in their order, groups, texture coordinates,
/// normals, materials with a library and pictures beside the file.
class RyObjSceneWriter
{
public:
    /// `unit`: centimetres in one unit of the file.
    explicit RyObjSceneWriter(double unit) : m_unit(unit) {}

    bool write(const RyScene &scene, const QString &path, QString *error);

private:
    struct Material
    {
        QString name;
        const RyMaterialLook *look;
    };

    void addMesh(const QString &name, const RyFacetShape &shape);
    void addPositions(const std::vector<RyVec3> &positions);
    void addGroups(const RyFacetMesh &mesh);
    int groupOf(const RyFacetMesh &mesh, int facet) const;
    void addPartFacets(const RyFacetShape &shape, int firstVertex, int object);
    void addCoordinates(const RyMeshPart &part, std::vector<int> &places);
    void addNormals(const RyPartNormals &shown, const RyMeshPart &part, std::vector<int> &places);
    int materialOf(const RyMeshParts &parts, int look);
    bool writeLibrary(const QString &path, QString *error);
    /// A file beside the one that names it.
    bool writeCompanion(const QString &path, const QByteArray &bytes, QString *error);
    QByteArray materialText(const QString &folder, const Material &material, QString *error);
    /// The name of a file in the folder that holds these bytes; empty when it cannot be written.
    QString writePicture(const QString &folder, const RyMaterialLook &look, QString *error);

    double m_unit;
    RyObjFile m_file;
    std::vector<int> m_groupPlaces; // of the mesh at hand
    QHash<QString, int> m_places;   // of groups by name
    std::vector<Material> m_materials;
    QHash<QString, std::vector<int>> m_ofLookName; // places in it
    QSet<QString> m_materialNames;
    QHash<QByteArray, QString> m_pictures; // names by bytes
    QStringList m_newCompanions;           // paths of files that were not there before
};
