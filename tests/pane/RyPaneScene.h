#pragma once

#include "support/RyTest.h"

#include "tool_actions/RyParametricToolScene.h"

#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QStyleOptionGroupBox>

/// The untidy parametric figure and the tool's pane on a screen, as narrow as it likes to be.
class RyPaneScene : public RyParametricToolScene
{
public:
    RyPaneScene() : pane(tool->frame())
    {
        pane->resize(350, 700);
        pane->show();
        QApplication::setActiveWindow(pane);
        ryUndoStack()->clearAll();
    }

    template<typename W>
    W *find(const char *name) const
    {
        return pane->findChild<W *>(QString::fromLatin1(name));
    }
    RyFloatPropertyWgt *field(const char *name) const { return find<RyFloatPropertyWgt>(name); }
    QString shown(const char *name) const { return field(name)->numberField()->text(); }

    /// Makes the bone current, and then that parameter of its joint by the list of the pane.
    RyLegacyJointParam *choose(RyBone *bone, const char *name)
    {
        select(bone);
        RyLegacyJointParam *param = doll.param(bone, name);
        pickItem(*find<QComboBox>("JointEditorParameterCmb"), QString::fromLatin1(name));
        return tool->currentParam() == param ? param : nullptr;
    }

    /// By keys, as far as the item whose text begins so.
    static void pickItem(QComboBox &combo, const QString &begin)
    {
        const int index = combo.findText(begin, Qt::MatchStartsWith);
        combo.setFocus();
        while (index >= 0 && combo.currentIndex() != index)
            QTest::keyClick(&combo, combo.currentIndex() < index ? Qt::Key_Down : Qt::Key_Up);
    }

    void type(const char *name, const QString &text)
    {
        RyNumberField *number = field(name)->numberField();
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, text);
        QTest::keyClick(number, Qt::Key_Return);
    }

    /// On the check mark.
    static void click(QGroupBox &box)
    {
        QStyleOptionGroupBox option;
        option.initFrom(&box);
        option.text = box.title();
        option.subControls = QStyle::SC_GroupBoxCheckBox | QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame;
        const QRect mark = box.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxCheckBox, &box);
        QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, mark.center());
    }

    /// One step of that caption was made; undo leads back to `before`, redo forth again.
    static void checkStep(const QString &before, const QString &caption)
    {
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), caption);
        const QString after = wholeDump();
        QVERIFY(after != before);
        ryUndoStack()->undo();
        QCOMPARE(wholeDump(), before);
        ryUndoStack()->redo();
        QCOMPARE(wholeDump(), after);
    }

    RyJointEditorToolFrame *pane;
};
