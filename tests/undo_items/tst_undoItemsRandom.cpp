#include "support/RyTest.h"

#include "ItemKinds.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <deque>
#include <functional>

/// Random edits of every kind of value, in a figure of the scene and in one outside that is deleted in between, with
/// nested holds, cancels, undo, redo and restore points. What comes back is compared whole.
class UndoItemsRandomTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        ryRestorePoints()->setMost(MostPoints);
    }
    void cleanup()
    {
        m_holds.clear();
        ryRestorePoints()->setMost(0);
        ryUndoStack()->clearAll();
        m_loose.reset();
        m_kept.reset();
        ryScene()->clear();
        QVERIFY(ryUndoStack()->count() == 0);
    }
    void programs_data();
    void programs();

private:
    static constexpr int MostPoints = 4;
    struct State
    {
        QString dump;
        QMap<QString, QString> objects;
    };
    struct History
    {
        std::vector<State> states; // before the first step, after it ...
        std::vector<Recorded> steps;
        int index = 0;
    };
    struct Point
    {
        State state;
        History history;
    };
    struct OpenHold
    {
        std::unique_ptr<RyUndoStackHold> hold;
        State before;
        Recorded recorded;
    };

    int pick(int below) { return int(m_random() % unsigned(below)); }
    void start(unsigned seed);
    void makeLoose() { m_loose = std::make_unique<ItemFamily>(QStringLiteral("loose%1.").arg(++m_generation)); }
    State state() const;
    static QString difference(const State &found, const State &wanted);
    void edit(const std::vector<ItemKind> &kinds, Recorded &recorded);
    QString act(const std::vector<ItemKind> &kinds);
    QString closeHold(bool accept);
    QString moveInHistory(bool undo);
    void runCommand(const std::vector<ItemKind> &kinds);
    QString restore();

    std::mt19937 m_random;
    std::unique_ptr<ItemFamily> m_kept;  // in the scene
    std::unique_ptr<ItemFamily> m_loose; // outside
    int m_generation = 0;
    std::vector<OpenHold> m_holds;
    History m_history;
    std::deque<Point> m_points; // newest first
    int m_compared = 0;
    int m_deleted = 0;
};

void UndoItemsRandomTest::start(unsigned seed)
{
    m_random.seed(seed);
    m_loose.reset();
    m_kept.reset();
    ryScene()->clear();
    m_kept = std::make_unique<ItemFamily>(QStringLiteral("kept."));
    for (const auto &skeleton : m_kept->skeletons)
        ryScene()->addNode(skeleton);
    makeLoose();
    ryUndoStack()->clearAll();
    m_points.clear();
    m_history = {{state()}, {}, 0};
}

UndoItemsRandomTest::State UndoItemsRandomTest::state() const
{
    State state{rySceneDump(*ryScene()), m_kept->state()};
    state.objects.insert(m_loose->state());
    QString &nodes = state.objects[QStringLiteral("scene")];
    for (const RyNode *node : ryScene()->getNodes())
        nodes += m_kept->id(node) + QLatin1Char(' ');
    return state;
}

QString UndoItemsRandomTest::difference(const State &found, const State &wanted)
{
    for (auto object = wanted.objects.begin(); object != wanted.objects.end(); ++object) {
        const auto other = found.objects.find(object.key());
        // One that has been deleted since is no matter.
        if (other != found.objects.end() ? *other != *object : !object.key().startsWith(QLatin1String("loose")))
            return QStringLiteral("%1 is\n%2\ninstead of\n%3").arg(object.key(), other.value(), object.value());
    }
    return found.dump == wanted.dump ? QString()
                                     : QStringLiteral("the dump is\n%1\ninstead of\n%2").arg(found.dump, wanted.dump);
}

void UndoItemsRandomTest::edit(const std::vector<ItemKind> &kinds, Recorded &recorded)
{
    const ItemKind &kind = kinds[size_t(pick(int(kinds.size())))];
    kind.edit(kind.needsScene || pick(3) ? *m_kept : *m_loose, m_random, recorded);
}

QString UndoItemsRandomTest::closeHold(bool accept)
{
    OpenHold top = std::move(m_holds.back());
    m_holds.pop_back();
    if (!accept) {
        if (pick(2))
            top.hold->cancel();
        top.hold.reset();
        ++m_compared;
        return difference(state(), top.before);
    }
    top.hold->accept(QStringLiteral("step"));
    if (!m_holds.empty()) {
        m_holds.back().recorded.merge(top.recorded, [this](const QString &value) {
            return value.startsWith(QLatin1String("loose")) && !value.startsWith(m_loose->name());
        });
        return {};
    }
    m_history.states.resize(size_t(++m_history.index));
    m_history.steps.resize(size_t(m_history.index) - 1);
    m_history.states.push_back(state());
    m_history.steps.push_back(top.recorded);
    return {};
}

