#pragma once

#include "rycore/ui/RyBasicDialog.h"

#include <QPointer>

class QComboBox;
class QLabel;
class QLineEdit;
class QVBoxLayout;
class RyJointEditorTool;

/// Asks for name, label and rotation order of a bone, and on acceptance makes it a child of the primary selection and
/// selects it. That is not undoable and empties the undo history.
class RyJEBoneCreationDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    /// A tool, which may be null and may go while the dialog is open, aligns the new bone.
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
    /// Says what to select while the primary selection is no bone, which would be refused without a word.
    void updateHint();
    QLineEdit *makeField(const QString &objectName, const QString &placeholder);

    QPointer<RyJointEditorTool> m_tool;
    QLineEdit *m_name;
    QLineEdit *m_label;
    QComboBox *m_order;
    QVBoxLayout *m_content;
    QLabel *m_hint = nullptr; // only while there is something to say
};
