#include "support/RyTest.h"
#include "undo/UndoToys.h"

#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <random>

/// Random programs of edits, holds, locks, undos and redos, compared with models that know nothing of items or keys.
class RyUndoStackRandomTest : public QObject
{
    Q_OBJECT

    static constexpr int toyCount = 5;
    using Rng = std::mt19937;
    static int pick(Rng &rng, int below) { return int(rng() % unsigned(below)); }

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    /// Every edit lies in a hold: each undo must give exactly the whole state that was there before the step.
    void recordedProgramsReturnToSnapshots();
    /// Edits outside holds and under locks as well: the model swaps plain maps.
    void mixedProgramsFollowThePlainModel();
};

void RyUndoStackRandomTest::recordedProgramsReturnToSnapshots()
{
    struct State
    {
        std::vector<int> values, list;
        bool operator==(const State &) const = default;
    };
    struct OpenHold
    {
        std::unique_ptr<RyUndoStackHold> hold;
        State before;
    };
    RyUndoStack *stack = ryUndoStack();
    long edits = 0, cancels = 0, undos = 0, redos = 0;
    for (unsigned program = 0; program < 3000; ++program) {
        Rng rng(ryTestSeed() + program);
        stack->clearAll();
        std::vector<std::unique_ptr<ToyValue>> toys;
        for (int i = 0; i < toyCount; ++i)
            toys.push_back(std::make_unique<ToyValue>());
        ToyList list;
        const auto state = [&] {
            State now;
            for (const auto &toy : toys)
                now.values.push_back(toy->value);
            now.list = list.numbers;
            return now;
        };
        std::vector<OpenHold> holds;
        std::vector<State> history{state()}; // state before step 0, after step 0, after step 1 ...
        size_t index = 0;
        for (int op = 0; op < 60; ++op) {
            const int kind = pick(rng, 10);
            if (kind <= 1) {
                holds.push_back({std::make_unique<RyUndoStackHold>(), state()});
            } else if (kind == 2 && !holds.empty()) {
                holds.back().hold->accept(QString::number(op));
                holds.pop_back();
                if (holds.empty()) {
                    history.resize(++index);
                    history.push_back(state());
                }
            } else if (kind == 3 && !holds.empty()) {
                if (pick(rng, 2))
                    holds.back().hold->cancel();
                else
                    holds.back().hold.reset();
                QVERIFY2(state() == holds.back().before,
                         qPrintable(QString("cancel, program %1 op %2").arg(program).arg(op)));
                holds.pop_back();
                ++cancels;
            } else if (kind == 4) {
                if (holds.empty() && index > 0) {
                    --index;
                    ++undos;
                }
                stack->undo();
                if (holds.empty())
                    QVERIFY2(state() == history[index],
                             qPrintable(QString("undo, program %1 op %2").arg(program).arg(op)));
            } else if (kind == 5) {
                if (holds.empty() && index + 1 < history.size()) {
                    ++index;
                    ++redos;
                }
                stack->redo();
                if (holds.empty())
                    QVERIFY2(state() == history[index],
                             qPrintable(QString("redo, program %1 op %2").arg(program).arg(op)));
            } else if (!holds.empty()) {
                ++edits;
                const int what = pick(rng, 4);
                if (what <= 1)
                    toys[size_t(pick(rng, toyCount))]->set(pick(rng, 4));
                else if (what == 2 || list.numbers.empty())
                    list.insert(size_t(pick(rng, int(list.numbers.size()) + 1)), pick(rng, 100));
                else
                    list.remove(size_t(pick(rng, int(list.numbers.size()))));
            }
            QCOMPARE(stack->count(), int(history.size()) - 1);
            QCOMPARE(stack->index(), int(index));
            QCOMPARE(stack->isHoldOpen(), !holds.empty());
        }
        while (!holds.empty()) {
            const State before = holds.back().before;
            holds.pop_back();
            QVERIFY(state() == before);
        }
        // All the way back and forth once more.
        while (stack->canUndo()) {
            stack->undo();
            QVERIFY(state() == history[--index]);
        }
        QCOMPARE(index, size_t(0));
        while (stack->canRedo()) {
            stack->redo();
            QVERIFY(state() == history[++index]);
        }
        QCOMPARE(index, history.size() - 1);
    }
    // The programs did exercise what they are meant to.
    QVERIFY(edits > 10000 && cancels > 1000 && undos > 1000 && redos > 500);
}

