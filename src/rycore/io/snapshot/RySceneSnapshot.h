#pragma once

#include "rycore/io/gltf/document/RyGltfParts.h"
#include "rycore/io/obj/RyObjOrigin.h"
#include "rycore/io/snapshot/RySnapshotPart.h"

#include <QStringList>

#include <optional>

class RyScene;

/// A scene as bytes, from which it can be made again: the document that a save would write, and what files hold only
/// nearly or not at all. Undo history, restore points and what a clip shows are no part of it.
struct RySceneSnapshot
{
    RyGltfParts document;
    QByteArray values;
    QByteArray selection;
    std::vector<QByteArray> positions;    ///< of the meshes, per node in tree order
    bool hasFile = true;                  ///< the scene has a document of its own; otherwise one was made for this
    std::optional<RyObjOrigin::Kept> obj; ///< the file that it came from first, where that is an OBJ file
    QStringList losses;                   ///< what a save of this scene would leave out

    /// The scene stays as it is, the file that it came from and what is kept of it too. The weights of parametric
    /// figures are not fitted for it. `jointsOnly`: clips stay as they are. None with a reason where there is no
    /// memory.
    static std::optional<RySceneSnapshot> take(const RyScene &scene, bool jointsOnly, QString *error);

    /// For a file, and back; none with a reason when something is missing.
    RySnapshotParts parts() const;
    static std::optional<RySceneSnapshot> fromParts(const RySnapshotParts &parts, QString *error);
    /// Whether this program reads what `parts` begin with, which need not be all; false with a reason.
    static bool isKnown(const RySnapshotParts &parts, QString *error);

    /// Replaces the scene, which then counts as unsaved and has no undo history. `path`: where the scene belongs, for
    /// names and messages. False with a reason, and the scene as it was; empty where memory ran out while it was
    /// replaced.
    bool restore(RyScene &scene, const QString &path, QString *error, QStringList *messages) const;
};
