#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolMirrorDlg.h"

#include "pluginsource/RyJointTools/dialogs/addLabeledRow.h"
#include "pluginsource/RyJointTools/dialogs/reportMirror.h"
#include "pluginsource/RyJointTools/dialogs/runMessageBox.h"
#include "pluginsource/RyJointTools/operations/mirrorBones.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/app/RyApp.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>

static QString named(const QString &name)
{
    return QStringLiteral("JointEditorMirror") + name;
}

RyJointEditorToolMirrorDlg::RyJointEditorToolMirrorDlg(RyJointEditorTool *tool, QWidget *parent)
    : RyBasicDialog(parent), m_tool(tool)
{
    setObjectName(named(QStringLiteral("Dlg")));
    setWindowTitle(tr("Mirror Joint Options"));
    auto *grid = new QGridLayout;
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(RyStandardMetrics::Spacing);
    grid->setColumnStretch(1, 1);
    m_nodes = addChoice(grid, tr("Nodes :"), QStringLiteral("Nodes"),
                        {tr("Selected Only"), tr("Selected Recursive"), tr("Root Recursive")});
    m_direction =
        addChoice(grid, tr("Direction :"), QStringLiteral("Direction"),
                  {tr("Selected to Opposite"), tr("Opposite to Selected"), tr("Left to Right"), tr("Right to Left")});
    m_axis = addChoice(grid, tr("Mirror Axis :"), QStringLiteral("Axis"), {tr("X"), tr("Y"), tr("Z")});
    m_leftPrefix = addPrefixes(grid, tr("Left Node Prefix :"), QStringLiteral("LeftPrefix"), QStringLiteral("left;l"));
    m_rightPrefix =
        addPrefixes(grid, tr("Right Node Prefix :"), QStringLiteral("RightPrefix"), QStringLiteral("right;r"));
    setContentLayout(grid);
    setMinimumWidth(310);
    setFixedHeight(minimumSizeHint().height());
}

QComboBox *RyJointEditorToolMirrorDlg::addChoice(QGridLayout *grid, const QString &label, const QString &name,
                                                 const QStringList &items)
{
    auto *choice = new QComboBox(this);
    choice->setObjectName(named(name + QStringLiteral("Cmb")));
    choice->addItems(items);
    addLabeledRow(grid, label, named(name + QStringLiteral("Lbl")), choice);
    return choice;
}

QLineEdit *RyJointEditorToolMirrorDlg::addPrefixes(QGridLayout *grid, const QString &label, const QString &name,
                                                   const QString &text)
{
    auto *field = new QLineEdit(text, this);
    field->setObjectName(named(name + QStringLiteral("LEdit")));
    field->setToolTip(tr("What names begin with on that side, with semicolons between, in the order of trial. Bones "
                         "are paired by other marks of a side in their names and by their places as well."));
    addLabeledRow(grid, label, named(name + QStringLiteral("Lbl")), field);
    return field;
}

void RyJointEditorToolMirrorDlg::accept()
{
    RyNode *primary = ryScene()->getPrimarySelection();
    if (!primary || !primary->getSkeleton()) {
        runMessageBox(QMessageBox::Warning, RyApp::getDialogParent(), tr("Selection Error"),
                      tr("A bone must be selected to continue."), QMessageBox::Ok, QMessageBox::Ok);
        return;
    }
    m_leftPrefixes = RySidePrefixes::parse(m_leftPrefix->text());
    m_rightPrefixes = RySidePrefixes::parse(m_rightPrefix->text());
    RyUndoStackHold hold;
    const MirrorReport report = mirror(primary);
    hold.accept(tr("Mirror Joints"));
    reportMirror(report);
    QDialog::accept();
}

MirrorReport RyJointEditorToolMirrorDlg::mirror(RyNode *primary)
{
    if (!m_tool)
        return {};
    MirrorOptions options;
    options.nodes = MirrorOptions::Nodes(m_nodes->currentIndex());
    options.direction = MirrorOptions::Direction(m_direction->currentIndex());
    options.axis = m_axis->currentIndex();
    options.prefixes = {m_leftPrefixes, m_rightPrefixes};
    return mirrorBones(primary, options, [this](RyNode *source, RyNode *target, int axis) {
        return m_tool->mirrorNode(source, target, axis);
    });
}
