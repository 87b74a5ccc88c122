#pragma once

#include <QWidget>

class QVBoxLayout;
class RyDividerBar;

/// Two widgets one above the other with a bar between them. One of them keeps its extent, the other takes the rest; one
/// of them can be folded away with the bar.
class RyDynamicDividerWgt : public QWidget
{
    Q_OBJECT
public:
    /// Which widget keeps its extent when the whole changes its size.
    enum ResizeType { SecondKeeps = 0, FirstKeeps = 1 };
    /// Which way the bar goes when it folds one away: the first upwards, the second downwards.
    enum ToggleDirection { FoldsUp = 0, FoldsDown = 1 };

    RyDynamicDividerWgt(QWidget *first, QWidget *second, QWidget *parent = nullptr);

    void setResizeType(int type);
    void setToggleDirection(int direction);
    /// Height of the widget that keeps its own, as far as that is not less than its contents need.
    void setPreferredExtent(int extent);
    int getExtent() const;
    void setBarMovesEnabled(bool onOff);
    RyDividerBar *getDividerBar() const { return m_bar; }

    bool isFolded() const;
    void setFolded(bool folded);

protected:
    bool event(QEvent *event) override;

private:
    QWidget *keeper() const { return m_resizeType == FirstKeeps ? m_first : m_second; }
    void fold(bool folded);
    void moveBar(int pixels);
    void arrange();

    QWidget *m_first;
    QWidget *m_second;
    RyDividerBar *m_bar;
    QVBoxLayout *m_layout;
    ResizeType m_resizeType = SecondKeeps;
    ToggleDirection m_toggleDirection = FoldsDown;
    int m_extent = 0;
};
