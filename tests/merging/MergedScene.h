#pragma once

#include "CharacterScene.h"

#include <QStringList>

/// A scene of several files, and what must hold when it is saved.
class MergedScene
{
public:
    /// Opens the first file and merges the others. Fails the running test when one cannot be opened.
    explicit MergedScene(const QStringList &paths);

    RyScene scene;
    QStringList messages, losses; ///< of the last save

    RySkeleton *figure(size_t number) const { return scene.getSkeletons()[number]; }
    std::vector<RyBone *> bones() const;
    /// Fails the running test when the scene cannot be saved.
    void save(const QString &path);
    /// Saved, reopened and saved again: the same dump, the same bytes, an independent reader sees what the scene shows,
    /// and the validator has nothing against it. Empty when all of it holds, otherwise what does not.
    QString check(const QString &path, double tolerance = 2e-5);
};

/// How many of each kind a file holds: materials, images, clips, channels, meshes, vertex attributes.
std::map<std::string, size_t> contentsOf(const GltfEvaluator &file);
