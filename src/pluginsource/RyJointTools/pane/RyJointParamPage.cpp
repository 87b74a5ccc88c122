#include "pluginsource/RyJointTools/pane/RyJointParamPage.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QBoxLayout>

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
    // Many a change leads through other partners and back, and not each way back is a change of the joint.
    if (pair().partner() != m_partner)
        QMetaObject::invokeMethod(this, &RyJointParamPage::showPair, Qt::QueuedConnection);
    showPair();
}

void RyJointParamPage::showPair()
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

RyFloatPropertyWgt *RyJointParamPage::addField(QBoxLayout *layout, const Row &row)
{
    RyFloatPropertyWgt *field = makeField(layout->parentWidget(), row);
    field->setStep(row.step);
    layout->addWidget(field);
    m_allFields.push_back(field);
    return field;
}

void RyJointParamPage::alignLabels()
{
    constexpr int reserve = RyStandardMetrics::Margin; // a gap, and eliding counts fractions of pixels
    const int width = widestLabel(m_allFields) + reserve;
    for (RyFloatPropertyWgt *field : m_allFields) {
        field->label()->setMinimumWidth(width);
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
