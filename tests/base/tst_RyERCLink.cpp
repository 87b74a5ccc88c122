#include "support/RyTest.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyLinkGraph.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <cmath>
#include <random>
#include <set>

class RyERCLinkTest : public QObject
{
    Q_OBJECT

    using Properties = std::vector<std::unique_ptr<RyFloatProperty>>;
    static Properties makeProperties(int count)
    {
        Properties properties;
        for (int i = 0; i < count; ++i)
            properties.push_back(std::make_unique<RyFloatProperty>(nullptr, QString::number(i), float(i)));
        return properties;
    }

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void cleanup()
    {
        ryUndoStack()->clearAll();
        QCOMPARE(RyLinkGraph::linkCount(), 0); // all properties of the test are gone
    }

    void addsControllerMinusItsDefault()
    {
        RyFloatProperty scale(nullptr, "scale", 1), bone(nullptr, "bone", 5);
        QSignalSpy changed(&bone, &RyFloatProperty::currentValueChanged);
        RyERCLink *link = RyERCLink::create(&scale, &bone);
        QVERIFY(link);
        QCOMPARE(bone.getValue(), 5.0f); // a control at its default adds nothing
        QCOMPARE(changed.count(), 0);
        scale.setValue(3);
        QCOMPARE(link->contribution(), 2.0f);
        QCOMPARE(bone.getValue(), 7.0f);
        QCOMPARE(bone.getRawValue(), 5.0f);
        QCOMPARE(changed.count(), 1);
        scale.setDefaultValue(0);
        QCOMPARE(bone.getValue(), 8.0f);
        QCOMPARE(changed.count(), 2);
        bone.adjustValue(10);
        QCOMPARE(bone.getValue(), 10.0f);
        QCOMPARE(bone.getRawValue(), 7.0f);
        RyERCLink::remove(link);
        QCOMPARE(bone.getValue(), 7.0f);
        QCOMPARE(changed.count(), 4);
        QVERIFY(scale.getControlledLinks().empty());
    }

    void compensatedWriteIsNoChange()
    {
        RyFloatProperty a(nullptr, "a"), b(nullptr, "b");
        RyERCLink::create(&a, &b);
        a.setValue(2);
        QSignalSpy changed(&b, &RyFloatProperty::currentValueChanged);
        b.adjustValue(2);
        QCOMPARE(changed.count(), 0);
    }

    void clampingOfTheAdjustedRawValue()
    {
        RyFloatProperty a(nullptr, "a"), b(nullptr, "b");
        b.setMin(0);
        b.setMax(1);
        b.setIsClamped(true);
        RyERCLink::create(&a, &b);
        a.setValue(0.5f);
        b.adjustValue(0.75f);
        QCOMPARE(b.getRawValue(), 0.25f);
        b.adjustValue(0.25f);
        QCOMPARE(b.getRawValue(), 0.0f);
        QCOMPARE(b.getValue(), 0.5f);
    }

    void refusals()
    {
        RyFloatProperty a(nullptr, "a"), b(nullptr, "b"), c(nullptr, "c");
        RyError error;
        QVERIFY(!RyERCLink::create(nullptr, &b, &error));
        QCOMPARE(error.code(), int(RyError::InvalidArgument));
        QVERIFY(!RyERCLink::create(&a, nullptr, &error));
        QCOMPARE(error.code(), int(RyError::InvalidArgument));
        QVERIFY(!RyERCLink::create(&a, &a, &error));
        QCOMPARE(error.code(), int(RyError::InvalidArgument));
        QVERIFY(RyERCLink::create(&a, &b, &error));
        QVERIFY(error.isSuccess());
        QVERIFY(RyERCLink::create(&b, &c));
        QVERIFY(!RyERCLink::create(&c, &a, &error));
        QCOMPARE(error.code(), int(RyError::InvalidArgument));
        QVERIFY(!RyERCLink::create(&a, &b, &error)); // exists
        QVERIFY(error.isSuccess());
        QCOMPARE(b.getControllerLinks().size(), size_t(1));
        RyERCLink::remove(nullptr);
    }

    void goesWithEitherProperty()
    {
        auto a = std::make_unique<RyFloatProperty>(nullptr, "a");
        RyFloatProperty b(nullptr, "b");
        auto c = std::make_unique<RyFloatProperty>(nullptr, "c");
        RyERCLink::create(a.get(), &b);
        RyERCLink::create(&b, c.get());
        a->setValue(4);
        QCOMPARE(b.getValue(), 4.0f);
        QSignalSpy changed(&b, &RyFloatProperty::currentValueChanged);
        QSignalSpy lastWords(c.get(), &RyFloatProperty::currentValueChanged);
        c.reset();
        QCOMPARE(lastWords.count(), 0);
        QVERIFY(b.getControlledLinks().empty());
        a.reset();
        QVERIFY(b.getControllerLinks().empty());
        QCOMPARE(b.getValue(), 0.0f);
        QCOMPARE(changed.count(), 1);
    }

