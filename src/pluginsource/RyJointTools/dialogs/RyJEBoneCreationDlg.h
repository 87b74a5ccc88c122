#pragma once

#include "rycore/ui/RyBasicDialog.h"

class QComboBox;
class QGridLayout;
class QLineEdit;
class RyJointEditorTool;

/// Asks for name, label and rotation order of a bone, and on acceptance makes it a child of the primary selection and
/// selects it. That is not undoable and empties the undo history.
class RyJEBoneCreationDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    /// A tool, which may be null, aligns the new bone.
    explicit RyJEBoneCreationDlg(RyJointEditorTool *tool);

    QString getBoneName() const;
    QString getBoneLabel() const;
    /// An empty text changes nothing. `makeUnique`: unique among the top-level nodes of the scene.
    void setBoneName(const QString &name, bool makeUnique);
    void setBoneLabel(const QString &label, bool makeUnique);

protected:
    void apply() override;

private slots:
    /// Proposes the name as the label while there is none.
    void nameEditChanged();
    /// Accepting takes a name and a label.
    void updateAcceptState();

private:
    void addRow(QGridLayout *grid, QWidget *field, const QString &text, const QString &labelName);
    QLineEdit *makeField(const QString &objectName, const QString &placeholder);

    RyJointEditorTool *m_tool;
    QLineEdit *m_name;
    QLineEdit *m_label;
    QComboBox *m_order;
};
