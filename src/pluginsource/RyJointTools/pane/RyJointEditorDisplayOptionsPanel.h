#pragma once

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include <vector>

class QCheckBox;
class QComboBox;
class QGridLayout;

/// What the tool draws: which bones, and which kinds of rigging. What is drawn of a joint parameter alone can be
/// switched while one is current.
class RyJointEditorDisplayOptionsPanel : public QWidget
{
    Q_OBJECT
public:
    explicit RyJointEditorDisplayOptionsPanel(RyJointEditorTool *tool, QWidget *parent = nullptr);

public slots:
    void updateBoneMode(RyJointEditorTool::BoneDrawMode mode);
    void updateParam(RyLegacyJointParam *param);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void addBones(QGridLayout *grid);
    void addBoxes(QGridLayout *grid);
    /// Scripts switch without telling.
    void updateBoxes();

    QPointer<RyJointEditorTool> m_tool;
    QComboBox *m_bones = nullptr;
    std::vector<QCheckBox *> m_boxes; // as in the table of them
};
