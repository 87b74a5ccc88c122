#pragma once

#include "pointer/PointerDriver.h"

#include <QString>
#include <QStringList>

#include <functional>

class HostWindow;
class RyNode;

/// What every played session needs: the window, a pointer and a keyboard, pictures, and an account of what went well.
class DemoStage
{
public:
    DemoStage(HostWindow &window, const QString &folder);

    HostWindow &window() const { return m_window; }
    PointerDriver &pointer() { return m_pointer; }
    QString filePath(const QString &name) const;

    /// Says on standard output what was done; counts what failed.
    bool check(bool ok, const QString &what);
    int failures() const { return m_failures; }
    /// What the screen shows at the window's place, menus and dialogs included, as NUMBER-name.png.
    void picture(const QString &name);

    /// Null, and a failure, when the scene has no such node.
    RyNode *node(const QString &name);
    bool selectInTree(RyNode *node);
    /// Writes over what a field shows, which is a line edit or has one, and presses Return.
    bool typeInto(const QString &objectName, const QString &text);
    /// Where a click finds this handle: the place that shows it nearest to a point; false when it is nowhere near.
    bool findHandle(int id, const QPoint &near, QPoint &found) const;
    /// Clicks through the menu bar by the texts of the entries ("Joint Editor", "Align", "Align Node"), which may end
    /// early: the first entry that begins so is taken. Takes a picture before the last click when it gets a name.
    bool chooseFromMenu(const QStringList &texts, const QString &pictureName = QString());
    /// Does what opens a modal dialog, and then, while the dialog is open, what is to be done with it.
    bool withDialog(const std::function<void()> &open, const std::function<void(QWidget *dialog)> &use);

    /// By File > Save As, over what a former session left; the path, empty where it failed.
    QString saveAs(const QString &name);

private:
    HostWindow &m_window;
    QString m_folder;
    PointerDriver m_pointer;
    int m_pictures = 0;
    int m_failures = 0;
};
