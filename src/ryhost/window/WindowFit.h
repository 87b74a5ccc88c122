#pragma once

#include <QObject>
#include <QRect>

class QWidget;

/// Keeps a window on its screen: when it is shown, and once more when its frame is known.
class WindowFit : public QObject
{
    Q_OBJECT
public:
    explicit WindowFit(QWidget *window);

    /// The place of the window within its frame that is nearest to the wanted one and lies, frame and all, in what the
    /// screen has to offer.
    static QRect fitted(const QRect &wanted, const QMargins &frame, const QRect &available);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fit();

    QWidget *m_window;
};
