#include "host/FaceProp.h"
#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/panes/MorphSliders.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

/// The sliders of morphs below those of the pose.
class MorphSlidersTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        m_face = std::make_unique<FaceProp>(m_scene);
    }
    void cleanup()
    {
        m_face.reset();
        close();
    }

    void aSliderForEachMorph()
    {
        QVERIFY(sliders()->isHidden());
        addMorphs(3);
        settle();
        QVERIFY(sliders()->isVisible());
        QCOMPARE(shownRows(), QStringList({"Morph mouth 0", "Morph mouth 1", "Morph mouth 2"}));
        QVERIFY(search()->isHidden());
        RyFloatPropertyWgt *row = sliders()->findChild<RyFloatPropertyWgt *>(QStringLiteral("Morph mouth 1"));
        RyFloatProperty *control = m_face->shape()->getMorphs()[1]->getValueControl();
        QCOMPARE(row->getFirstProperty(), control);
        ryUndoStack()->clearAll();
        row->numberField()->setFocus();
        row->numberField()->selectAll();
        QTest::keyClicks(row->numberField(), QStringLiteral("0.25"));
        QTest::keyClick(row->numberField(), Qt::Key_Return);
        QCOMPARE(control->getValue(), 0.25f);
        QCOMPARE(m_face->shape()->getCurrentPositions()[0].y, 102.5f);
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(control->getValue(), 0.0f);
        QCOMPARE(row->numberField()->text(), QStringLiteral("0"));
        // Other nodes have none, and they come and go with the morphs.
        m_scene->setSelection({m_scene->findNode(QStringLiteral("hip"))});
        settle();
        QVERIFY(sliders()->isHidden());
        m_scene->setSelection({m_face->node()});
        m_face->shape()->removeMorph(m_face->shape()->getMorphs()[0]);
        settle();
        QCOMPARE(shownRows(), QStringList({"Morph mouth 1", "Morph mouth 2"}));
    }

    void manyAreSearched()
    {
        addMorphs(130);
        settle();
        QVERIFY(search()->isVisible());
        QCOMPARE(shownRows().size(), int(MorphSliders::MostRows));
        auto *rest = sliders()->findChild<QLabel *>(QStringLiteral("MorphsRest"));
        QVERIFY(rest->isVisible() && rest->text().contains(QStringLiteral("130")));
        search()->setText(QStringLiteral("MOUTH 12"));
        settle();
        QCOMPARE(shownRows().size(), 11); // 12 and 120 to 129
        QVERIFY(rest->isHidden());
        search()->setText(QStringLiteral("nobody"));
        QCOMPARE(shownRows().size(), 0);
        QVERIFY(rest->isVisible());
        search()->clear();
        m_face->shape()->getMorphs()[7]->getValueControl()->setLabel(QStringLiteral("Smile"));
        search()->setText(QStringLiteral("smi"));
        QCOMPARE(shownRows(), QStringList({"Morph mouth 7"}));
    }

    void restoringLeavesThemAlone()
    {
        addMorphs(2);
        RyFloatProperty *control = m_face->shape()->getMorphs()[0]->getValueControl();
        control->setValue(0.5f);
        m_face->node()->getXRotControl()->setValue(20);
        auto *restore = m_window->findChild<QPushButton *>(QStringLiteral("ParametersRestore"));
        QTest::mouseClick(restore, Qt::LeftButton);
        QVERIFY(!m_face->node()->isPosed());
        QCOMPARE(control->getValue(), 0.5f);
        m_face->node()->getXRotControl()->setValue(20);
        QAction *all = action("EditRestorePose");
        QVERIFY(all);
        all->trigger();
        QVERIFY(!m_face->node()->isPosed());
        QCOMPARE(control->getValue(), 0.5f);
    }

private:
    void addMorphs(int count)
    {
        for (int i = 0; i < count; ++i)
            m_face->addMorph(QStringLiteral("mouth %1").arg(i));
    }
    MorphSliders *sliders() const { return m_window->findChild<MorphSliders *>(); }
    QLineEdit *search() const { return m_window->findChild<QLineEdit *>(QStringLiteral("ParametersSearchFld")); }
    QStringList shownRows() const
    {
        QStringList names;
        for (const RyFloatPropertyWgt *row : sliders()->findChildren<RyFloatPropertyWgt *>()) {
            if (!row->isHidden())
                names.append(row->objectName());
        }
        return names;
    }

    std::unique_ptr<FaceProp> m_face;
};

RY_TEST(MorphSlidersTest)
#include "tst_MorphSliders.moc"
