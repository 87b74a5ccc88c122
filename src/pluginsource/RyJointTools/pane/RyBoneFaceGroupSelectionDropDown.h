#pragma once

#include "rycore/ui/RyPopUpButton.h"

#include <QPointer>

class QTreeView;
class RySelectionMap;
class RySimpleSelectionMapModel;
class RySkeleton;

/// Shows which face group of its figure selects the primary bone, and opens a list of all groups to choose another one
/// from: one undo step each. The list that is open follows the primary bone. Disabled for what is no bone of a
/// weight-mapped figure.
class RyBoneFaceGroupSelectionDropDown : public RyPopUpButton
{
    Q_OBJECT
public:
    explicit RyBoneFaceGroupSelectionDropDown(QWidget *parent = nullptr);

public slots:
    /// Nothing while it does not show.
    void updateText();
    /// The mouse left the button or the list: closes the list when it is over neither.
    void mouseLeave();

protected:
    virtual void setupPopup(QWidget *widget);
    QWidget *fillPopup(RyPopUpWidget *popup) override;
    void popupOpened() override;
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow(RySkeleton *skeleton);
    void goToCurrentRow();

    QTreeView *m_view = nullptr; // both while the pop-up is open
    RySimpleSelectionMapModel *m_model = nullptr;
    QPointer<RySkeleton> m_skeleton;
    QPointer<RySelectionMap> m_map;
};
