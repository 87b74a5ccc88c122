#pragma once

#include "EditingStage.h"
#include "RigChecks.h"

#include <QPointer>

#include <random>
#include <unordered_map>

/// Edits at random as a person could make them, with what every state must look like after undo, redo and going back to
/// a restore point.
///
/// Where a step was made, the dump is kept for its index. Where a command left a restore point, the whole state is put
/// aside with the dumps of its history, and a new history begins: older steps survive such a command, but lead
/// elsewhere.
class RandomEdits
{
public:
    RandomEdits(EditingStage &stage, unsigned seed);
    virtual ~RandomEdits() = default;

    /// One edit, undo, redo or return to a restore point. Empty when all is as it must be; otherwise what was done and
    /// what is wrong.
    QString next();
    /// So many of them, and at every twentieth a look whether parametric figures show what new ones would. Empty, or
    /// which one it was and what is wrong.
    QString run(int edits);
    /// Undoes everything that can be undone and goes back through all restore points, comparing each state.
    QString unwind();

    /// Watches the nodes, bindings, maps, joints and parameters that there are now; `stillAlive` names those that live
    /// of all that were ever watched.
    void watch();
    QStringList stillAlive() const;

    int steps() const { return m_steps; }
    int pointsTaken() const { return m_pointsTaken; }
    int restored() const { return m_restored; }
    int refused() const { return m_refused; }

protected:
    int pick(int below) { return int(m_random() % unsigned(below)); }
    bool chance(int percent) { return pick(100) < percent; }
    /// One edit, and what it was called.
    virtual QString edit();
    QString selectSome();
    QString runAction(const char *action, const EditingStage::Fields &fields = {},
                      const QHash<QString, QString> &answers = {});
    QString dragSomething();
    /// So many bones that there had better not be more.
    bool isCrowded() const;
    QString freshName() { return QStringLiteral("bone_%1_").arg(++m_names); }
    /// Called before a bone is deleted: its weights may have nowhere to go.
    void expectToDelete(const RyBone *bone) { m_weightsMayGo = !RigChecks::receiverOf(bone); }

    EditingStage &m_stage;

private:
    struct History
    {
        std::vector<QString> dumps; // by index of the stack; empty below the floor
        int floor = 0;
    };
    struct Point
    {
        QString dump; // with the selection
        int index;
        History history;
    };

    QString moveInHistory();
    QString restore(int point);
    QString compareAt(int index, const QString &doing) const;
    /// Sorts the change into the books; says what is wrong with it.
    QString account(const QString &doing);
    /// Without the selection, which is no part of a step.
    static QString content(const QString &dump);
    static QString firstDifference(const QString &expected, const QString &found);

    std::mt19937 m_random;
    History m_history;
    std::vector<Point> m_points; // newest last, in step with the stack's restore points
    QString m_before;            // the dump before the edit
    QString m_present;           // the dump now where it is known
    int m_indexBefore = 0;
    int m_pointsBefore = 0;
    std::unordered_map<const QObject *, QPointer<QObject>> m_watched;
    bool m_weightsMayGo = false; // of a deleted bone that no other takes them from
    int m_names = 0;
    int m_steps = 0;
    int m_pointsTaken = 0;
    int m_restored = 0;
    int m_refused = 0;
};
