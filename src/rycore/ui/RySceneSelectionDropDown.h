#pragma once

#include "rycore/ui/RyPopUpButton.h"

#include <QPointer>

#include <memory>
#include <vector>

class QLineEdit;
class RyNode;
class RyNodeListFilter;
class RyNodeTreeWgt;

/// Shows the primary selection of the application's scene, and opens a list of nodes with a search line. Choosing one
/// selects that node alone. Up and Down choose the node before and after, as in a combo box; Alt+Down, Space and Return
/// open the list. There Up and Down go through it, Return chooses, Escape leaves the selection as it was.
class RySceneSelectionDropDown : public RyPopUpButton
{
    Q_OBJECT
public:
    /// Null offers all nodes.
    explicit RySceneSelectionDropDown(std::unique_ptr<RyNodeListFilter> filter, QWidget *parent = nullptr);
    ~RySceneSelectionDropDown() override;

    /// What the list offers, in its order.
    std::vector<RyNode *> offeredNodes() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    QWidget *fillPopup(RyPopUpWidget *popup) override;
    void popupOpened() override;

private:
    void followPrimary();
    void updateText();
    void chooseCurrent();
    void choose(RyNode *node);
    void step(int places);

    std::unique_ptr<RyNodeListFilter> m_filter;
    QPointer<RyNode> m_primary;
    QLineEdit *m_search = nullptr; // both while the pop-up lives
    RyNodeTreeWgt *m_tree = nullptr;
};
