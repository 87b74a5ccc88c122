#include "pluginsource/RyJointTools/dialogs/addLabeledRow.h"

#include <QGridLayout>
#include <QLabel>

void addLabeledRow(QGridLayout *grid, const QString &text, const QString &labelName, QWidget *field)
{
    auto *label = new QLabel(text, field->parentWidget());
    label->setObjectName(labelName);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setBuddy(field);
    const int row = grid->isEmpty() ? 0 : grid->rowCount();
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row, 1);
}
