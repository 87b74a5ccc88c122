#pragma once

#include "ClipEdits.h"

#include <QString>
#include <QTemporaryDir>

#include <array>

/// One file that is opened, edited and saved several times in a row, each time from what was saved last.
class ClipSessions
{
public:
    /// Of the height.
    static constexpr double Tolerance = 1e-5;

    explicit ClipSessions(std::mt19937 &random) : m_random(random) {}

    /// After each session: no vertex of any frame stands elsewhere than in the file that the session opened, nodes that
    /// are no bones stand where they did, the scene comes back, a session without edits writes the same bytes, no
    /// message speaks of clips but of removed channels. Empty when all of it holds.
    QString check(const QString &path, const ClipEdits::Kind &kind, const ClipChoice &choice = {});

    /// One kind after the other, each from the same file; empty or the kind and what does not hold.
    QString checkAll(const QString &path, const std::vector<const char *> &kinds, const ClipChoice &choice = {});

    int count = 3;                 ///< of sessions
    std::array<qint64, 3> sizes{}; ///< of the files of the last check
    bool mayTell = false;          ///< messages may speak of clips
    bool isShown = true;  ///< false: the file's pose is sheared, which a scene shows and keeps as near as it can
    QStringList messages; ///< of the last save
    double worst = 0.0;   ///< distance of the last check, of the height

private:
    QString checkOne(const QString &path, const QString &saved, const ClipEdits::Kind &kind, ClipChoice choice);
    QString filePath(const QString &folder, const QString &path) const;

    QTemporaryDir m_folder;
    std::mt19937 &m_random;
};

/// Nodes of the file that are neither bones nor marks of end points: they stay in the world when bones are edited.
std::set<int> nodesBesideBones(const CharacterScene &character);
/// A channel that says something else in the second file: other numbers, another kind. Channels of nodes in `without`
/// are left aside. Empty when there is none.
QString changedChannel(const GltfEvaluator &before, const GltfEvaluator &after, const std::set<int> &without = {});
