#include "support/RyTest.h"
#include "undo/UndoToys.h"

#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

#include <deque>
#include <random>

/// Random programs of edits in and out of holds, locks, clears, undos, points and restores. The model keeps whole
/// copies.
class RyRestorePointsRandomTest : public QObject
{
    Q_OBJECT

    static constexpr int ToyCount = 6;
    static constexpr int Most = 5;

    struct State
    {
        std::vector<int> values, list;
        QStringList captions;
        int index = 0;
        bool operator==(const State &) const = default;
    };
    State state() const
    {
        State now;
        for (const auto &toy : m_toys)
            now.values.push_back(toy->value);
        now.list = m_list->numbers;
        for (int i = 0; i < ryUndoStack()->count(); ++i)
            now.captions.append(ryUndoStack()->caption(i));
        now.index = ryUndoStack()->index();
        return now;
    }
    int pick(int below) { return int(m_rng() % unsigned(below)); }
    void setSomeValue() { m_toys[size_t(pick(ToyCount))]->set(pick(6)); }
    void editList()
    {
        if (pick(2) || m_list->numbers.empty())
            m_list->insert(size_t(pick(int(m_list->numbers.size()) + 1)), pick(100));
        else
            m_list->remove(size_t(pick(int(m_list->numbers.size()))));
    }
    void remember(const State &before)
    {
        m_model.push_front(before);
        if (m_model.size() > Most)
            m_model.pop_back();
    }

    std::mt19937 m_rng;
    std::vector<std::unique_ptr<ToyValue>> m_toys;
    std::unique_ptr<ToyList> m_list;
    std::deque<State> m_model; // newest first

private slots:
    void cleanup()
    {
        ryRestorePoints()->setMost(0);
        ryUndoStack()->clearAll();
    }
    void pointsGiveBackTheirStates();
};

void RyRestorePointsRandomTest::pointsGiveBackTheirStates()
{
    RyUndoStack *stack = ryUndoStack();
    RyRestorePoints *points = ryRestorePoints();
    int restored = 0, guarded = 0, unguarded = 0, clears = 0, cancels = 0;
    for (unsigned program = 0; program < 60; ++program) {
        m_rng.seed(ryTestSeed() + program);
        points->setMost(0);
        points->setMost(Most);
        stack->clearAll();
        m_model.clear();
        m_toys.clear();
        for (int i = 0; i < ToyCount; ++i)
            m_toys.push_back(std::make_unique<ToyValue>());
        m_list = std::make_unique<ToyList>();
        std::vector<std::unique_ptr<RyUndoStackHold>> holds;
        for (int op = 0; op < 2000; ++op) {
            const QByteArray where = QStringLiteral("program %1 op %2").arg(program).arg(op).toUtf8();
            const int kind = pick(100);
            if (kind < 12) {
                holds.push_back(std::make_unique<RyUndoStackHold>());
            } else if (kind < 26 && !holds.empty()) {
                const size_t which = pick(8) == 0 ? 0 : holds.size() - 1;
                holds[which]->accept(QString::number(op));
                holds.erase(holds.begin() + long(which));
            } else if (kind < 32 && !holds.empty()) {
                holds.pop_back();
                ++cancels;
            } else if (kind < 40) {
                stack->undo();
            } else if (kind < 45) {
                stack->redo();
            } else if (kind < 52) {
                RyUndoStackLock lock;
                setSomeValue();
                setSomeValue();
            } else if (kind < 54) {
                // What commands do that clear the history.
                const State before = state();
                const bool idle = holds.empty();
                RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("clearing"));
                RyUndoStackLock lock;
                stack->clearAll();
                setSomeValue();
                if (idle)
                    editList();
                const bool needed = guard.isNeeded();
                QVERIFY2(!idle || needed || before.captions.isEmpty(), where.constData());
                guard.finish();
                if (needed)
                    remember(before);
                ++clears;
                guarded += needed;
            } else if (kind < 60 && holds.empty()) {
                const State before = state();
                RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("step"));
                RyUndoStackHold hold;
                setSomeValue();
                editList();
                const bool loose = pick(4) == 0;
                if (loose) {
                    RyUndoStackLock lock;
                    const auto &toy = m_toys[size_t(pick(ToyCount))];
                    toy->set(toy->value + 1);
                }
                if (pick(3))
                    hold.accept(QString::number(op));
                else
                    hold.cancel();
                QCOMPARE(guard.isNeeded(), loose);
                guard.finish();
                if (loose)
                    remember(before);
                ++unguarded;
            } else if (kind < 63 && holds.empty()) {
                const State before = state();
                QVERIFY(points->take(QString::number(op)));
                remember(before);
            } else if (kind < 67 && holds.empty() && !m_model.empty()) {
                const int which = pick(int(m_model.size()));
                const State before = state();
                QVERIFY2(points->restore(which), where.constData());
                QVERIFY2(state() == m_model[size_t(which)], where.constData());
                m_model.erase(m_model.begin() + which);
                remember(before);
                ++restored;
            } else if (!holds.empty() && pick(3) == 0) {
                editList();
            } else {
                setSomeValue();
            }
            QCOMPARE(points->count(), int(m_model.size()));
        }
        holds.clear();
        // A point and its undo history all the way, and back over all these undos.
        if (m_model.empty())
            continue;
        const int which = pick(int(m_model.size()));
        const State before = state();
        QVERIFY(points->restore(which));
        const State there = state();
        QVERIFY2(there == m_model[size_t(which)], qPrintable(QStringLiteral("program %1, end").arg(program)));
        while (stack->canUndo())
            stack->undo();
        while (stack->canRedo())
            stack->redo();
        while (stack->index() > there.index)
            stack->undo();
        QVERIFY2(state() == there, qPrintable(QStringLiteral("program %1, history").arg(program)));
        while (stack->canUndo())
            stack->undo();
        QVERIFY(points->restore(0));
        QVERIFY2(state() == before, qPrintable(QStringLiteral("program %1, way back").arg(program)));
    }
    std::printf("restored %d, points by commands %d of %d clears, %d steps, %d cancels\n", restored, guarded, clears,
                unguarded, cancels);
    QVERIFY(restored > 500 && guarded > 200 && clears > 500 && unguarded > 500 && cancels > 1000);
}

RY_TEST(RyRestorePointsRandomTest)
#include "tst_RyRestorePointsRandom.moc"
