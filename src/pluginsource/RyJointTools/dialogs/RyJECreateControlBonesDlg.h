#pragma once

#include "pluginsource/RyJointTools/operations/createControlBones.h"

#include "rycore/ui/RyBasicDialog.h"

class QComboBox;
class QLineEdit;

/// Asks which bones get control bones and what their names begin with.
class RyJECreateControlBonesDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    explicit RyJECreateControlBonesDlg(QWidget *parent = nullptr);

    QString getPrefix() const;
    RyControlBoneMode getMode() const;

private slots:
    void updateAcceptState();

private:
    QLineEdit *m_prefix;
    QComboBox *m_mode;
};
