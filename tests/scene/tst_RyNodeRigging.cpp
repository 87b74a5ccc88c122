#include "PlainChain.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QSignalSpy>

using namespace PlainChain;

namespace {

std::vector<RyFloatProperty *> rigging(const RyNode &node)
{
    return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
            node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
            node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
}

std::vector<float> numbers(const RyNode &node)
{
    std::vector<float> list;
    for (const RyFloatProperty *p : rigging(node)) {
        list.push_back(p->getRawValue());
        list.push_back(p->getDefaultValue());
    }
    for (const RyFloatProperty *p : {node.getXTransControl(), node.getYRotControl(), node.getScaleControl()})
        list.push_back(p->getRawValue());
    return list;
}

} // namespace

class RyNodeRiggingTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }

    void startsAtZero()
    {
        const RyRef<RyNode> bone(new RyBone);
        for (const bool byDefault : {false, true}) {
            QVERIFY(bone->getOrigin(byDefault) == RyVec3());
            QVERIFY(bone->getEndPoint(byDefault) == RyVec3());
            QVERIFY(bone->getOrientation(byDefault) == RyQuat());
        }
        QCOMPARE(bone->getRotationOrder().order(), int(RyRotationOrder::XYZ));
        QVERIFY(bone->inheritsScale() && bone->isSelectable() && bone->isVisible());
        QVERIFY(!bone->isPosed() && !bone->isHidden() && !bone->isSelectionPromoted());
        QCOMPARE(bone->getScaleControl()->getValue(), 1.0f);
    }

    void nodeWithoutRigging()
    {
        const RyRef<RyNode> node(new RyNode(RyNode::Rigging::None));
        for (const RyFloatProperty *p : rigging(*node))
            QVERIFY(!p);
        QVERIFY(!node->getPrivatePropertyGroups());
        node->setOrigin({1, 2, 3}, true);
        node->adjustEndPoint({1, 2, 3});
        node->setOrientation(RyQuat(RyVec3(0, 1, 0), 1.0f));
        QVERIFY(node->getOrigin() == RyVec3() && node->getEndPoint() == RyVec3() && node->getOrientation() == RyQuat());
        node->getXTransControl()->setValue(4.0f);
        QVERIFY(node->getWSPos() == RyVec3(4, 0, 0));
    }

    /// The private groups hold the nine rigging values and nothing else.
    void privateGroups()
    {
        const RyRef<RyNode> bone(new RyBone);
        std::vector<RyFloatProperty *> found;
        const std::function<void(const RyPropertyGroup *)> walk = [&](const RyPropertyGroup *group) {
            if (!group)
                return;
            walk(group->getFirstChild());
            for (int i = 0; i < group->getNumProperties(); ++i)
                found.push_back(qobject_cast<RyFloatProperty *>(group->getProperty(i)));
            walk(group->getNextSibling());
        };
        walk(bone->getPrivatePropertyGroups());
        QCOMPARE(found, rigging(*bone));
        found.clear();
        walk(bone->getPropertyGroups());
        QCOMPARE(int(found.size()), 10);
        for (RyFloatProperty *p : rigging(*bone))
            QVERIFY(std::find(found.begin(), found.end(), p) == found.end());
    }

    void setWritesDefaultsOnlyWhenAsked()
    {
        const RyRef<RyNode> bone(new RyBone);
        bone->setOrigin({1, 2, 3}, true);
        bone->setEndPoint({4, 5, 6}, true);
        QVERIFY(bone->getOrigin() == RyVec3(1, 2, 3) && bone->getOrigin(true) == RyVec3(1, 2, 3));
        bone->setOrigin({7, 8, 9});
        bone->setEndPoint({10, 11, 12}, false);
        QVERIFY(bone->getOrigin() == RyVec3(7, 8, 9) && bone->getOrigin(true) == RyVec3(1, 2, 3));
        QVERIFY(bone->getEndPoint() == RyVec3(10, 11, 12) && bone->getEndPoint(true) == RyVec3(4, 5, 6));
        bone->adjustOrigin({-1, -2, -3});
        QVERIFY(bone->getOrigin() == RyVec3(-1, -2, -3) && bone->getOrigin(true) == RyVec3(1, 2, 3));
    }

    void orientationSurvivesItsControls()
    {
        Random random;
        const RyRef<RyNode> bone(new RyBone);
        double worst = 0.0;
        for (int i = 0; i < Cases; ++i) {
            RyQuat q = random.rotation();
            if (i % 10 == 0) // the pole, where two of the three controls turn about one axis
                q = RyQuat::fromEulerXYZ(
                    {float(random.number(-180, 180)), i % 20 ? 90.0f : -90.0f, float(random.number(-180, 180))});
            if (i % 3 == 0)
                bone->setOrientation(q, true);
            else
                bone->adjustOrientation(q);
            const Eigen::Quaterniond a(q.w, q.x, q.y, q.z);
            const RyQuat got = bone->getOrientation();
            const Eigen::Quaterniond b(got.w, got.x, got.y, got.z);
            worst = std::max(worst, std::min((a.coeffs() - b.coeffs()).norm(), (a.coeffs() + b.coeffs()).norm()));
            if (i % 3 == 0)
                QVERIFY(bone->getOrientation(true) == got);
        }
        qInfo("largest change of an orientation: %.3g", worst);
        QVERIFY(worst < 1e-5);
    }

    /// A link adds the controller's distance from its default; set writes the raw value, adjust the resulting one.
    void linkedValues()
    {
        const RyRef<RyNode> bone(new RyBone);
        const RyRef<RyNode> driver(new RyBone);
        bone->setOrigin({10, 20, 30}, true);
        QVERIFY(RyERCLink::create(driver->getXTransControl(), bone->getOriginXControl()));
        QSignalSpy changed(bone.get(), &RyNode::riggingChanged);
        driver->getXTransControl()->setValue(5.0f);
        QVERIFY(bone->getOrigin() == RyVec3(15, 20, 30));
        QVERIFY(bone->getWSPos() == RyVec3(15, 20, 30));
        QCOMPARE(changed.size(), 1);

        bone->adjustOrigin({40, 50, 60});
        QVERIFY(bone->getOrigin() == RyVec3(40, 50, 60));
        QCOMPARE(bone->getOriginXControl()->getRawValue(), 35.0f);
        QVERIFY(bone->getOrigin(true) == RyVec3(10, 20, 30));

        bone->setOrigin({1, 2, 3});
        QVERIFY(bone->getOrigin() == RyVec3(6, 2, 3));
        driver->getXTransControl()->setValue(0.0f);
        QVERIFY(bone->getOrigin() == RyVec3(1, 2, 3));

        // The same with the end point and with the orientation, in degrees.
        QVERIFY(RyERCLink::create(driver->getXTransControl(), bone->getEndYControl()));
        QVERIFY(RyERCLink::create(driver->getXTransControl(), bone->getOrientZControl()));
        driver->getXTransControl()->setValue(8.0f);
        bone->adjustEndPoint({1, 1, 1});
        QVERIFY(bone->getEndPoint() == RyVec3(1, 1, 1));
        QCOMPARE(bone->getEndYControl()->getRawValue(), -7.0f);
        const RyQuat wanted = RyQuat::fromEulerXYZ({10, 20, 30});
        bone->adjustOrientation(wanted);
        QVERIFY(std::fabs(bone->getOrientation().dot(wanted)) > 1.0f - 1e-6f);
        QVERIFY(std::fabs(bone->getOrientZControl()->getRawValue() - 22.0f) < 1e-3f);
    }

    void onlyChangedControlsTell()
    {
        const RyRef<RyNode> bone(new RyBone);
        bone->setOrigin({1, 2, 3}, true);
        QSignalSpy x(bone->getOriginXControl(), &RyFloatProperty::currentValueChanged);
        QSignalSpy y(bone->getOriginYControl(), &RyFloatProperty::currentValueChanged);
        QSignalSpy z(bone->getOriginZControl(), &RyFloatProperty::currentValueChanged);
        bone->adjustOrigin({1, 5, 3});
        QCOMPARE(x.size(), 0);
        QCOMPARE(y.size(), 1);
        QCOMPARE(z.size(), 0);
        // Each tells after it is set, before the next is.
        RyVec3 seen;
        connect(bone->getOriginXControl(), &RyFloatProperty::currentValueChanged, this,
                [&] { seen = bone->getOrigin(); });
        bone->adjustOrigin({9, 9, 9});
        QVERIFY(seen == RyVec3(9, 5, 3));
        // A change of the default alone is no change of the value.
        bone->getOriginXControl()->setDefaultValue(77.0f);
        QCOMPARE(x.size(), 1);
    }

    void riggingChangedCounts()
    {
        const RyRef<RyNode> bone(new RyBone);
        QSignalSpy changed(bone.get(), &RyNode::riggingChanged);
        const auto expect = [&changed](int count) {
            const int got = changed.size();
            changed.clear();
            return got == count;
        };
        bone->setOrigin({1, 2, 3}, true);
        QVERIFY(expect(1));
        bone->setEndPoint({1, 2, 3});
        QVERIFY(expect(1));
        bone->adjustOrientation(RyQuat(RyVec3(0, 0, 1), 0.5f));
        QVERIFY(expect(1));
        bone->getOriginXControl()->setValue(8.0f);
        QVERIFY(expect(1));
        bone->getOriginXControl()->setValue(8.0f);
        QVERIFY(expect(0));
        bone->getXRotControl()->setValue(8.0f);
        QVERIFY(expect(0));

        bone->beginEdit();
        bone->adjustOrigin({3, 3, 3});
        bone->beginEdit();
        bone->adjustEndPoint({5, 5, 5});
        bone->getEndXControl()->setValue(6.0f);
        bone->finishEdit();
        bone->setOrientation(RyQuat());
        QVERIFY(expect(0));
        bone->finishEdit();
        QVERIFY(expect(1));
        bone->finishEdit();
        QVERIFY(expect(0));
    }

    void cancelledEdit()
    {
        const RyRef<RyNode> bone(new RyBone);
        Random random;
        for (int i = 0; i < 200; ++i) {
            random.fill(*bone, true);
            const std::vector<float> before = numbers(*bone);
            QSignalSpy changed(bone.get(), &RyNode::riggingChanged);
            bone->beginEdit();
            bone->adjustOrigin(random.vector(50));
            bone->beginEdit();
            bone->setEndPoint(random.vector(50), true);
            bone->adjustOrientation(random.rotation());
            bone->getYRotControl()->setValue(12.5f);
            QVERIFY(numbers(*bone) != before);
            bone->cancelEdit();
            QVERIFY(numbers(*bone) == before);
            QCOMPARE(changed.size(), 1);
            QCOMPARE(bone->editLevel(), 0);
            bone->adjustOrigin({1, 1, 1});
            const std::vector<float> after = numbers(*bone);
            bone->cancelEdit();
            bone->finishEdit();
            QVERIFY(numbers(*bone) == after);
        }
    }

    /// What a cancelled edit puts back is not one more change of the step.
    void cancelledEditInsideAHold()
    {
        const RyRef<RyNode> bone(new RyBone);
        bone->setOrigin({1, 2, 3}, true);
        RyUndoStackHold hold;
        bone->beginEdit();
        bone->adjustOrigin({7, 7, 7});
        bone->cancelEdit();
        QVERIFY(bone->getOrigin() == RyVec3(1, 2, 3));
        bone->adjustEndPoint({4, 4, 4});
        hold.accept(QStringLiteral("Move"));
        ryUndoStack()->undo();
        QVERIFY(bone->getOrigin() == RyVec3(1, 2, 3) && bone->getEndPoint() == RyVec3());
        ryUndoStack()->redo();
        QVERIFY(bone->getOrigin() == RyVec3(1, 2, 3) && bone->getEndPoint() == RyVec3(4, 4, 4));
    }

    void undoBringsEverythingBack()
    {
        RandomChain chain;
        for (int i = 0; i < 300; ++i) {
            chain.next();
            RyNode *node = chain.nodes[size_t(chain.random.integer(0, int(chain.nodes.size()) - 1))];
            const std::vector<float> before = numbers(*node);
            const int order = node->getRotationOrder().order();
            const bool inherits = node->inheritsScale();
            const RyMatrix4 place = chain.last()->getWSTransform();
            {
                RyUndoStackHold hold;
                chain.random.fill(*node, true);
                node->setHidden(true);
                node->setPromoteSelection(true);
                node->setSelectable(false);
                node->setLabel(QStringLiteral("another"));
                node->setName(QStringLiteral("other name"));
                hold.accept(QStringLiteral("Change"));
            }
            const std::vector<float> after = numbers(*node);
            const RyMatrix4 moved = chain.last()->getWSTransform();
            QSignalSpy hidden(node, &RyNode::hiddenChanged);
            QSignalSpy promoted(node, &RyNode::promoteSelectionChanged);
            QSignalSpy changed(node, &RyNode::riggingChanged);
            ryUndoStack()->undo();
            QVERIFY(numbers(*node) == before && chain.last()->getWSTransform() == place);
            QCOMPARE(node->getRotationOrder().order(), order);
            QCOMPARE(node->inheritsScale(), inherits);
            QVERIFY(!node->isHidden() && !node->isSelectionPromoted() && node->isSelectable());
            QVERIFY(node->getName().isEmpty() && !node->hasOwnLabel());
            QCOMPARE(hidden.size(), 1);
            QCOMPARE(promoted.size(), 1);
            QVERIFY(changed.size() > 0);
            ryUndoStack()->redo();
            QVERIFY(numbers(*node) == after && chain.last()->getWSTransform() == moved);
            QVERIFY(node->isHidden() && node->isSelectionPromoted() && !node->isSelectable());
            QCOMPARE(node->getLabel(), QStringLiteral("another"));
            ryUndoStack()->undo();
            ryUndoStack()->clearAll();
        }
    }

    void flagsTellOnlyChanges()
    {
        const RyRef<RyNode> bone(new RyBone);
        const RyRef<RyNode> parent(new RyBone);
        parent->addNodeChild(bone.get());
        QSignalSpy hidden(bone.get(), &RyNode::hiddenChanged);
        QSignalSpy promoted(bone.get(), &RyNode::promoteSelectionChanged);
        QSignalSpy inherit(bone.get(), &RyNode::inheritScaleChanged);
        QSignalSpy order(bone.get(), &RyNode::rotationOrderChanged);
        for (int twice = 0; twice < 2; ++twice) {
            bone->setHidden(true);
            bone->setPromoteSelection(true);
            bone->setInheritScale(false);
            bone->setRotationOrder(RyRotationOrder(RyRotationOrder::ZYX));
        }
        QCOMPARE(hidden.size(), 1);
        QCOMPARE(hidden.first().first().toBool(), true);
        QCOMPARE(promoted.size(), 1);
        QCOMPARE(promoted.first().first().toBool(), true);
        QCOMPARE(inherit.size(), 1);
        QCOMPARE(order.size(), 1);
        QVERIFY(!bone->isVisible() && parent->isVisible());
        bone->setHidden(false);
        parent->setHidden(true);
        QVERIFY(!bone->isVisible() && !bone->isHidden());
    }
};

RY_TEST(RyNodeRiggingTest)
#include "tst_RyNodeRigging.moc"