    // The properties of an element that is being deleted neither call it nor speak.
    void insideADyingElement()
    {
        class Element : public RyElement
        {
        public:
            RyFloatProperty *add(const QString &name)
            {
                return createPublicGroups("General")->addProperty(std::make_unique<RyFloatProperty>(this, name));
            }
            void propertyChanged(RyFloatProperty *) override { ++calls; }
            int calls = 0;
        };
        auto element = std::make_unique<Element>();
        RyFloatProperty outside(nullptr, "outside");
        RyFloatProperty *a = element->add("a"), *b = element->add("b");
        RyERCLink::create(a, b);
        RyERCLink::create(b, &outside);
        a->setValue(2);
        QCOMPARE(element->calls, 2);
        QCOMPARE(outside.getValue(), 2.0f);
        int spoken = 0;
        connect(b, &RyFloatProperty::currentValueChanged, this, [&] { ++spoken; });
        element.reset();
        QCOMPARE(spoken, 0);
        QCOMPARE(outside.getValue(), 0.0f);
    }

    void undoOfCreationAndRemoval()
    {
        RyFloatProperty a(nullptr, "a"), b(nullptr, "b");
        a.setValue(3);
        {
            RyUndoStackHold hold;
            RyERCLink::create(&a, &b);
            hold.accept("link");
        }
        QCOMPARE(b.getValue(), 3.0f);
        QSignalSpy changed(&b, &RyFloatProperty::currentValueChanged);
        ryUndoStack()->undo();
        QCOMPARE(b.getValue(), 0.0f);
        QCOMPARE(changed.count(), 1);
        ryUndoStack()->redo();
        QCOMPARE(b.getValue(), 3.0f);
        {
            RyUndoStackHold hold;
            RyERCLink::remove(b.getControllerLinks().front());
            hold.accept("unlink");
        }
        QCOMPARE(b.getValue(), 0.0f);
        ryUndoStack()->undo();
        QCOMPARE(b.getValue(), 3.0f);
        ryUndoStack()->undo();
        QCOMPARE(b.getValue(), 0.0f);
        // A link made meanwhile without a hold stays the only one.
        RyERCLink::create(&a, &b);
        ryUndoStack()->redo();
        QCOMPARE(b.getControllerLinks().size(), size_t(1));
        QCOMPARE(b.getValue(), 3.0f);
    }

    void undoAfterAPropertyIsGone()
    {
        auto a = std::make_unique<RyFloatProperty>(nullptr, "a");
        RyFloatProperty b(nullptr, "b");
        {
            RyUndoStackHold hold;
            RyERCLink::create(a.get(), &b);
            a->setValue(3);
            hold.accept("link");
        }
        a.reset();
        ryUndoStack()->undo();
        QCOMPARE(b.getValue(), 0.0f);
        ryUndoStack()->redo();
        QCOMPARE(b.getValue(), 0.0f);
        QVERIFY(b.getControllerLinks().empty());
    }

    /// Who is in the way of a link is named, by owner and property; of a long way the ends.
    void circlesAreExplained()
    {
        class Element : public RyElement
        {
        public:
            RyFloatProperty *add(const QString &name)
            {
                return createPublicGroups("General")->addProperty(std::make_unique<RyFloatProperty>(this, name));
            }
        };
        Element arm, leg;
        arm.setLabel("Left Arm");
        leg.setName("leg");
        RyFloatProperty *bend = arm.add("bend"), *turn = leg.add("turn"), *lift = leg.add("lift");
        bend->setLabel("Bend It");
        QVERIFY(RyERCLink::create(bend, turn));
        QVERIFY(RyERCLink::create(turn, lift));
        QString reason;
        RyError error;
        QVERIFY(!RyERCLink::create(lift, bend, &error, &reason));
        QCOMPARE(error.code(), int(RyError::InvalidArgument));
        QCOMPARE(reason, QString("\"leg: lift\" cannot control \"Left Arm: Bend It\", which controls it already: "
                                 "\"Left Arm: Bend It\" > \"leg: turn\" > \"leg: lift\""));
        QVERIFY(!RyERCLink::create(turn, turn, &error, &reason));
        QCOMPARE(reason, QString("\"leg: turn\" cannot control itself"));
        QVERIFY(!RyERCLink::create(nullptr, turn, nullptr, &reason));
        QCOMPARE(reason, QString("a link needs two values"));

        const Properties chain = makeProperties(20);
        for (size_t i = 0; i + 1 < chain.size(); ++i)
            QVERIFY(RyERCLink::create(chain[i].get(), chain[i + 1].get()));
        QVERIFY(!RyERCLink::create(chain[19].get(), chain[0].get(), &error, &reason));
        QVERIFY(reason.endsWith(": \"0\" > \"1\" > \"2\" > \"3\" > 12 more > \"16\" > \"17\" > \"18\" > \"19\""));
    }

