#pragma once

#include <QDialog>

/// Shows the user guide.
class GuideWindow : public QDialog
{
    Q_OBJECT
public:
    /// One window at a time; it does not block the program.
    static void open(QWidget *parent);
    /// Empty when the guide is not installed.
    static QString guidePath();

private:
    GuideWindow(const QString &path, QWidget *parent);
};
