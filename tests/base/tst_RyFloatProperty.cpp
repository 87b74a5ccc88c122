#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <array>
#include <cstddef>
#include <limits>
#include <new>

class RyFloatPropertyTest : public QObject
{
    Q_OBJECT

    static constexpr float infinity = std::numeric_limits<float>::infinity();
    static constexpr float nan = std::numeric_limits<float>::quiet_NaN();

    class Owner : public RyElement
    {
    public:
        std::vector<RyFloatProperty *> told;
        void propertyChanged(RyFloatProperty *property) override { told.push_back(property); }
    };

    /// Puts another property where the one that changed was.
    class Replacing : public RyElement
    {
    public:
        RyFloatProperty *property = nullptr;
        int replaced = 0;
        int told = 0; // by the other one
        void propertyChanged(RyFloatProperty *) override { replace(); }
        void propertyDefaultChanged(RyFloatProperty *) override { replace(); }

    private:
        void replace()
        {
            ++replaced;
            property->~RyFloatProperty();
            property = new (property) RyFloatProperty(nullptr, "y", 7.0f);
            connect(property, &RyFloatProperty::currentValueChanged, property, [this] { ++told; });
            connect(property, &RyFloatProperty::defaultValueChanged, property, [this] { ++told; });
        }
    };

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void startsAtItsDefault()
    {
        const RyFloatProperty property(nullptr, "x", 2.5f);
        QCOMPARE(property.getValue(), 2.5f);
        QCOMPARE(property.getRawValue(), 2.5f);
        QCOMPARE(property.getDefaultValue(), 2.5f);
        QCOMPARE(property.getName(), QString("x"));
        QCOMPARE(property.getLabel(), QString("x"));
        QVERIFY(!property.isClamped());
        QCOMPARE(RyFloatProperty(nullptr, "n", nan).getValue(), 0.0f);
    }

    void clampsAgainstTheLimitsOfTheMoment()
    {
        RyFloatProperty property(nullptr, "x", 0);
        property.setMin(-1);
        property.setMax(2);
        property.setValue(5);
        QCOMPARE(property.getValue(), 5.0f);
        property.setIsClamped(true);
        QCOMPARE(property.getValue(), 5.0f); // switching on does not move it
        property.setValue(6);
        QCOMPARE(property.getValue(), 2.0f);
        property.setMax(10);
        QCOMPARE(property.getValue(), 2.0f);
        property.setValue(6);
        QCOMPARE(property.getValue(), 6.0f);
        property.setValue(-7);
        QCOMPARE(property.getValue(), -1.0f);
        property.adjustValue(100);
        QCOMPARE(property.getValue(), 10.0f);
        property.setDefaultValue(50);
        QCOMPARE(property.getDefaultValue(), 50.0f);
        property.setIsClamped(false);
        property.setValue(100);
        QCOMPARE(property.getValue(), 100.0f);
    }

    void whatIsNotFiniteIsRefused()
    {
        RyFloatProperty property(nullptr, "x", 1);
        QSignalSpy changed(&property, &RyFloatProperty::currentValueChanged);
        for (const float bad : {nan, infinity, -infinity}) {
            property.setValue(bad);
            property.adjustValue(bad);
            property.setDefaultValue(bad);
            property.setMin(bad);
            property.setMax(bad);
            QCOMPARE(property.getValue(), 1.0f);
            QCOMPARE(property.getDefaultValue(), 1.0f);
            QCOMPARE(property.getMin(), -10000.0f);
            QCOMPARE(property.getMax(), 10000.0f);
        }
        QCOMPARE(changed.count(), 0);
    }

    void announcesOnlyRealChanges()
    {
        Owner owner;
        RyFloatProperty property(&owner, "x", 1);
        QSignalSpy changed(&property, &RyFloatProperty::currentValueChanged);
        QSignalSpy defaultChanged(&property, &RyFloatProperty::defaultValueChanged);
        QSignalSpy limits(&property, &RyFloatProperty::limitsChanged);
        property.setValue(1);
        QCOMPARE(changed.count(), 0);
        property.setValue(2);
        property.setValue(2);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(owner.told.size(), size_t(1));
        property.setDefaultValue(7);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(defaultChanged.count(), 1);
        property.setDefaultValue(7);
        QCOMPARE(defaultChanged.count(), 1);
        property.setMax(3);
        property.setMax(3);
        property.setIsClamped(true);
        QCOMPARE(limits.count(), 2);
        property.setValue(9);
        QCOMPARE(changed.count(), 2);
        property.setValue(8); // clamped to the same value
        QCOMPARE(changed.count(), 2);
    }

    void ownerKnowsBeforeListeners()
    {
        Owner owner;
        RyFloatProperty property(&owner, "x");
        bool toldBefore = false;
        connect(&property, &RyFloatProperty::currentValueChanged, &property,
                [&] { toldBefore = owner.told == std::vector<RyFloatProperty *>{&property}; });
        property.setValue(3);
        QVERIFY(toldBefore);
    }

