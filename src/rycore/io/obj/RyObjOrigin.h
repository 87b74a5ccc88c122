#pragma once

#include "rycore/base/RyRefCounted.h"
#include "rycore/io/obj/RyObjFile.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RySceneOrigin.h"

#include <memory>
#include <vector>

class RyScene;

/// The OBJ file behind a scene: one prop with all its vertices and groups, centimetres per unit found by its height.
class RyObjOrigin : public RySceneOrigin
{
public:
    QString path() const override { return m_path; }
    double unitFactor() const override { return m_unit; }

    /// Null with a message when the file must be refused; otherwise `tops` gets the prop, not yet in a scene.
    static std::unique_ptr<RyObjOrigin> read(const QString &path, double unit, std::vector<RyRef<RyNode>> *tops,
                                             QString *error, QStringList *messages);
    /// What it is made of, to be made again for a scene that was brought back.
    struct Kept
    {
        QString path;
        double unit = 1.0;
        QByteArray text;
        QStringList companions;
        int node = -1; ///< which shows the mesh, in tree order; -1 when none does
    };
    Kept keep(const RyScene &scene) const;
    /// `nodes` of the scene in tree order. Null when the text makes no sense.
    static std::unique_ptr<RyObjOrigin> makeAgain(const Kept &kept, const std::vector<RyNode *> &nodes);

    /// Saves the rest meshes of all props and figures. Where the scene shows the mesh of an OBJ file, that file's text
    /// is kept, with the numbers of moved vertices replaced. What has no place in this format, a message says.
    static bool save(const RyScene &scene, const QString &path, QString *error, QStringList *messages);

private:
    bool isOnlyMeshOf(const RyScene &scene) const;
    bool saveText(const QString &path, QString *error) const;
    bool copyCompanions(const QString &path, QString *error) const;

    QString m_path;
    double m_unit = 1.0;
    std::unique_ptr<RyObjFile> m_file;
    QPointer<RyFacetShape> m_shape;
    QStringList m_companions; // libraries and pictures, from the file's folder on
    std::vector<RyVec3> m_loadedPositions;
};
