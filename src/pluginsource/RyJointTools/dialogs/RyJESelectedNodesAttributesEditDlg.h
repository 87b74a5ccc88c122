#pragma once

#include "rycore/ui/RyBasicDialog.h"

#include <vector>

class QCheckBox;
class QDoubleSpinBox;
class QRadioButton;

/// Sets rigging values of all selected nodes to numbers, or adds numbers to them: those values whose boxes are checked.
/// One rig edit, no undo hold.
class RyJESelectedNodesAttributesEditDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    RyJESelectedNodesAttributesEditDlg();

public slots:
    void accept() override;

private slots:
    /// A number can be typed while its box is checked.
    void validateSpinBoxStates();

private:
    QLayout *makeModes();
    QWidget *makeGroup(int group);
    void writeValues() const;

    struct Row
    {
        QCheckBox *check;
        QDoubleSpinBox *value;
    };
    QRadioButton *m_setMode = nullptr;
    QRadioButton *m_adjustMode = nullptr;
    std::vector<Row> m_rows; // centre, end, orientation; X, Y, Z of each
};
