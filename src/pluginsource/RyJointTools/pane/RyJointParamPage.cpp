#include "pluginsource/RyJointTools/pane/RyJointParamPage.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

RyJointParamPage::RyJointParamPage(RyJointEditorTool *tool, QWidget *parent) : QWidget(parent), m_tool(tool) {}

RyLegacyParamPair RyJointParamPage::pair() const
{
    return {m_param, m_param ? m_tool->editedPartnerParam() : nullptr};
}

void RyJointParamPage::follow(RyLegacyJointParam *param)
{
    disconnect(m_following);
    m_param = param;
    m_partner = pair().partner();
    const RyLegacyJoint *joint = param ? param->getJoint() : nullptr;
    if (joint && joint->getBinding())
        m_following =
            connect(joint->getBinding(), &RyLegacyBinding::bindingChanged, this, &RyJointParamPage::jointChanged);
}

void RyJointParamPage::jointChanged()
{
    const RyLegacyJointParam *partner = pair().partner();
    if (partner == m_partner) {
        showFlags();
        return;
    }
    m_partner = partner;
    showParam();
}

void RyJointParamPage::apply(RyLegacyJointParam::Flag flag, bool on, const QString &caption)
{
    const RyLegacyParamPair both = pair();
    if (!m_param || both.isFlagSet(flag, on))
        return;
    RyUndoStackHold hold;
    both.setFlag(flag, on);
    hold.accept(caption);
}

QVBoxLayout *RyJointParamPage::makeColumn(const QString &areaName, const QString &contentsName)
{
    auto *area = new QScrollArea(this);
    area->setObjectName(areaName);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus); // what has the focus is scrolled into sight
    auto *contents = new QWidget(area);
    contents->setObjectName(contentsName);
    area->setWidget(contents);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    auto *column = new QVBoxLayout(contents);
    column->setContentsMargins(RyStandardMetrics::Margin, RyStandardMetrics::Margin, RyStandardMetrics::Margin,
                               RyStandardMetrics::Margin);
    column->setSpacing(RyStandardMetrics::Margin);
    return column;
}

RyFloatPropertyWgt *RyJointParamPage::addField(QBoxLayout *layout, const Row &row)
{
    auto *field = new RyFloatPropertyWgt(layout->parentWidget());
    field->setObjectName(row.name + QLatin1String("Wgt"));
    field->label()->setObjectName(row.name + QLatin1String("Lbl"));
    field->setFullLengthTextEdit(true);
    field->setSuffix(row.suffix);
    field->setStep(row.step);
    field->setLabelText(row.label);
    if (!row.spoken.isEmpty())
        field->setSpokenName(row.spoken + QLatin1Char(' ') + row.label);
    connect(field, &RyFloatPropertyWgt::messagePosted, this, [](const QString &message) {
        if (RyMainWindow *window = RyApp::getInterface())
            window->showMessage(message);
    });
    layout->addWidget(field);
    m_allFields.push_back(field);
    constexpr int reserve = RyStandardMetrics::Margin; // a gap, and eliding counts fractions of pixels
    m_labelWidth = std::max(m_labelWidth, field->label()->fontMetrics().horizontalAdvance(row.label) + reserve);
    return field;
}

void RyJointParamPage::alignLabels()
{
    for (RyFloatPropertyWgt *field : m_allFields) {
        field->label()->setMinimumWidth(m_labelWidth);
        field->refresh();
    }
}

void RyJointParamPage::addValue(RyFloatPropertyWgt *field, RyFloatProperty *value) const
{
    for (RyFloatProperty *each : pair().both(value))
        field->addProperty(each);
}

void RyJointParamPage::clearFields()
{
    for (RyFloatPropertyWgt *field : m_allFields)
        field->finishEdit();
    for (RyFloatPropertyWgt *field : m_allFields)
        field->clearProperties();
}
