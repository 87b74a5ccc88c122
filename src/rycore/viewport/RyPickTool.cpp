#include "rycore/viewport/RyPickTool.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyDrawStyle.h"

#include <QMouseEvent>

RyPickTool::RyPickTool(const QString &name) : RyViewTool(name) {}

void RyPickTool::setHighlightNode(RyNode *node)
{
    if (m_highlight == node)
        return;
    m_highlight = node;
    drawnDataChanged();
    emit statusTextChanged();
}

RyNode *RyPickTool::getHighlightNode() const
{
    return m_highlight;
}

void RyPickTool::deactivated()
{
    setHighlightNode(nullptr);
    RyViewTool::deactivated();
}

void RyPickTool::draw(Ry3DViewport *viewport, const RyDrawStyle &style)
{
    if (m_highlight && style.shadeStyle != RyDrawStyle::PickPass)
        viewport->drawNodeHighlight(m_highlight);
}

bool RyPickTool::mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    if (event->button() != Qt::LeftButton)
        return false;
    RyNode *node = viewport->pickNode(event->pos());
    RyScene *scene = node ? node->getScene() : nullptr;
    if (!scene)
        return false;
    if (modifier == RyViewMouseModifier::Control)
        node->select(true);
    else
        scene->setSelection({node});
    event->accept();
    return true;
}

void RyPickTool::mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier)
{
    setHighlightNode(viewport->pickNode(event->pos()));
}

void RyPickTool::mouseLeave(Ry3DViewport *)
{
    setHighlightNode(nullptr);
}
