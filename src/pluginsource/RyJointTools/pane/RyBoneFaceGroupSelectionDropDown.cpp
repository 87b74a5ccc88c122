#include "pluginsource/RyJointTools/pane/RyBoneFaceGroupSelectionDropDown.h"

#include "pluginsource/RyJointTools/pane/RyCheckInOneStep.h"
#include "pluginsource/RyJointTools/pane/RySimpleSelectionMapModel.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyPopUpWidget.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QTreeView>
#include <QVBoxLayout>

RyBoneFaceGroupSelectionDropDown::RyBoneFaceGroupSelectionDropDown(QWidget *parent) : RyStyledButton(parent)
{
    setObjectName(QStringLiteral("JointEditorSelectionGroupBtn"));
    setShowArrow(true);
    setElideText(true);
    setMinimumWidthText(QStringLiteral("mmmmmmmm"));
    setFixedHeight(RyStandardMetrics::DropDownHeight);
    showText(tr("None"));
    setEnabled(false);
    connect(this, SIGNAL(clicked(bool)), this, SLOT(showPopup()));
    connect(ryScene(), SIGNAL(nodeSelectionListChanged()), this, SLOT(updateText()));
    connect(ryScene(), SIGNAL(nodeListChanged()), this, SLOT(updateText()));
}

void RyBoneFaceGroupSelectionDropDown::follow(RySkeleton *skeleton)
{
    RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    if (m_skeleton != skeleton) {
        if (m_skeleton)
            disconnect(m_skeleton, nullptr, this, nullptr);
        if (skeleton)
            connect(skeleton, SIGNAL(selectionMapChanged()), this, SLOT(updateText()));
    }
    if (m_map != map) {
        if (m_map)
            disconnect(m_map, nullptr, this, nullptr);
        if (map)
            connect(map, SIGNAL(mapChanged()), this, SLOT(updateText()));
    }
    m_skeleton = skeleton;
    m_map = map;
}

void RyBoneFaceGroupSelectionDropDown::updateText()
{
    if (!isVisible())
        return;
    RyNode *primary = ryScene()->getPrimarySelection();
    RySkeleton *skeleton = primary ? primary->getSkeleton() : nullptr;
    const bool isBone = qobject_cast<RyBone *>(primary) && skeleton != primary && qobject_cast<RyFigure *>(skeleton);
    follow(isBone ? skeleton : nullptr);
    QString text = primary ? primary->getName() : tr("None");
    if (m_map) {
        const QString group = m_map->findGroupForNode(primary);
        text = group.isEmpty() ? tr("None") : group;
    }
    // Once: a button that is disabled for a moment loses the keyboard.
    setEnabled(isBone);
    showText(text);
    if (m_view && m_model->bone() != primary) {
        m_model->fill();
        goToCurrentRow();
    }
}

void RyBoneFaceGroupSelectionDropDown::showPopup()
{
    if (m_popup) {
        hidePopup();
        return;
    }
    m_popup = new RyPopUpWidget(this);
    m_popup->setObjectName(QStringLiteral("SceneSelectionPopUpWgt"));
    setupPopup(m_popup);
    m_popup->setFixedSize(qMax(width(), RyStandardMetrics::PopUpWidth), RyStandardMetrics::PopUpHeight);
    m_popup->installEventFilter(this);
    connect(m_popup, SIGNAL(mouseLeave()), this, SLOT(mouseLeave()));
    connect(m_popup, SIGNAL(closed()), this, SLOT(hidePopup()));
    m_popup->positionPopUp(QRect(mapToGlobal(QPoint(0, 0)), size()));
    m_popup->open(m_view);
    m_view->scrollTo(m_view->currentIndex());
}

void RyBoneFaceGroupSelectionDropDown::setupPopup(QWidget *widget)
{
    auto *layout = new QVBoxLayout(widget);
    const int gap = RyStandardMetrics::Spacing;
    layout->setContentsMargins(gap, gap, gap, gap);
    layout->setSpacing(gap);
    m_view = new QTreeView(widget);
    m_view->setObjectName(QStringLiteral("BoneFaceGroupSelectionDropDownListView"));
    m_view->setAccessibleName(tr("Face groups"));
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setAllColumnsShowFocus(true);
    m_view->setItemDelegate(new RyCheckInOneStep(tr("Selection Group"), m_view));
    m_view->setHeaderHidden(false);
    m_view->installEventFilter(this);
    m_model = new RySimpleSelectionMapModel(m_view);
    connect(m_model, SIGNAL(selectionChanged()), this, SLOT(updateText()));
    m_model->fill();
    m_view->setModel(m_model);
    m_view->header()->setSectionResizeMode(QHeaderView::Stretch);
    m_view->expandAll();
    m_view->clearSelection();
    layout->addWidget(m_view, 100);
    goToCurrentRow();
}

/// The keys start from the bone's row, which is not selected by that.
void RyBoneFaceGroupSelectionDropDown::goToCurrentRow()
{
    if (m_model->rowCount() == 0 || !m_model->bone())
        return;
    const QModelIndex row = m_model->index(m_model->currentRow(), 0);
    m_view->selectionModel()->setCurrentIndex(row, QItemSelectionModel::NoUpdate);
    m_view->scrollTo(row);
}

void RyBoneFaceGroupSelectionDropDown::hidePopup()
{
    if (!m_popup)
        return;
    RyPopUpWidget *popup = m_popup;
    m_popup.clear();
    m_view.clear();
    popup->disconnect(this);
    popup->hide();
    popup->deleteLater();
}

void RyBoneFaceGroupSelectionDropDown::mouseLeave()
{
    const bool isOverButton = rect().contains(mapFromGlobal(QCursor::pos()));
    if (m_popup && !m_popup->isMouseOver() && !isOverButton)
        hidePopup();
}

void RyBoneFaceGroupSelectionDropDown::leaveEvent(QEvent *event)
{
    RyStyledButton::leaveEvent(event);
    mouseLeave();
}

void RyBoneFaceGroupSelectionDropDown::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key == Qt::Key_Escape)
        hidePopup();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Down)
        showPopup();
    else
        RyStyledButton::keyPressEvent(event);
}

bool RyBoneFaceGroupSelectionDropDown::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress && (watched == m_popup || watched == m_view);
    if (!isKey || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape)
        return RyStyledButton::eventFilter(watched, event);
    keyPressEvent(static_cast<QKeyEvent *>(event));
    return true;
}

void RyBoneFaceGroupSelectionDropDown::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        hidePopup();
    RyStyledButton::changeEvent(event);
}

void RyBoneFaceGroupSelectionDropDown::showEvent(QShowEvent *event)
{
    RyStyledButton::showEvent(event);
    updateText();
    if (m_view)
        m_model->fill();
}

void RyBoneFaceGroupSelectionDropDown::hideEvent(QHideEvent *event)
{
    hidePopup();
    RyStyledButton::hideEvent(event);
}
