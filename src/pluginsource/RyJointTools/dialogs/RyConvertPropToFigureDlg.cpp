#include "pluginsource/RyJointTools/dialogs/RyConvertPropToFigureDlg.h"

#include "rycore/ui/RyNodeNameValidator.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

static QString named(const char *suffix)
{
    return QStringLiteral("ConvertPropToFigure") + QLatin1String(suffix);
}

RyConvertPropToFigureDlg::RyConvertPropToFigureDlg(QWidget *parent)
    : RyBasicDialog(parent), m_rootName(new QLineEdit(tr("Bone"), this)),
      m_inherit(new QCheckBox(tr("Inherit Skeleton of Parent"), this))
{
    setObjectName(QStringLiteral("ConvertPropToFigureDlg"));
    setWindowTitle(tr("Convert Prop to Figure"));

    auto *rootLabel = new QLabel(tr("Root Bone Name :"), this);
    rootLabel->setObjectName(named("RootBoneLbl"));
    rootLabel->setBuddy(m_rootName);
    m_rootName->setObjectName(named("RootBoneLEdit"));
    m_rootName->setValidator(new RyNodeNameValidator(m_rootName));
    m_rootName->setPlaceholderText(tr("The name of the root bone (e.g., \"hip\")..."));
    auto *modeLabel = new QLabel(tr("Rigging Type :"), this);
    modeLabel->setObjectName(named("WeightModeLbl"));
    modeLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_inherit->setObjectName(named("InheritParentSkeletonCbx"));
    m_inherit->setChecked(true);
    m_rootName->setEnabled(false);

    auto *grid = new QGridLayout;
    grid->setSpacing(RyStandardMetrics::Spacing);
    grid->setContentsMargins(RyStandardMetrics::Spacing, RyStandardMetrics::Spacing, RyStandardMetrics::Spacing,
                             RyStandardMetrics::Spacing);
    grid->addWidget(rootLabel, 0, 0);
    grid->addWidget(m_rootName, 0, 1);
    grid->addWidget(modeLabel, 1, 0);
    grid->addWidget(makeRiggingModes(), 1, 1);
    grid->addWidget(m_inherit, 2, 0, 1, 2);
    setContentLayout(grid);
    setApplyVisible(false);
    setMinimumWidth(300);
    setFixedHeight(minimumSizeHint().height());

    connect(m_rootName, SIGNAL(textChanged(QString)), this, SLOT(updateAcceptState()));
    connect(m_inherit, SIGNAL(toggled(bool)), m_rootName, SLOT(setDisabled(bool)));
    connect(m_inherit, SIGNAL(toggled(bool)), this, SLOT(updateAcceptState()));
    updateAcceptState();
}

QWidget *RyConvertPropToFigureDlg::makeRiggingModes()
{
    auto *modes = new QWidget(this);
    modes->setObjectName(named("RiggingModeOptionWgt"));
    auto *layout = new QVBoxLayout(modes);
    layout->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const QString &text, const char *suffix) {
        auto *button = new QRadioButton(text, modes);
        button->setObjectName(named(suffix));
        layout->addWidget(button);
        return button;
    };
    add(tr("Korvex Weight Mapping"), "KorvexRBtn")->setChecked(true);
    m_general = add(tr("General Weight Mapping"), "GeneralRBtn");
    m_parametric = add(tr("Parametric Joint Parameters"), "LegacyRBtn");
    return modes;
}

void RyConvertPropToFigureDlg::updateAcceptState()
{
    enableAccept(m_inherit->isChecked() || (!m_rootName->text().isEmpty() && m_rootName->hasAcceptableInput()));
}

QString RyConvertPropToFigureDlg::getRootBoneName() const
{
    return m_rootName->text().isEmpty() ? tr("Bone") : m_rootName->text();
}

RyConvertPropToFigureDlg::Rigging RyConvertPropToFigureDlg::getRigging() const
{
    return m_parametric->isChecked() ? Rigging::Parametric
           : m_general->isChecked()  ? Rigging::GeneralMap
                                     : Rigging::LocalMaps;
}

bool RyConvertPropToFigureDlg::inheritsParentSkeleton() const
{
    return m_inherit->isChecked();
}
