#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMVCCageAdjustRigToShapeAction.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/scene/RyMorph.h"

#include <QChildEvent>
#include <QGuiApplication>
#include <QProgressDialog>
#include <QPushButton>

namespace {

/// Presses the button of each progress dialog that opens below a widget, as soon as it has its name.
class CancelledProgress : public QObject
{
public:
    explicit CancelledProgress(QWidget *parent) { parent->installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ChildAdded) {
            QObject *child = static_cast<QChildEvent *>(event)->child();
            connect(child, &QObject::objectNameChanged, this, [this, child] {
                auto *dialog = qobject_cast<QProgressDialog *>(child);
                auto *button = dialog ? dialog->findChild<QPushButton *>() : nullptr;
                if (!button)
                    return;
                said << dialog->labelText() + '|' + button->text();
                button->click();
            });
        }
        return false;
    }

    QStringList said;
};

} // namespace

/// The command that lets the rig follow the shape, with the tool beside it.
class RyAdjustRigActionTest : public QObject
{
    Q_OBJECT

    /// The figure in a box that a morph makes longer, shown to a half.
    struct Scene : RySkinnedScene
    {
        Scene() : RySkinnedScene(General, 8)
        {
            auto *shape = qobject_cast<RyFacetShape *>(object->getCurrentShape());
            std::vector<RyVec3> positions, deltas;
            for (int v = 0; v < 8; ++v) {
                positions.push_back({v & 1 ? 90.0f : -80.0f, v & 2 ? 180.0f : -30.0f, v & 4 ? 70.0f : -60.0f});
                deltas.push_back(positions.back() * 0.5f);
            }
            shape->getFacetMesh()->setPositions(positions);
            shape->getFacetMesh()->setFacets(
                {{{0, 2, 3, 1}}, {{4, 5, 7, 6}}, {{0, 1, 5, 4}}, {{2, 6, 7, 3}}, {{0, 4, 6, 2}}, {{1, 3, 7, 5}}});
            morph = new RyMorph("long", {0, 1, 2, 3, 4, 5, 6, 7}, deltas);
            shape->addMorph(morph);
            morph->getValueControl()->setValue(0.5f);
            pose();
        }

        /// Whether all bones stand where a quarter of the way from the middle of space brings them.
        bool isFollowed() const
        {
            bool follows = true;
            for (const RyBone *bone : figure->getAllBones()) {
                follows = follows && (bone->getOrigin() - bone->getOrigin(true) * 1.25f).length() < 1e-3f &&
                          (bone->getEndPoint() - bone->getEndPoint(true) * 1.25f).length() < 1e-3f;
            }
            return follows;
        }

        RyMorph *morph;
    };

private slots:
    void isEnabledForWeightMappedFigures()
    {
        Scene scene;
        auto *parametric = new RyLegacyFigure;
        ryScene()->addNode(parametric);
        RyMVCCageAdjustRigToShapeAction action;
        action.init();
        QString enabled;
        for (RyNode *node : {static_cast<RyNode *>(nullptr), scene.prop, static_cast<RyNode *>(parametric),
                             static_cast<RyNode *>(scene.figure), static_cast<RyNode *>(scene.lFoot)}) {
            ryScene()->setSelection({node});
            enabled += QString::number(action.isEnabled());
            QCOMPARE(action.unavailableReason(),
                     action.isEnabled() ? QString()
                                        : QStringLiteral("Select a weight mapped figure or one of its bones."));
        }
        QCOMPARE(enabled, QStringLiteral("00011"));
    }

    void isOneStepThatTheToolLeavesAlone()
    {
        Scene scene;
        scene.tool->setPropagateTranslation(true);
        scene.tool->setAutoSnapEndPoints(true);
        scene.tool->setAutoAlign(true);
        scene.select(scene.lThigh);
        QVERIFY(!scene.isFollowed());
        const QString before = scene.dump();
        RyMessageBoxes boxes;
        RyMVCCageAdjustRigToShapeAction().trigger();
        QVERIFY(boxes.said.isEmpty());
        QVERIFY(scene.isFollowed());
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Adjust Rig to Shape"));
        const QString after = scene.dump();
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
    }

    void canBeCancelled()
    {
        Scene scene;
        scene.select(scene.lThigh);
        const QString before = scene.dump();
        CancelledProgress progress(RyApp::getDialogParent());
        RyMessageBoxes boxes;
        RyMVCCageAdjustRigToShapeAction().trigger();
        QCOMPARE(progress.said, QStringList("Moving the bones with the surface|Cancel"));
        QVERIFY(boxes.said.isEmpty()); // who cancels knows
        QCOMPARE(scene.dump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(!QGuiApplication::overrideCursor());
        QVERIFY(!RyApp::getDialogParent()->findChild<QProgressDialog *>());
    }

    void saysWhyItDoesNothing()
    {
        Scene scene;
        scene.morph->getValueControl()->setValue(0);
        scene.select(scene.lThigh);
        const QString before = scene.dump();
        RyMessageBoxes boxes;
        RyMVCCageAdjustRigToShapeAction().trigger();
        QCOMPARE(boxes.said, QStringList{"Adjust Rig to Shape|The figure has no shape that differs from its base.|Ok|"
                                         "warning"});
        QCOMPARE(scene.dump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
    }
};

RY_TEST(RyAdjustRigActionTest)
#include "tst_adjustRigAction.moc"
