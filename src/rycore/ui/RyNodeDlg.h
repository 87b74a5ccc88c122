#pragma once

#include "rycore/ui/RyBasicDialog.h"

#include <vector>

class QLabel;
class QLineEdit;
class RyNode;
class RyNodeTreeWgt;

/// Lets the user pick among a node and those below it. Typing in the search field ("NodeDlgSearchLEdit") filters the
/// tree
/// ("NodeDlgTree") and picks the best hit, the arrow keys go on from there, Enter accepts. Accepting is off while
/// nothing is picked. A node that is deleted while the dialog is open is not picked any more.
class RyNodeDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    /// Offers the nodes that inherit the class, the root among them with `showRoot`. Without `allowSelection` the tree
    /// is only looked at and there is no OK; `several` allows to pick more than one. Modal.
    RyNodeDlg(QWidget *parent, RyNode *root, const QString &className, bool showRoot, bool allowSelection,
              bool several);

    /// The picked node, of several the first in the tree; null when there is none or the dialog was cancelled.
    RyNode *getNode() const;
    /// All picked nodes in tree order.
    std::vector<RyNode *> getNodes() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void reject() override;

private:
    void search(const QString &text);
    void updatePick();

    QLineEdit *m_search;
    RyNodeTreeWgt *m_tree;
    QLabel *m_pick;
    bool m_searchFails = false;
};
