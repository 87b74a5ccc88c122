#pragma once

#include "pluginsource/RyJointTools/dialogs/RyJEBoneCreationDlg.h"

#include <QComboBox>
#include <QLineEdit>

/// The bone creation dialog with its fields at hand.
struct RyFilledBoneDialog : RyJEBoneCreationDlg
{
    explicit RyFilledBoneDialog(RyJointEditorTool *tool = nullptr)
        : RyJEBoneCreationDlg(tool), name(findChild<QLineEdit *>("JointEditorCreateBoneNameLEdit")),
          label(findChild<QLineEdit *>("JointEditorCreateBoneLabelLEdit")),
          order(findChild<QComboBox *>("JointEditorCreateBoneRotationOrderCmb"))
    {}
    void fill(const QString &nameText, const QString &labelText)
    {
        name->setText(nameText);
        label->setText(labelText);
    }
    /// Whether accepting closed the dialog.
    bool accepts()
    {
        setResult(-1);
        accept();
        return result() == QDialog::Accepted;
    }
    QLineEdit *name;
    QLineEdit *label;
    QComboBox *order;
};
