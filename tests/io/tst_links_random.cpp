#include "FigureSketch.h"
#include "LinkedFile.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <functional>
#include <optional>
#include <set>

namespace {

using Key = std::pair<std::string, std::string>; // node and value

/// What links mean, with numbers alone.
struct Plain
{
    struct Value
    {
        float own = 0;
        float standard = 0;
        std::vector<Key> from;
    };
    std::map<Key, Value> values;
    std::set<std::string> nodes; // in the scene; what is gone counts on until the file is opened again

    float share(const Key &key) const
    {
        double sum = 0;
        for (const Key &from : values.at(key).from)
            sum += double(result(from) - values.at(from).standard);
        return float(sum);
    }
    float result(const Key &key) const
    {
        const Value &value = values.at(key);
        return value.from.empty() ? value.own : value.own + share(key);
    }
    bool reaches(const Key &above, const Key &below) const
    {
        if (above == below)
            return true;
        const std::vector<Key> &from = values.at(below).from;
        return std::any_of(from.begin(), from.end(), [&](const Key &each) { return reaches(above, each); });
    }
    bool isGone(const Key &key) const { return !nodes.count(key.first); }
    bool isTame() const
    {
        return std::all_of(values.begin(), values.end(),
                           [this](const auto &each) { return std::abs(result(each.first)) < 700; });
    }
    /// Whether a value counts on something that is gone.
    bool hasLooseEnds() const
    {
        return std::any_of(values.begin(), values.end(), [this](const auto &each) {
            return !isGone(each.first) && std::any_of(each.second.from.begin(), each.second.from.end(),
                                                      [this](const Key &from) { return isGone(from); });
        });
    }
    /// What comes back from a file: what results stays, without what is gone.
    Plain reopened() const
    {
        Plain back;
        back.nodes = nodes;
        for (const auto &[key, value] : values) {
            if (!isGone(key))
                bringBack(back, key);
        }
        return back;
    }

private:
    void bringBack(Plain &back, const Key &key) const
    {
        if (back.values.count(key))
            return;
        Value value = values.at(key);
        std::erase_if(value.from, [this](const Key &from) { return isGone(from); });
        for (const Key &from : value.from)
            bringBack(back, from);
        const float target = result(key);
        back.values[key] = value;
        Value &now = back.values[key];
        if (now.from.empty())
            now.own = target;
        else if (std::abs(back.result(key) - target) > 1e-4f * std::max(1.0f, std::abs(target)))
            now.own = target - back.share(key);
    }
};

/// Few, so that links soon hang on one another. Scales control and are not controlled: they would become zero.
const char *const Names[] = {"ytran", "xrot", "yrot", "xscale"};
constexpr int ControlledNames = 3;

} // namespace

/// Random edits of linked values, saved, opened again, undone and redone, against plain numbers.
class RandomLinksTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_random.seed(ryTestSeed()); }
    void cleanup() { ryUndoStack()->clearAll(); }

    /// RY_LINK_STEPS: how many edits.
    void editsAndFiles()
    {
        const int wanted = qEnvironmentVariableIntValue("RY_LINK_STEPS");
        const int steps = wanted > 0 ? wanted : 1000;
        writeFile();
        std::map<std::string, int> done;
        for (int step = 0; step < steps; ++step) {
            if (step % 100 == 0)
                begin();
            const char *kind = edit();
            ++done[kind];
            QVERIFY2(!QTest::currentTestFailed(), qPrintable(QStringLiteral("step %1, %2").arg(step).arg(kind)));
            const QString difference = compare();
            QVERIFY2(difference.isEmpty(),
                     qPrintable(QStringLiteral("step %1, %2: %3").arg(step).arg(kind, difference)));
        }
        m_scene.reset();
        if (wanted > 0) {
            for (const auto &[kind, count] : done)
                qInfo("%s: %d", kind.c_str(), count);
        }
        for (const char *kind :
             {"link", "unlink", "pose", "adjust", "default", "save", "reopen", "undo", "redo", "delete"})
            QVERIFY2(done[kind] > 0, kind);
    }