    void everythingIsUndone()
    {
        RyFloatProperty property(nullptr, "x", 1);
        {
            RyUndoStackHold hold;
            property.setValue(2);
            property.setDefaultValue(3);
            property.setMin(-4);
            property.setMax(5);
            property.setIsClamped(true);
            property.setName("y");
            property.setLabel("Why");
            hold.accept("all");
        }
        QCOMPARE(ryUndoStack()->entryCount(0), 3);
        QSignalSpy changed(&property, &RyFloatProperty::currentValueChanged);
        QSignalSpy defaultChanged(&property, &RyFloatProperty::defaultValueChanged);
        QSignalSpy limits(&property, &RyFloatProperty::limitsChanged);
        QSignalSpy name(&property, &RyBase::nameChanged);
        QSignalSpy label(&property, &RyElement::labelChanged);
        ryUndoStack()->undo();
        QCOMPARE(property.getValue(), 1.0f);
        QCOMPARE(property.getDefaultValue(), 1.0f);
        QCOMPARE(property.getMin(), -10000.0f);
        QCOMPARE(property.getMax(), 10000.0f);
        QVERIFY(!property.isClamped());
        QCOMPARE(property.getName(), QString("x"));
        QCOMPARE(property.getLabel(), QString("x"));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(defaultChanged.count(), 1);
        QCOMPARE(limits.count(), 1);
        QCOMPARE(name.count(), 1);
        QVERIFY(label.count() >= 1);
        ryUndoStack()->redo();
        QCOMPARE(property.getValue(), 2.0f);
        QCOMPARE(property.getDefaultValue(), 3.0f);
        QCOMPARE(property.getMin(), -4.0f);
        QCOMPARE(property.getMax(), 5.0f);
        QVERIFY(property.isClamped());
        QCOMPARE(property.getName(), QString("y"));
        QCOMPARE(property.getLabel(), QString("Why"));
    }

    // A value outside the limits comes back as it was.
    void undoDoesNotClamp()
    {
        RyFloatProperty property(nullptr, "x", 20);
        property.setMax(5);
        property.setIsClamped(true);
        RyUndoStackHold hold;
        property.setValue(4);
        hold.accept("in");
        ryUndoStack()->undo();
        QCOMPARE(property.getValue(), 20.0f);
    }

    // Listeners that write other values during undo do not spoil what the step brings back.
    void followersDoNotSpoilUndo()
    {
        RyFloatProperty leader(nullptr, "leader"), follower(nullptr, "follower");
        bool following = false;
        connect(&leader, &RyFloatProperty::currentValueChanged, &follower, [&] {
            if (following)
                follower.setValue(leader.getValue() * 10);
        });
        leader.setValue(1);
        follower.setValue(3);
        following = true;
        {
            RyUndoStackHold hold;
            leader.setValue(2);
            hold.accept("lead");
        }
        following = false;
        {
            RyUndoStackHold hold;
            follower.setValue(-5);
            leader.setValue(7);
            hold.accept("apart");
        }
        following = true;
        for (int i = 0; i < 3; ++i) {
            ryUndoStack()->undo();
            QCOMPARE(leader.getValue(), 2.0f);
            QCOMPARE(follower.getValue(), 20.0f);
            ryUndoStack()->undo();
            QCOMPARE(leader.getValue(), 1.0f);
            QCOMPARE(follower.getValue(), 3.0f);
            ryUndoStack()->redo();
            QCOMPARE(leader.getValue(), 2.0f);
            QCOMPARE(follower.getValue(), 20.0f);
            ryUndoStack()->redo();
            QCOMPARE(leader.getValue(), 7.0f);
            QCOMPARE(follower.getValue(), -5.0f);
        }
    }

    void listenersMayDeleteTheProperty()
    {
        auto *property = new RyFloatProperty(nullptr, "x");
        connect(property, &RyFloatProperty::currentValueChanged, property,
                [&] { delete std::exchange(property, nullptr); });
        property->setValue(1);
        QVERIFY(!property);
    }

    void ownersMayDeleteTheProperty_data()
    {
        QTest::addColumn<bool>("byDefault");
        QTest::newRow("value") << false;
        QTest::newRow("default") << true;
    }

    /// Another property comes to stand in its memory: what was to be told of the first one would be told of that.
    void ownersMayDeleteTheProperty()
    {
        QFETCH(bool, byDefault);
        alignas(RyFloatProperty) std::array<std::byte, sizeof(RyFloatProperty)> place;
        Replacing owner;
        owner.property = new (place.data()) RyFloatProperty(&owner, "x");
        RyFloatProperty *first = owner.property;
        if (byDefault)
            first->setDefaultValue(3.0f);
        else
            first->setValue(3.0f);
        QCOMPARE(owner.replaced, 1);
        QCOMPARE(owner.told, 0);
        QCOMPARE(owner.property->getValue(), 7.0f);
        owner.property->setValue(1.0f);
        QCOMPARE(owner.told, 1);
        owner.property->~RyFloatProperty();
    }

    void groupsAreATree()
    {
        class Element : public RyElement
        {
        public:
            using RyElement::createPrivateGroups;
            using RyElement::createPublicGroups;
        };
        Element element;
        QVERIFY(!element.getPropertyGroups());
        QVERIFY(!element.getPrivatePropertyGroups());
        RyPropertyGroup *root = element.createPrivateGroups("Rigging");
        QCOMPARE(element.getPrivatePropertyGroups(), root);
        QVERIFY(!element.getPropertyGroups());
        RyPropertyGroup *first = root->addChild("Origin");
        RyPropertyGroup *second = root->addChild("End");
        QCOMPARE(root->getFirstChild(), first);
        QCOMPARE(first->getNextSibling(), second);
        QVERIFY(!second->getNextSibling());
        QVERIFY(!root->getNextSibling());
        QVERIFY(!first->getFirstChild());
        QCOMPARE(second->getParent(), root);
        RyFloatProperty *x = first->addProperty(std::make_unique<RyFloatProperty>(&element, "x"));
        RyFloatProperty *y = first->addProperty(std::make_unique<RyFloatProperty>(&element, "y"));
        QCOMPARE(first->getNumProperties(), 2);
        QCOMPARE(first->getProperty(0), x);
        QCOMPARE(first->getProperty(1), y);
        QCOMPARE(x->getGroup(), first);
        QCOMPARE(x->getOwner(), &element);
    }
};

RY_TEST(RyFloatPropertyTest)
#include "tst_RyFloatProperty.moc"
