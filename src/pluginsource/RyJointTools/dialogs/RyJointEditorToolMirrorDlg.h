#pragma once

#include "rycore/ui/RyBasicDialog.h"

#include <QPointer>
#include <QStringList>

class QComboBox;
class QGridLayout;
class QLineEdit;
class RyJointEditorTool;
class RyNode;
struct MirrorReport;

/// Asks which bones are mirrored to which side, mirrors them through the tool in one undo step, and tells what came of
/// it in the status line and, bone by bone, in the log. Without a tool it mirrors nothing.
class RyJointEditorToolMirrorDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    explicit RyJointEditorToolMirrorDlg(RyJointEditorTool *tool, QWidget *parent = nullptr);

public slots:
    /// Stays open, with a warning, while nothing with a skeleton is selected.
    void accept() override;

private:
    QComboBox *addChoice(QGridLayout *grid, const QString &label, const QString &name, const QStringList &items);
    QLineEdit *addPrefixes(QGridLayout *grid, const QString &label, const QString &name, const QString &text);
    MirrorReport mirror(RyNode *primary);

    QPointer<RyJointEditorTool> m_tool;
    QComboBox *m_nodes;
    QComboBox *m_direction;
    QComboBox *m_axis;
    QLineEdit *m_leftPrefix;
    QLineEdit *m_rightPrefix;
    QStringList m_leftPrefixes;
    QStringList m_rightPrefixes;
};
