#pragma once

#include "pluginsource/RyJointTools/pane/layOutFields.h"

#include "rycore/parametric/RyLegacyParamPair.h"

#include <QPointer>
#include <QWidget>

#include <vector>

class QBoxLayout;
class RyFloatPropertyWgt;
class RyJointEditorTool;

/// A page with numbers and switches of the joint parameter that the tool edits. What is edited goes to the parameter
/// and to its partner at once.
class RyJointParamPage : public QWidget
{
    Q_OBJECT
public:
    RyJointParamPage(RyJointEditorTool *tool, QWidget *parent);

protected:
    struct Row : RyFieldTexts
    {
        float step;
    };

    RyJointEditorTool *tool() const { return m_tool; }
    /// Null when it is gone.
    RyLegacyJointParam *param() const { return m_param; }
    RyLegacyParamPair pair() const;
    /// From here on `showFlags` follows that parameter, and `showParam` its partner.
    void follow(RyLegacyJointParam *param);
    /// One step where the flag of the parameter or of its partner is another one, otherwise none.
    void apply(RyLegacyJointParam::Flag flag, bool on, const QString &caption);

    RyFloatPropertyWgt *addField(QBoxLayout *layout, const Row &row);
    /// Fills the field with the value and with the partner's one, after what it has.
    void addValue(RyFloatPropertyWgt *field, RyFloatProperty *value) const;
    /// What is being edited ends there, as a step of its own.
    void clearFields();
    /// After the last field: all labels as wide as the widest.
    void alignLabels();

    virtual void showParam() = 0;
    virtual void showFlags() = 0;

private:
    void jointChanged();
    void showPair();

    RyJointEditorTool *m_tool;
    QPointer<RyLegacyJointParam> m_param;
    const RyLegacyJointParam *m_partner = nullptr; // the one shown; compared, never followed
    QMetaObject::Connection m_following;
    std::vector<RyFloatPropertyWgt *> m_allFields;
};
