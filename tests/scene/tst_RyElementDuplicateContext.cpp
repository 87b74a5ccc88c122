#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/assets/RyAssetList.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

namespace {

/// A bone whose duplicates are of another kind.
class RyOddBone : public RyBone
{
protected:
    RyNode *makeSameKind() const override { return new RyNode; }
};

} // namespace

class RyElementDuplicateContextTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
        m_skeleton = new RySkeleton;
        m_skeleton->setName(QStringLiteral("figure"));
        m_upper = bone("upper", m_skeleton);
        m_lower = bone("lower", m_upper);
        m_hand = bone("hand", m_lower);
        m_prop = new RyNode;
        m_prop->setName(QStringLiteral("ring"));
        m_lower->addNodeChild(m_prop);
        ryScene()->addNode(m_skeleton);
    }
    void cleanup()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void boneIsCopiedWithItsValuesAndWithoutChildren()
    {
        m_lower->setLabel(QStringLiteral("Lower Arm"));
        m_lower->setOrigin({1, 2, 3}, true);
        m_lower->setOrigin({4, 5, 6});
        m_lower->setEndPoint({7, 8, 9}, true);
        m_lower->getOrientXControl()->setValue(30);
        m_lower->setRotationOrder(RyRotationOrder(4));
        m_lower->setInheritScale(false);
        m_lower->setHidden(true);
        m_lower->setSelectable(false);
        m_lower->setPromoteSelection(true);
        m_lower->getYRotControl()->setMin(-20);
        m_lower->getYRotControl()->setMax(40);
        m_lower->getYRotControl()->setIsClamped(true);
        m_lower->getYRotControl()->setValue(15);
        m_lower->getYRotControl()->setLabel(QStringLiteral("Bend"));

        RyElementDuplicateContext context(nullptr);
        context.setParentNode(m_upper);
        auto *copy = qobject_cast<RyBone *>(m_lower->doDuplicateElement(&context));
        QVERIFY(copy && copy != m_lower);
        QCOMPARE(copy->getName(), QStringLiteral("lower"));
        QCOMPARE(copy->getLabel(), QStringLiteral("Lower Arm"));
        QCOMPARE(copy->getNodeParent(), m_upper);
        QCOMPARE(copy->getNumNodeChildren(), 0);
        QVERIFY(copy->getOrigin(true) == RyVec3(1, 2, 3) && copy->getOrigin() == RyVec3(4, 5, 6));
        QVERIFY(copy->getEndPoint(true) == RyVec3(7, 8, 9) && copy->getEndPoint() == RyVec3(7, 8, 9));
        QCOMPARE(copy->getOrientXControl()->getValue(), 30.0f);
        QCOMPARE(copy->getRotationOrder().order(), 4);
        QVERIFY(!copy->inheritsScale() && copy->isHidden() && !copy->isSelectable() && copy->isSelectionPromoted());
        const RyFloatProperty *bend = copy->getYRotControl();
        QCOMPARE(bend->getValue(), 15.0f);
        QVERIFY(bend->isClamped() && bend->getMin() == -20.0f && bend->getMax() == 40.0f);
        QCOMPARE(bend->getLabel(), QStringLiteral("Bend"));
        QVERIFY(!copy->getScene());
        context.doFinalize();
        QCOMPARE(copy->getScene(), ryScene());
    }

    void duplicatesHangUnderDuplicates()
    {
        RyElementDuplicateContext context(nullptr);
        RyNode *copies[3];
        RyNode *originals[3] = {m_upper, m_lower, m_hand};
        for (int i = 0; i < 3; ++i) {
            auto *parent = qobject_cast<RyNode *>(context.findNewElement(originals[i]->getNodeParent()));
            context.setParentNode(parent ? parent : originals[i]->getNodeParent());
            copies[i] = qobject_cast<RyNode *>(originals[i]->doDuplicateElement(&context));
            QCOMPARE(context.findNewElement(originals[i]), copies[i]);
        }
        context.doFinalize();
        QCOMPARE(copies[0]->getNodeParent(), static_cast<RyNode *>(m_skeleton));
        QCOMPARE(copies[1]->getNodeParent(), copies[0]);
        QCOMPARE(copies[2]->getNodeParent(), copies[1]);
        for (const RyNode *copy : copies)
            QCOMPARE(copy->getScene(), ryScene());
        QCOMPARE(int(m_skeleton->getAllBones().size()), 6);
        QVERIFY(!context.findNewElement(m_prop) && !context.findNewElement(nullptr));
    }

    void optionsTakeChildrenAlong_data()
    {
        QTest::addColumn<bool>("bones");
        QTest::addColumn<bool>("all");
        QTest::addColumn<bool>("hiddenAsBones");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("none") << false << false << true << QStringList{"lower"};
        QTest::newRow("bones") << true << false << false << QStringList{"lower", "hand"};
        QTest::newRow("hidden nodes as bones") << true << false << true << QStringList{"lower", "hand", "ring"};
        QTest::newRow("all") << false << true << false << QStringList{"lower", "hand", "ring"};
    }
    void optionsTakeChildrenAlong()
    {
        QFETCH(bool, bones);
        QFETCH(bool, all);
        QFETCH(bool, hiddenAsBones);
        QFETCH(QStringList, expected);
        m_prop->setHidden(true);
        RyElementDuplicateContext context(nullptr);
        context.setDuplicateBoneHierarchy(bones);
        context.setDuplicateFullNodeHierarchy(all);
        context.setTreatHiddenAndPromotingAsBones(hiddenAsBones);
        context.setParentNode(m_upper);
        auto *copy = qobject_cast<RyNode *>(m_lower->doDuplicateElement(&context));
        QCOMPARE(context.getParentNode(), static_cast<RyNode *>(m_upper));
        std::vector<RyNode *> nodes{copy};
        copy->getNodeChildren(nodes, true);
        QStringList names;
        for (const RyNode *node : nodes)
            names << node->getName();
        QCOMPARE(names, expected);
    }

    void linksGoToTheDuplicates()
    {
        RyBone *outside = bone("control", m_skeleton);
        RyERCLink::create(m_upper->getXRotControl(), m_lower->getXRotControl());
        RyERCLink::create(outside->getYRotControl(), m_lower->getYRotControl());
        RyERCLink::create(m_upper->getZRotControl(), m_hand->getZRotControl()); // the hand is not duplicated
        m_upper->getXRotControl()->setValue(10);
        m_lower->getXRotControl()->setValue(5); // resulting: 15
        outside->getYRotControl()->setValue(7);

        RyElementDuplicateContext context(nullptr);
        RyBone *upper = duplicate(context, m_upper, m_skeleton);
        RyBone *lower = duplicate(context, m_lower, upper);
        QVERIFY(!context.findNewProperty(m_upper->getXRotControl()));
        context.createAlaises();
        QCOMPARE(context.findNewProperty(m_upper->getXRotControl()), upper->getXRotControl());
        QCOMPARE(context.findNewProperty(m_lower->getEndZControl()), lower->getEndZControl());
        context.createERC();
        QCOMPARE(int(lower->getXRotControl()->getControllerLinks().size()), 1);
        QCOMPARE(lower->getXRotControl()->getControllerLinks()[0]->getController(), upper->getXRotControl());
        QCOMPARE(lower->getXRotControl()->getValue(), 15.0f);
        QCOMPARE(lower->getYRotControl()->getControllerLinks()[0]->getController(), outside->getYRotControl());
        QCOMPARE(lower->getYRotControl()->getValue(), 7.0f);
        QVERIFY(upper->getZRotControl()->getControlledLinks().empty());
        upper->getXRotControl()->setValue(40);
        QCOMPARE(lower->getXRotControl()->getValue(), 45.0f);
        QCOMPARE(m_lower->getXRotControl()->getValue(), 15.0f);
    }

    void linksStayAtTheOriginalsWithoutRemapping()
    {
        RyERCLink::create(m_upper->getXRotControl(), m_lower->getXRotControl());
        RyElementDuplicateContext context(nullptr);
        context.setRemapAliases(false);
        RyBone *upper = duplicate(context, m_upper, m_skeleton);
        RyBone *lower = duplicate(context, m_lower, upper);
        context.createAlaises();
        context.createERC();
        QCOMPARE(lower->getXRotControl()->getControllerLinks()[0]->getController(), m_upper->getXRotControl());
    }

    void controllersOutsideTheRootAreLeftOut()
    {
        auto *other = new RySkeleton;
        ryScene()->addNode(other);
        RyERCLink::create(other->getXRotControl(), m_lower->getXRotControl());
        RyERCLink::create(m_hand->getYRotControl(), m_lower->getYRotControl());
        RyElementDuplicateContext context(nullptr);
        context.setDuplicateRoot(m_skeleton);
        RyBone *lower = duplicate(context, m_lower, m_upper);
        context.createAlaises();
        context.createERC();
        QVERIFY(lower->getXRotControl()->getControllerLinks().empty());
        QCOMPARE(lower->getYRotControl()->getControllerLinks()[0]->getController(), m_hand->getYRotControl());
    }

    void addedPropertiesFollowOnDemand()
    {
        auto extra = std::make_unique<RyFloatProperty>(m_lower, QStringLiteral("swell"), 0.25f);
        RyFloatProperty *swell = m_lower->getPropertyGroups()->addProperty(std::move(extra));
        swell->setValue(0.75f);
        for (const bool skip : {true, false}) {
            RyElementDuplicateContext context(nullptr);
            context.setSkipNonUserProperties(skip);
            RyBone *lower = duplicate(context, m_lower, m_upper);
            context.createAlaises();
            const RyFloatProperty *copy = context.findNewProperty(swell);
            QCOMPARE(copy == nullptr, skip);
            QCOMPARE(lower->getPropertyGroups()->getNumProperties(), skip ? 0 : 1);
            if (copy)
                QVERIFY(copy->getName() == swell->getName() && copy->getValue() == 0.75f &&
                        copy->getDefaultValue() == 0.25f);
        }
    }

    void skeletonKeepsGroupsOfDuplicatedBones()
    {
        auto *map = new RySelectionMap;
        map->addPair(QStringLiteral("arm"), m_upper, true);
        map->addPair(QStringLiteral("ringGroup"), m_prop, true);
        m_skeleton->setSelectionMap(map);
        m_skeleton->setDrawGLBones(true);
        for (const bool compatible : {true, false}) {
            RyElementDuplicateContext context(nullptr);
            context.setDuplicateBoneHierarchy(true);
            context.setFacetCompatible(compatible);
            auto *copy = qobject_cast<RySkeleton *>(m_skeleton->doDuplicateElement(&context));
            context.doResolve();
            QVERIFY(copy && copy->drawsGLBones());
            QCOMPARE(int(copy->getAllBones().size()), 3);
            QCOMPARE(copy->getSelectionMap() != nullptr, compatible);
            if (!compatible)
                continue;
            QCOMPARE(copy->getSelectionMap()->getNumPairs(), 1);
            QCOMPARE(copy->getSelectionMap()->getPairNode(0), copy->getNodeChild(0));
        }
    }

    void cameraKeepsItsLens()
    {
        RyRef<RyCamera> camera(new RyCamera);
        camera->setFieldOfView(1.1f);
        camera->setOrthographic(true);
        RyElementDuplicateContext context(nullptr);
        const auto *copy = qobject_cast<RyCamera *>(camera->doDuplicateElement(&context));
        QVERIFY(copy && copy->isOrthographic() && copy->fieldOfView() == 1.1f && !copy->getOriginXControl());
    }

    void whatNobodyTakesGoesWithTheContext()
    {
        QPointer<RyElement> lost, kept;
        {
            QObject owner;
            auto *context = new RyElementDuplicateContext(&owner);
            lost = m_hand->doDuplicateElement(context);
            context->setParentNode(m_lower);
            kept = m_hand->doDuplicateElement(context);
            RyElement *deleted = m_hand->doDuplicateElement(context);
            delete deleted;
            QVERIFY(lost && kept);
            QVERIFY(!context->findNewElement(m_hand)); // the one that is there now was deleted
            context->createAlaises();
            context->createERC();
            context->doResolve();
        }
        QVERIFY(!lost);
        QVERIFY(kept);
    }

    void oddDuplicateIsSeen()
    {
        auto *odd = new RyOddBone;
        m_upper->addNodeChild(odd);
        RyElementDuplicateContext context(nullptr);
        context.setParentNode(m_upper);
        RyElement *copy = odd->doDuplicateElement(&context);
        QVERIFY(copy && !qobject_cast<RyBone *>(copy));
        const int children = m_upper->getNumNodeChildren();
        delete copy;
        QCOMPARE(m_upper->getNumNodeChildren(), children - 1);
        QVERIFY(!odd->doDuplicateElement(nullptr));
    }

    void stagesAreAnnouncedInOrder()
    {
        RyElementDuplicateContext context(nullptr);
        RyAssetList assets;
        context.setDuplicateAssets(&assets);
        std::vector<int> stages;
        connect(&context, &RyElementDuplicateContext::stageDone, this,
                [&stages](RyElementDuplicateContext::Stage stage) { stages.push_back(stage); });
        RyBone *lower = duplicate(context, m_lower, m_upper);
        context.createAlaises();
        context.createERC();
        context.doResolve();
        context.doFinalize();
        QVERIFY(assets.contains(lower));
        context.clearDuplicateAssets();
        QVERIFY(!context.duplicateAssets() && assets.count() == 1);
        QCOMPARE(stages, (std::vector<int>{0, 1, 2, 3, 4}));
    }

    void isUndoableWithinAHold()
    {
        QPointer<RyBone> copy;
        {
            RyUndoStackHold hold;
            RyElementDuplicateContext context(nullptr);
            copy = duplicate(context, m_lower, m_upper);
            context.createAlaises();
            context.createERC();
            context.doResolve();
            context.doFinalize();
            hold.accept(QStringLiteral("Duplicate"));
        }
        QCOMPARE(int(m_skeleton->getAllBones().size()), 4);
        ryUndoStack()->undo();
        QCOMPARE(int(m_skeleton->getAllBones().size()), 3);
        QVERIFY(copy && !copy->getScene());
        ryUndoStack()->redo();
        QCOMPARE(copy->getNodeParent(), static_cast<RyNode *>(m_upper));
        QCOMPARE(copy->getScene(), ryScene());
    }

private:
    static RyBone *bone(const char *name, RyNode *parent)
    {
        auto *bone = new RyBone;
        bone->setName(QLatin1String(name));
        parent->addNodeChild(bone);
        return bone;
    }
    static RyBone *duplicate(RyElementDuplicateContext &context, RyBone *bone, RyNode *parent)
    {
        context.setParentNode(parent);
        return qobject_cast<RyBone *>(bone->doDuplicateElement(&context));
    }

    RySkeleton *m_skeleton = nullptr;
    RyBone *m_upper = nullptr;
    RyBone *m_lower = nullptr;
    RyBone *m_hand = nullptr;
    RyNode *m_prop = nullptr;
};

RY_TEST(RyElementDuplicateContextTest)
#include "tst_RyElementDuplicateContext.moc"