void RyUndoStackRandomTest::mixedProgramsFollowThePlainModel()
{
    struct Model
    {
        using Changes = std::map<int, int>; // which value, what it was
        std::vector<int> values = std::vector<int>(toyCount, 0);
        std::vector<Changes> holds, steps;
        size_t index = 0;
        int locks = 0;

        void set(int i, int v)
        {
            if (!holds.empty() && locks == 0 && values[size_t(i)] != v)
                holds.back().insert({i, values[size_t(i)]});
            values[size_t(i)] = v;
        }
        void swap(Changes &changes)
        {
            for (auto &[i, v] : changes)
                std::swap(values[size_t(i)], v);
        }
        void accept()
        {
            Changes top = holds.back();
            holds.pop_back();
            if (!holds.empty()) {
                holds.back().insert(top.begin(), top.end());
                return;
            }
            steps.resize(index++);
            steps.push_back(top);
        }
        void cancel()
        {
            Changes top = holds.back();
            holds.pop_back();
            swap(top);
        }
        void undo()
        {
            if (holds.empty() && index > 0)
                swap(steps[--index]);
        }
        void redo()
        {
            if (holds.empty() && index < steps.size())
                swap(steps[index++]);
        }
        void clear()
        {
            steps.clear();
            index = 0;
            for (Changes &hold : holds)
                hold.clear();
        }
    };
    RyUndoStack *stack = ryUndoStack();
    for (unsigned program = 0; program < 4000; ++program) {
        Rng rng(ryTestSeed() + 1000000u + program);
        stack->clearAll();
        std::vector<std::unique_ptr<ToyValue>> toys;
        for (int i = 0; i < toyCount; ++i)
            toys.push_back(std::make_unique<ToyValue>());
        Model model;
        std::vector<std::unique_ptr<RyUndoStackHold>> holds;
        std::vector<std::unique_ptr<RyUndoStackLock>> locks;
        for (int op = 0; op < 80; ++op) {
            const int kind = pick(rng, 40);
            if (kind < 5) {
                holds.push_back(std::make_unique<RyUndoStackHold>());
                model.holds.push_back({});
            } else if (kind < 9 && !holds.empty()) {
                holds.back()->accept(QStringLiteral("step"));
                holds.pop_back();
                model.accept();
            } else if (kind < 11 && !holds.empty()) {
                holds.pop_back();
                model.cancel();
            } else if (kind < 13) {
                locks.push_back(std::make_unique<RyUndoStackLock>());
                ++model.locks;
            } else if (kind < 16 && !locks.empty()) {
                const size_t which = size_t(pick(rng, int(locks.size())));
                if (pick(rng, 2)) {
                    locks[which]->unlock();
                    locks[which]->unlock();
                }
                locks.erase(locks.begin() + long(which));
                --model.locks;
            } else if (kind < 20) {
                stack->undo();
                model.undo();
            } else if (kind < 23) {
                stack->redo();
                model.redo();
            } else if (kind == 23 && pick(rng, 4) == 0) {
                stack->clearAll();
                model.clear();
            } else {
                const int i = pick(rng, toyCount), v = pick(rng, 5);
                toys[size_t(i)]->set(v);
                model.set(i, v);
            }
            for (int i = 0; i < toyCount; ++i)
                QVERIFY2(toys[size_t(i)]->value == model.values[size_t(i)],
                         qPrintable(QString("program %1 op %2 kind %3").arg(program).arg(op).arg(kind)));
            QCOMPARE(stack->count(), int(model.steps.size()));
            QCOMPARE(stack->index(), int(model.index));
            QCOMPARE(stack->isLocked(), model.locks > 0);
            QCOMPARE(stack->isRecording(), model.locks == 0 && !model.holds.empty());
            for (size_t step = 0; step < model.steps.size(); ++step)
                QCOMPARE(stack->entryCount(int(step)), int(model.steps[step].size()));
        }
        while (!holds.empty())
            holds.pop_back();
    }
}

RY_TEST(RyUndoStackRandomTest)
#include "tst_RyUndoStackRandom.moc"
