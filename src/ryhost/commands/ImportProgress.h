#pragma once

#include <QObject>

#include <memory>

class QProgressDialog;
class QWidget;

/// While a file is read in another process the window goes on painting and takes no input: what is there must not
/// change under the one who opens. The progress comes up with a button when it takes long; that button, Escape and
/// closing the window cancel, and the window then closes once the reading has ended.
class ImportProgress : public QObject
{
    Q_OBJECT
public:
    ImportProgress(const QString &file, bool merge, QWidget *window);
    ~ImportProgress() override;

    /// Lets the window live; false when nobody wants the file any more. `done` from 0 to 1.
    bool step(double done);
    bool isCancelled() const;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    QWidget *m_window;
    std::unique_ptr<QProgressDialog> m_dialog;
    bool m_isCancelled = false;
    bool m_closes = false;
};
