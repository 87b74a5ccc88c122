#pragma once

#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolMirrorDlg.h"

#include <QComboBox>
#include <QLineEdit>

/// The dialog of Mirror Joints with its fields at hand.
struct RyFilledMirrorDialog : RyJointEditorToolMirrorDlg
{
    explicit RyFilledMirrorDialog(RyJointEditorTool *tool)
        : RyJointEditorToolMirrorDlg(tool), nodes(findChild<QComboBox *>("JointEditorMirrorNodesCmb")),
          direction(findChild<QComboBox *>("JointEditorMirrorDirectionCmb")),
          axis(findChild<QComboBox *>("JointEditorMirrorAxisCmb")),
          left(findChild<QLineEdit *>("JointEditorMirrorLeftPrefixLEdit")),
          right(findChild<QLineEdit *>("JointEditorMirrorRightPrefixLEdit"))
    {}
    bool accepts()
    {
        setResult(-1);
        accept();
        return result() == QDialog::Accepted;
    }
    bool accepts(const QString &nodeChoice, const QString &directionChoice)
    {
        nodes->setCurrentText(nodeChoice);
        direction->setCurrentText(directionChoice);
        return accepts();
    }

    QComboBox *nodes;
    QComboBox *direction;
    QComboBox *axis;
    QLineEdit *left;
    QLineEdit *right;
};
