#pragma once

#include "rycore/base/RyRefCounted.h"
#include "rycore/io/obj/RyObjFile.h"
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
    /// Saves the rest meshes of all props and figures. A scene that came from an OBJ file keeps that file's text, with
    /// the numbers of moved vertices replaced; bones have no place in this format, which a message says.
    static bool save(const RyScene &scene, const QString &path, QString *error, QStringList *messages);

private:
    QString m_path;
    double m_unit = 1.0;
    std::unique_ptr<RyObjFile> m_file;
    QPointer<RyNode> m_node;
    std::vector<RyVec3> m_loadedPositions;
};
