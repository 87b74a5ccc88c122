#pragma once

#include <QTabWidget>

/// A tab widget whose current tab comes back when it is enabled again, unless another one was chosen meanwhile. The
/// wheel over its tabs scrolls what is around it. Its tabs may be elided: it asks for no more width than its pages.
class RyExtendedTabWidget : public QTabWidget
{
    Q_OBJECT
public:
    explicit RyExtendedTabWidget(QWidget *parent = nullptr);

    void setTabEnabled(int index, bool enabled);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void tabRemoved(int index) override;

private:
    QWidget *m_kept = nullptr; // the page that was current when its tab was disabled; compared, never followed
    bool m_isSwitching = false;
};
