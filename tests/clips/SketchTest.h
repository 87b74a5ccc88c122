#pragma once

#include "CharacterScene.h"
#include "ClipSketch.h"

#include <QObject>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <random>
#include <set>
#include <string>

/// Tests of one sketch with clips, which is written, opened, edited and saved.
class SketchTest : public QObject
{
protected:
    /// A new sketch; its numbers follow from the seed of the run and the row of the test.
    void begin();
    void open();
    /// The path of what was saved; throws when that fails.
    std::string save();
    QString path() const { return m_folder.filePath(QStringLiteral("sketch.gltf")); }
    RyBone *boneOf(int node) const;
    /// Moves and turns the rest of a joint.
    void editBoth(int node);
    static const nlohmann::json &samplerOf(const GltfEvaluator &file, size_t clip, size_t channel);
    /// Verifies that all frames stay, but for those of some clips.
    void showsTheSame(const GltfEvaluator &after, const std::set<int> &otherClips) const;
    /// Verifies that the saved file has no errors that the first one does not have.
    void isValid() const;

    QTemporaryDir m_folder;
    std::mt19937 m_random;
    std::unique_ptr<ClipSketch> m_sketch;
    std::unique_ptr<CharacterScene> m_character;
    QString m_saved;
    QStringList m_messages; // of the last save
};
