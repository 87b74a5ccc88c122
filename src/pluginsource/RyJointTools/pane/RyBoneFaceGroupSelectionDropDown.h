#pragma once

#include "rycore/ui/RyStyledButton.h"

#include <QPointer>

class QTreeView;
class RyPopUpWidget;
class RySelectionMap;
class RySimpleSelectionMapModel;
class RySkeleton;

/// Shows which face group of its figure selects the primary bone, and opens a list of all groups to choose another one
/// from: one undo step each. The list that is open follows the primary bone. Disabled for what is no bone of a
/// weight-mapped figure.
class RyBoneFaceGroupSelectionDropDown : public RyStyledButton
{
    Q_OBJECT
public:
    explicit RyBoneFaceGroupSelectionDropDown(QWidget *parent = nullptr);

public slots:
    /// Closes the list when it is open.
    void showPopup();
    void hidePopup();
    /// Nothing while it does not show.
    void updateText();
    /// The mouse left the button or the list: closes the list when it is over neither.
    void mouseLeave();

protected:
    virtual void setupPopup(QWidget *widget);
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow(RySkeleton *skeleton);
    void goToCurrentRow();

    QPointer<RyPopUpWidget> m_popup;
    QPointer<QTreeView> m_view;
    RySimpleSelectionMapModel *m_model = nullptr; // the view's
    QPointer<RySkeleton> m_skeleton;
    QPointer<RySelectionMap> m_map;
};