QString UndoItemsRandomTest::moveInHistory(bool undo)
{
    const bool moves = m_holds.empty() && (undo ? m_history.index > 0 : m_history.index < int(m_history.steps.size()));
    if (undo)
        ryUndoStack()->undo();
    else
        ryUndoStack()->redo();
    if (!moves)
        return {};
    m_history.index += undo ? -1 : 1;
    ++m_compared;
    return difference(state(), m_history.states[size_t(m_history.index)]);
}

void UndoItemsRandomTest::runCommand(const std::vector<ItemKind> &kinds)
{
    ryRestorePoints()->take(QStringLiteral("command"));
    m_points.push_front({state(), m_history});
    if (m_points.size() > MostPoints)
        m_points.pop_back();
    const RyUndoStackLock lock;
    ryUndoStack()->clearAll();
    Recorded unused;
    for (int i = pick(4); i >= 0; --i)
        edit(kinds, unused);
    m_history = {{state()}, {}, 0};
}

QString UndoItemsRandomTest::restore()
{
    const int which = pick(int(m_points.size()));
    const Point now{state(), m_history};
    if (!ryRestorePoints()->restore(which))
        return QStringLiteral("refused");
    const Point wanted = m_points[size_t(which)];
    m_points.erase(m_points.begin() + which);
    m_points.push_front(now);
    m_history = wanted.history;
    ++m_compared;
    return difference(state(), wanted.state);
}

QString UndoItemsRandomTest::act(const std::vector<ItemKind> &kinds)
{
    const int kind = pick(100);
    if (kind < 14) {
        m_holds.push_back({std::make_unique<RyUndoStackHold>(), state(), {}});
    } else if (kind < 35) {
        return m_holds.empty() ? QString() : closeHold(kind < 28);
    } else if (kind < 50) {
        return moveInHistory(kind < 43);
    } else if (kind < 52) {
        if (m_holds.empty())
            runCommand(kinds);
    } else if (kind < 54) {
        return m_holds.empty() && !m_points.empty() ? restore() : QString();
    } else if (kind < 56) {
        m_loose->destroy();
        makeLoose(); // often where the old ones were
        ++m_deleted;
    } else if (!m_holds.empty()) {
        edit(kinds, m_holds.back().recorded);
    }
    return {};
}

void UndoItemsRandomTest::programs_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(itemKinds().size()); ++i)
        QTest::newRow(itemKinds()[size_t(i)].name) << i;
    QTest::newRow("all") << -1;
}

void UndoItemsRandomTest::programs()
{
    QFETCH(int, index);
    const std::vector<ItemKind> kinds = index < 0 ? itemKinds() : std::vector<ItemKind>{itemKinds()[size_t(index)]};
    const int programs = kinds.size() > 1 ? 12 : 3;
    m_compared = 0;
    m_deleted = 0;
    for (int program = 0; program < programs; ++program) {
        const unsigned seed = ryTestSeed() + unsigned(program);
        start(seed);
        for (int step = 0; step < 450; ++step) {
            QString wrong = act(kinds);
            const RyUndoStack *stack = ryUndoStack();
            for (size_t i = 0; i < m_history.steps.size() && wrong.isEmpty(); ++i) {
                if (stack->entryCount(int(i)) != m_history.steps[i].entryCount())
                    wrong = QStringLiteral("step %1 has %2 entries instead of %3")
                                .arg(i)
                                .arg(stack->entryCount(int(i)))
                                .arg(m_history.steps[i].entryCount());
            }
            QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("seed %1, %2: %3").arg(seed).arg(step).arg(wrong)));
            QCOMPARE(stack->count(), int(m_history.steps.size()));
            QCOMPARE(stack->index(), m_history.index);
            QCOMPARE(ryRestorePoints()->count(), int(m_points.size()));
        }
        m_holds.clear();
        while (ryUndoStack()->canUndo())
            ryUndoStack()->undo();
        const QString wrong = difference(state(), m_history.states.front());
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("seed %1, at the end: %2").arg(seed).arg(wrong)));
    }
    QVERIFY(m_compared > 15 * programs && m_deleted > programs);
}

RY_TEST(UndoItemsRandomTest)
#include "tst_undoItemsRandom.moc"