    /// Each of two values is controlled by both of the layer above. There are as many ways to the last layer as a
    /// number of three hundred digits says: who took them one by one would never come to an end.
    void layersOfLinksAreWalkedOnce()
    {
        constexpr size_t Layers = 1000;
        const Properties properties = makeProperties(2 * Layers);
        std::vector<int> heard(properties.size(), 0);
        std::vector<size_t> order;
        for (size_t i = 0; i < properties.size(); ++i) {
            properties[i]->setValue(0);
            properties[i]->setDefaultValue(0);
            connect(properties[i].get(), &RyFloatProperty::currentValueChanged, this, [&heard, &order, i] {
                ++heard[i];
                order.push_back(i);
            });
        }
        for (size_t i = 2; i < properties.size(); ++i) {
            const size_t above = i / 2 * 2 - 2;
            QVERIFY(RyERCLink::create(properties[above].get(), properties[i].get()));
            QVERIFY(RyERCLink::create(properties[above + 1].get(), properties[i].get()));
        }
        RyError error;
        QVERIFY(!RyERCLink::create(properties.back().get(), properties.front().get(), &error));
        QCOMPARE(error.code(), int(RyError::InvalidArgument));

        properties.front()->setValue(1);
        QCOMPARE(order.size(), properties.size() - 1); // all but the other one at the top
        std::vector<size_t> placeOf(properties.size(), 0);
        for (size_t place = 0; place < order.size(); ++place)
            placeOf[order[place]] = place;
        for (size_t i = 2; i < properties.size(); ++i) {
            QCOMPARE(heard[i], 1);
            QVERIFY(placeOf[i] > placeOf[i / 2 * 2 - 2] && placeOf[i] > placeOf[i / 2 * 2 - 1]);
            QCOMPARE(properties[i]->getValue(), std::ldexp(1.0f, int(i / 2) - 1)); // infinite from the 129th layer on
        }
        properties.front()->setDefaultValue(1);
        for (size_t i = 2; i < properties.size(); ++i) {
            QCOMPARE(heard[i], 2);
            QCOMPARE(properties[i]->getValue(), 0.0f);
        }
    }

    /// Long chains are linked from either end, walked and taken apart without a deep call or a walk for every link.
    void longChains()
    {
        constexpr int Length = 30000;
        for (const bool fromTheTop : {true, false}) {
            const Properties chain = makeProperties(Length);
            for (int i = 1; i < Length; ++i) {
                const size_t below = size_t(fromTheTop ? i : Length - i);
                QVERIFY(RyERCLink::create(chain[below - 1].get(), chain[below].get()));
            }
            chain.front()->setValue(5);
            QCOMPARE(chain.back()->getValue(), float(Length - 1) + 5.0f);
            QVERIFY(!RyERCLink::create(chain.back().get(), chain.front().get()));
            chain.front()->setValue(0);
        }
    }

    /// What listeners read is final, whoever speaks first. They may write and delete what is still to be announced.
    void listenersReadFinalValuesAndMayEdit()
    {
        RyFloatProperty top(nullptr, "top"), left(nullptr, "left"), bottom(nullptr, "bottom");
        auto right = std::make_unique<RyFloatProperty>(nullptr, "right");
        auto beyond = std::make_unique<RyFloatProperty>(nullptr, "beyond");
        RyERCLink::create(&top, &left);
        RyERCLink::create(&top, right.get());
        RyERCLink::create(&left, &bottom);
        RyERCLink::create(right.get(), &bottom);
        RyERCLink::create(&bottom, beyond.get());
        std::vector<float> seen, heardBelow;
        connect(&left, &RyFloatProperty::currentValueChanged, this, [&] { seen.push_back(bottom.getValue()); });
        connect(&bottom, &RyFloatProperty::currentValueChanged, this, [&] { heardBelow.push_back(bottom.getValue()); });
        top.setValue(3);
        QCOMPARE(seen, std::vector<float>{6});
        QCOMPARE(heardBelow, std::vector<float>{6});

        // The left one's listener writes what comes after it, and deletes the right one and the last.
        const auto connection = connect(&left, &RyFloatProperty::currentValueChanged, this, [&] {
            bottom.setValue(100);
            right.reset();
            beyond.reset();
        });
        top.setValue(4);
        disconnect(connection);
        QCOMPARE(bottom.getValue(), 104.0f);
        QCOMPARE(heardBelow, (std::vector<float>{6, 108, 104}));
        QVERIFY(bottom.getControlledLinks().empty());
        top.setValue(0);
        QCOMPARE(bottom.getValue(), 100.0f);
    }

