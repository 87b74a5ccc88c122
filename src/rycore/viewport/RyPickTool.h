#pragma once

#include "rycore/viewport/RyViewTool.h"

#include <QPointer>

class RyNode;

/// A tool that highlights the node under the mouse and selects it with a click.
class RyPickTool : public RyViewTool
{
    Q_OBJECT
public:
    explicit RyPickTool(const QString &name);

    bool alwaysUsesDefaultPickMode() const { return m_alwaysDefaultPickMode; }
    void setAlwaysUseDefaultPickMode(bool onOff) { m_alwaysDefaultPickMode = onOff; }
    /// Null removes the highlight.
    void setHighlightNode(RyNode *node);
    RyNode *getHighlightNode() const;

    void deactivated() override;
    void draw(Ry3DViewport *viewport, const RyDrawStyle &style) override;
    bool mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void mouseLeave(Ry3DViewport *viewport) override;

private:
    QPointer<RyNode> m_highlight;
    bool m_alwaysDefaultPickMode = false;
};
