#pragma once

#include <QPointer>
#include <QToolBar>

class QActionGroup;
class RyViewportMgr;

/// A button for each view tool; the active one is down.
class ToolStrip : public QToolBar
{
    Q_OBJECT
public:
    explicit ToolStrip(RyViewportMgr *viewports, QWidget *parent = nullptr);

public slots:
    /// Makes the buttons again.
    void refresh();

private:
    void showActiveTool();

    QPointer<RyViewportMgr> m_viewports;
    QActionGroup *m_group;
};
