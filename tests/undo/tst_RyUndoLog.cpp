#include "support/RyTest.h"
#include "undo/UndoToys.h"

#include "rycore/undo/restore/RyUndoLog.h"

namespace {

std::shared_ptr<RyUndoStep> stepOf(ToyValue &toy)
{
    auto step = std::make_shared<RyUndoStep>();
    step->append({&toy, 7}, std::make_shared<ToyValueItem>(&toy));
    return step;
}

} // namespace

/// How long the log gets, and that it leads back all the same.
class RyUndoLogTest : public QObject
{
    Q_OBJECT

    static constexpr int Rounds = 1000;

    RyUndoLog m_log;

    void undo(const std::shared_ptr<RyUndoStep> &step)
    {
        m_log.noteSwap(step, false);
        step->undo();
    }
    void redo(const std::shared_ptr<RyUndoStep> &step)
    {
        m_log.noteSwap(step, true);
        step->redo();
    }
    /// A change that no step holds.
    void set(ToyValue &toy, int value)
    {
        const RyUndoKey key{&toy, 7};
        if (m_log.wants(key))
            m_log.capture(key, std::make_shared<ToyValueItem>(&toy));
        toy.value = value;
    }
    void goBackTo(RyUndoLog::Mark point)
    {
        m_log.swapBack(m_log.mark(), point, [](RyUndoStep &step, bool done) { done ? step.redo() : step.undo(); });
    }

private slots:
    void init() { m_log = RyUndoLog(); }

    void undoAndRedoCancelOut()
    {
        ToyValue one, two;
        const auto first = stepOf(one);
        const auto second = stepOf(two);
        m_log.mark();
        for (int i = 0; i < Rounds; ++i) {
            undo(second);
            undo(first);
            redo(first);
            redo(second);
        }
        QCOMPARE(m_log.length(), 1);
    }

    /// As a listener writes after undo and after redo.
    void otherChangesInBetweenDoNotPileUp()
    {
        ToyValue edited, followed, more;
        const auto step = stepOf(edited);
        const auto another = stepOf(more);
        edited.value = 1;
        more.value = 1;
        const RyUndoLog::Mark point = m_log.mark();
        for (int i = 0; i < Rounds; ++i) {
            undo(another);
            set(followed, 2 * i + 1);
            undo(step);
            set(followed, 2 * i + 2);
            redo(step);
            set(followed, 2 * i + 3);
            redo(another);
        }
        QCOMPARE(m_log.length(), 2);
        undo(step);
        set(followed, -1);
        goBackTo(point);
        QCOMPARE(followed.value, 0);
        QCOMPARE(edited.value, 1);
        QCOMPARE(more.value, 1);
    }

    /// What was changed in between stays in its place where the step holds it too, and where places count.
    void whatTheStepHoldsIsNotMoved()
    {
        ToyValue edited;
        const auto step = stepOf(edited);
        edited.value = 1;
        const RyUndoLog::Mark point = m_log.mark();
        undo(step);
        set(edited, 5);
        redo(step);
        QCOMPARE(m_log.length(), 4);
        goBackTo(point);
        QCOMPARE(edited.value, 1);
    }

    void changesOfAnOrderAreNotMoved()
    {
        ToyValue edited;
        ToyList list;
        const auto step = stepOf(edited);
        m_log.mark();
        undo(step);
        m_log.capture({}, std::make_shared<ToyListItem>(&list, 0, 7, false));
        redo(step);
        QCOMPARE(m_log.length(), 4);
    }

    /// A mark in between is a state to go back to.
    void marksKeepTheirState()
    {
        ToyValue edited, followed;
        const auto step = stepOf(edited);
        edited.value = 1;
        m_log.mark();
        undo(step);
        const RyUndoLog::Mark undone = m_log.mark();
        set(followed, 3);
        redo(step);
        QCOMPARE(m_log.length(), 5);
        goBackTo(undone);
        QCOMPARE(edited.value, 0);
        QCOMPARE(followed.value, 0);
    }

    void droppedMarksJoinWhatLayApart()
    {
        ToyValue edited, followed;
        const auto step = stepOf(edited);
        edited.value = 1;
        m_log.mark();
        for (int i = 0; i < Rounds; ++i) {
            RyUndoLog::Mark command = m_log.mark();
            undo(step);
            set(followed, 2 * i + 1);
            m_log.drop(command);
            command = m_log.mark();
            redo(step);
            set(followed, 2 * i + 2);
            m_log.drop(command);
        }
        QCOMPARE(m_log.length(), 2);
    }
};

RY_TEST(RyUndoLogTest)
#include "tst_RyUndoLog.moc"