    /// Random graphs and edits against plain sums. Each listener must hear of every change of the resulting value, and
    /// of nothing else; undo must return to the exact state before the step.
    void randomGraphs()
    {
        constexpr int count = 6;
        struct Plain
        {
            std::vector<float> raw, standard;
            std::set<std::pair<int, int>> links; // controller, controlled
            bool operator==(const Plain &) const = default;
            double value(int i) const
            {
                double sum = double(raw[size_t(i)]);
                for (const auto &[from, to] : links)
                    sum += to == i ? value(from) - double(standard[size_t(from)]) : 0.0;
                return sum;
            }
            bool reaches(int from, int to) const
            {
                if (from == to)
                    return true;
                for (const auto &[a, b] : links) {
                    if (a == from && reaches(b, to))
                        return true;
                }
                return false;
            }
        };
        int refused = 0, undone = 0;
        for (unsigned program = 0; program < 1500; ++program) {
            std::mt19937 rng(ryTestSeed() + program);
            const auto pick = [&](int below) { return int(rng() % unsigned(below)); };
            ryUndoStack()->clearAll();
            std::vector<float> heard;
            int falseAlarms = 0;
            const Properties properties = makeProperties(count);
            for (int i = 0; i < count; ++i) {
                RyFloatProperty *property = properties[size_t(i)].get();
                heard.push_back(property->getValue());
                connect(property, &RyFloatProperty::currentValueChanged, property, [&heard, &falseAlarms, property, i] {
                    falseAlarms += heard[size_t(i)] == property->getValue();
                    heard[size_t(i)] = property->getValue();
                });
            }
            Plain plain;
            for (const auto &property : properties) {
                plain.raw.push_back(property->getRawValue());
                plain.standard.push_back(property->getDefaultValue());
            }
            std::vector<Plain> history{plain};
            size_t index = 0;
            for (int op = 0; op < 25; ++op) {
                const int kind = pick(8);
                if (kind == 0) {
                    if (index > 0) {
                        plain = history[--index];
                        ++undone;
                    }
                    ryUndoStack()->undo();
                } else if (kind == 1) {
                    if (index + 1 < history.size())
                        plain = history[++index];
                    ryUndoStack()->redo();
                } else {
                    RyUndoStackHold hold;
                    for (int edit = pick(4); edit >= 0; --edit) {
                        const int i = pick(count), j = pick(count);
                        const float value = float(pick(9)) - 4.0f;
                        switch (pick(4)) {
                        case 0:
                            properties[size_t(i)]->setValue(value);
                            plain.raw[size_t(i)] = value;
                            break;
                        case 1:
                            properties[size_t(i)]->adjustValue(value);
                            plain.raw[size_t(i)] += value - float(plain.value(i));
                            break;
                        case 2:
                            properties[size_t(i)]->setDefaultValue(value);
                            plain.standard[size_t(i)] = value;
                            break;
                        default: {
                            const bool exists = plain.links.count({i, j});
                            const bool cycle = plain.reaches(j, i);
                            if (exists) {
                                for (RyERCLink *link : properties[size_t(i)]->getControlledLinks()) {
                                    if (link->getControlled() == properties[size_t(j)].get()) {
                                        RyERCLink::remove(link);
                                        break;
                                    }
                                }
                                plain.links.erase({i, j});
                                break;
                            }
                            RyERCLink *link =
                                RyERCLink::create(properties[size_t(i)].get(), properties[size_t(j)].get());
                            QCOMPARE(link != nullptr, !cycle);
                            refused += cycle;
                            if (link)
                                plain.links.insert({i, j});
                        }
                        }
                    }
                    if (pick(4) == 0) {
                        hold.cancel();
                        plain = history[index];
                    } else {
                        hold.accept("step");
                        history.resize(++index);
                        history.push_back(plain);
                    }
                }
                for (int i = 0; i < count; ++i) {
                    const RyFloatProperty &property = *properties[size_t(i)];
                    QCOMPARE(property.getRawValue(), plain.raw[size_t(i)]);
                    QCOMPARE(property.getDefaultValue(), plain.standard[size_t(i)]);
                    QCOMPARE(property.getValue(), float(plain.value(i)));
                    QCOMPARE(heard[size_t(i)], property.getValue());
                }
                QCOMPARE(falseAlarms, 0);
                QCOMPARE(RyLinkGraph::linkCount(), int(plain.links.size()));
            }
        }
        QVERIFY(refused > 100 && undone > 100);
    }
};

RY_TEST(RyERCLinkTest)
#include "tst_RyERCLink.moc"
