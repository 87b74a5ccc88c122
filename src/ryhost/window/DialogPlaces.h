#pragma once

#include <QHash>
#include <QObject>
#include <QPoint>
#include <QRect>

#include <optional>

class QWidget;
class RyBasicDialog;

/// Where dialogs with values for the figure open: beside the view, so that it stays in sight. One that was moved opens
/// again where it was, until the program ends.
class DialogPlaces : public QObject
{
    Q_OBJECT
public:
    /// For the dialogs of `window`, beside `view`.
    DialogPlaces(QWidget *window, const QWidget *view);

    /// For a dialog with its frame: right of the view, otherwise left of it, at its upper edge; none where the screen
    /// has room for neither. All on the screen, in its pixels.
    static std::optional<QPoint> beside(const QSize &dialog, const QRect &view, const QRect &available);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place(RyBasicDialog &dialog);
    void remember(const RyBasicDialog &dialog);

    QWidget *m_window;
    const QWidget *m_view;
    QHash<QString, QPoint> m_chosen; // by object name
    QHash<QString, QPoint> m_given;
};