private:
    /// What one can go back and forth to.
    struct State
    {
        Plain plain;
        QString dump;
    };

    int pick(int below) { return int(m_random() % unsigned(below)); }
    float number() { return 0.125f * float(pick(401) - 200) + (pick(4) == 0 ? 0.001f * float(pick(1000)) : 0.0f); }
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    /// Four more things, on bones and beside.
    void writeFile() const
    {
        LinkedFile::write(path("plain"));
        nlohmann::json tree = nlohmann::json::parse(bytesOf(path("plain")).constData());
        auto &nodes = tree["nodes"];
        for (int i = 0; i < 4; ++i) {
            nodes.push_back({{"name", "more" + std::to_string(i)},
                             {"mesh", 1},
                             {"translation", {0.3 * i, 0.2, -0.1}},
                             {"rotation", {0.0, 0.6, 0.0, 0.8}}});
            auto &siblings = i < 2 ? nodes[size_t(2 + 2 * i)]["children"] : tree["scenes"][0]["nodes"];
            siblings.push_back(nodes.size() - 1);
        }
        writeTree(tree, path("plain"));
    }

    void begin()
    {
        open(path("plain"));
        m_scene->poseAndLink();
        readPlain();
        m_history = {{m_plain, rySceneDump(m_scene->scene())}};
        m_index = 0;
    }

    void open(const QString &file)
    {
        ryUndoStack()->clearAll();
        m_values.clear();
        m_scene.reset();
        m_scene.emplace(file);
        for (const RyNode *node : m_scene->scene().getNodesInTreeOrder()) {
            for (RyFloatProperty *property : RyNodeLookup::values(*node))
                m_values[{node->getName().toStdString(), property->getName().toStdString()}] = property;
        }
    }

    Key keyOf(const RyFloatProperty *property) const
    {
        return {static_cast<RyNode *>(property->getOwner())->getName().toStdString(),
                property->getName().toStdString()};
    }

    /// Once, from the first scene; from there on the numbers go their own way.
    void readPlain()
    {
        m_plain = {};
        for (const auto &[key, property] : m_values) {
            m_plain.nodes.insert(key.first);
            Plain::Value &value = m_plain.values[key];
            value.own = property->getRawValue();
            value.standard = property->getDefaultValue();
            for (const RyERCLink *link : property->getControllerLinks())
                value.from.push_back(keyOf(link->getController()));
        }
    }

    QString compare() const
    {
        for (const auto &[key, value] : m_plain.values) {
            const RyFloatProperty *property = m_values.at(key);
            const QString name = QString::fromStdString(key.first + ":" + key.second);
            if (property->getRawValue() != value.own)
                return QStringLiteral("%1 is %2 of its own instead of %3")
                    .arg(name)
                    .arg(property->getRawValue())
                    .arg(value.own);
            if (property->getDefaultValue() != value.standard)
                return name + QStringLiteral(" has another default");
            if (property->getValue() != m_plain.result(key))
                return QStringLiteral("%1 is %2 instead of %3")
                    .arg(name)
                    .arg(property->getValue())
                    .arg(m_plain.result(key));
            std::vector<Key> from;
            for (const RyERCLink *link : property->getControllerLinks())
                from.push_back(keyOf(link->getController()));
            if (from != value.from)
                return name + QStringLiteral(" has other controllers");
        }
        const size_t nodes = m_scene->scene().getNodes().size();
        return nodes == m_plain.nodes.size() ? QString() : QStringLiteral("%1 nodes").arg(nodes);
    }

    /// Something in the scene.
    Key pickKey(int names)
    {
        const auto node = std::next(m_plain.nodes.begin(), pick(int(m_plain.nodes.size())));
        return {*node, Names[pick(names)]};
    }
    Key pickLinked()
    {
        std::vector<Key> linked;
        for (const auto &[key, value] : m_plain.values) {
            if (!value.from.empty() && !m_plain.isGone(key))
                linked.push_back(key);
        }
        return linked.empty() ? pickKey(ControlledNames) : linked[size_t(pick(int(linked.size())))];
    }

    const char *edit()
    {
        if (m_index + 1 < m_history.size() && pick(3) == 0)
            return redo();
        const int kind = pick(100);
        if (kind < 16)
            return undo();
        if (kind < 21)
            return save();
        if (kind < 28)
            return reopen();
        if (kind < 32)
            return removeNode();
        Plain next = m_plain;
        std::function<void()> work;
        const char *name = plan(kind, next, work);
        if (!work || !next.isTame())
            return "nothing";
        RyUndoStackHold hold;
        work();
        hold.accept(QLatin1String(name));
        note(next);
        return name;
    }

    /// One edit, in numbers at once and in the scene by `work`.
    const char *plan(int kind, Plain &next, std::function<void()> &work)
    {
        const Key key = pick(2) ? pickLinked() : pickKey(int(std::size(Names)));
        Plain::Value &value = next.values.at(key);
        RyFloatProperty *property = m_values.at(key);
        const bool isScale = key.second == "xscale";
        const float number = isScale ? 0.5f + 0.125f * float(pick(9)) : this->number();
        const auto clamped = [property](float to) {
            return property->isClamped() ? std::min(std::max(to, property->getMin()), property->getMax()) : to;
        };
        if (kind < 52) {
            value.own = clamped(number);
            work = [property, number] { property->setValue(number); };
            return "pose";
        }
        if (kind < 60) {
            value.own = clamped(value.from.empty() ? number : number - m_plain.share(key));
            work = [property, number] { property->adjustValue(number); };
            return "adjust";
        }
        if (kind < 70) {
            value.standard = number;
            work = [property, number] { property->setDefaultValue(number); };
            return "default";
        }
        if (kind < 80) {
            const Key controlled = pickLinked();
            std::vector<Key> &from = next.values.at(controlled).from;
            if (from.empty())
                return "unlink";
            const int place = pick(int(from.size()));
            from.erase(from.begin() + place);
            RyERCLink *link = m_values.at(controlled)->getControllerLinks()[size_t(place)];
            work = [link] { RyERCLink::remove(link); };
            return "unlink";
        }
        const Key controlled = pickKey(ControlledNames);
        std::vector<Key> &from = next.values.at(controlled).from;
        const bool isThere = std::find(from.begin(), from.end(), key) != from.end();
        const bool isCircle = m_plain.reaches(controlled, key);
        if (!isThere && !isCircle)
            from.push_back(key);
        work = [this, property, controlled, isThere, isCircle] {
            RyError error;
            QCOMPARE(RyERCLink::create(property, m_values.at(controlled), &error) != nullptr, !isThere && !isCircle);
            QCOMPARE(error.isSuccess(), isThere || !isCircle);
        };
        return isCircle ? "circle" : "link";
    }

    void note(const Plain &next)
    {
        m_plain = next;
        m_history.resize(++m_index);
        m_history.push_back({m_plain, rySceneDump(m_scene->scene())});
    }

    void goTo(size_t index)
    {
        m_index = index;
        m_plain = m_history[index].plain;
        QVERIFY(rySceneDump(m_scene->scene()) == m_history[index].dump);
    }

    const char *undo()
    {
        if (m_index == 0)
            return "nothing to undo";
        ryUndoStack()->undo();
        goTo(m_index - 1);
        return "undo";
    }

    const char *redo()
    {
        ryUndoStack()->redo();
        goTo(m_index + 1);
        return "redo";
    }

    const char *removeNode()
    {
        std::vector<std::string> loose;
        for (const std::string &node : m_plain.nodes) {
            if (node.rfind("more", 0) == 0 || node == "thing")
                loose.push_back(node);
        }
        if (loose.empty())
            return "nothing to delete";
        const std::string name = loose[size_t(pick(int(loose.size())))];
        Plain next = m_plain;
        next.nodes.erase(name);
        {
            RyUndoStackHold hold;
            m_scene->scene().removeNode(m_scene->scene().findNode(QString::fromStdString(name)));
            hold.accept(QStringLiteral("delete"));
        }
        note(next);
        return "delete";
    }

    /// The file shows what the scene shows, links or not.
    const char *save()
    {
        const QString before = rySceneDump(m_scene->scene());
        const QStringList messages = m_scene->save(path("saved"));
        [&] {
            QCOMPARE(!messages.isEmpty(), m_plain.hasLooseEnds());
            QVERIFY(rySceneDump(m_scene->scene()) == before);
        }();
        return "save";
    }

    const char *reopen()
    {
        const QString before = rySceneDump(m_scene->scene());
        const bool hasLooseEnds = m_plain.hasLooseEnds();
        m_scene->save(path("saved"));
        open(path("saved"));
        m_plain = m_plain.reopened();
        [&] {
            QVERIFY2(m_scene->character.messages.isEmpty(),
                     qPrintable(m_scene->character.messages.join(QLatin1Char('\n'))));
            const QString dump = rySceneDump(m_scene->scene());
            QVERIFY(hasLooseEnds || sameDumps(dump, before));
            const double distance = m_scene->distanceTo(path("saved"));
            // As near as a reader takes a stored pose for that of the file.
            QVERIFY2(distance < 1e-4 * heightOf(m_scene->character.shown()), qPrintable(QString::number(distance)));
            m_scene->save(path("twice"));
            QVERIFY(bytesOf(path("twice")) == bytesOf(path("saved")));
            m_history = {{m_plain, dump}};
            m_index = 0;
        }();
        return "reopen";
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
    std::optional<LinkedFile> m_scene;
    std::map<Key, RyFloatProperty *> m_values;
    Plain m_plain;
    std::vector<State> m_history;
    size_t m_index = 0;
};

RY_TEST(RandomLinksTest)
#include "tst_links_random.moc"
