#pragma once

#include "rycore/ui/RyBasicDialog.h"

class QCheckBox;
class QLineEdit;
class QRadioButton;

/// Asks how a prop becomes a figure: the name of its root bone, the kind of rigging, and whether the bone joins the
/// skeleton that the prop hangs on, in which case a name need not be given.
class RyConvertPropToFigureDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    enum class Rigging { LocalMaps, GeneralMap, Parametric };

    explicit RyConvertPropToFigureDlg(QWidget *parent = nullptr);

    /// "Bone" where none was typed.
    QString getRootBoneName() const;
    Rigging getRigging() const;
    bool inheritsParentSkeleton() const;

private slots:
    void updateAcceptState();

private:
    QWidget *makeRiggingModes();

    QLineEdit *m_rootName;
    QRadioButton *m_general = nullptr;
    QRadioButton *m_parametric = nullptr;
    QCheckBox *m_inherit;
};
