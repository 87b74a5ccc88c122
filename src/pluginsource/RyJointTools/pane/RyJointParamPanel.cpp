#include "pluginsource/RyJointTools/pane/RyJointParamPanel.h"

#include "pluginsource/RyJointTools/pane/RyJointParamGeneralPage.h"
#include "pluginsource/RyJointTools/pane/RyJointParamMatricesPage.h"

#include "rycore/ui/RyExtendedTabWidget.h"

#include <QVBoxLayout>

RyJointParamPanel::RyJointParamPanel(RyJointEditorTool *tool, QWidget *parent) : QWidget(parent)
{
    auto *tabs = new RyExtendedTabWidget(this);
    tabs->setObjectName(QStringLiteral("JointEditorParamTabWgt"));
    tabs->addTab(new RyJointParamGeneralPage(tool, tabs), tr("General"));
    tabs->addTab(new RyJointParamMatricesPage(tool, tabs), tr("Matrices"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(tabs);
}
