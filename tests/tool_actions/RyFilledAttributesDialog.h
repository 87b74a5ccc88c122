#pragma once

#include "pluginsource/RyJointTools/dialogs/RyJESelectedNodesAttributesEditDlg.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGroupBox>

/// The attributes dialog with its rows by place, for some of their names come twice.
struct RyFilledAttributesDialog : RyJESelectedNodesAttributesEditDlg
{
    RyFilledAttributesDialog()
    {
        for (QGroupBox *group : findChildren<QGroupBox *>()) {
            auto *grid = qobject_cast<QGridLayout *>(group->layout());
            for (int row = 0; grid && row < grid->rowCount(); ++row) {
                checks.append(qobject_cast<QCheckBox *>(grid->itemAtPosition(row, 0)->widget()));
                values.append(qobject_cast<QDoubleSpinBox *>(grid->itemAtPosition(row, 1)->widget()));
            }
        }
    }
    void fill(int row, double value)
    {
        checks[row]->click();
        values[row]->setValue(value);
    }
    QList<QCheckBox *> checks; // nine: centre, end, orientation, X, Y and Z of each
    QList<QDoubleSpinBox *> values;
};
