#pragma once

#include "rycore/app/RyMainWindow.h"
#include "rycore/viewport/Ry3DViewport.h"

#include <QEvent>
#include <QHash>
#include <QTemporaryDir>

#include <memory>
#include <vector>

class RyBone;
class RyNode;

/// A viewport that answers with the handle it was told.
class EditingViewport : public Ry3DViewport
{
    Q_OBJECT
public:
    using Ry3DViewport::Ry3DViewport;
    int pickOnGizmo(const QPoint &) override { return handle; }
    RyNode *pickNode(const QPoint &) override { return nullptr; }

    int handle = 0;
};

/// The application's scene with a file in it, and a main window with the built plug-in, its tool active: what a person
/// has before them, without a display.
class EditingStage
{
public:
    /// Fails the running test when the file or the plug-in cannot be opened.
    explicit EditingStage(const QString &path);
    ~EditingStage();

    QString dump() const;
    /// All bones of all skeletons in tree order.
    std::vector<RyBone *> bones() const;
    /// Selects in this order and lets the tool take the last one.
    void select(const std::vector<RyNode *> &nodes);

    /// Class names, in alphabetical order.
    QStringList actionNames() const;
    /// Object names and values, in the order in which they are filled: one may enable the next.
    using Fields = std::vector<std::pair<QString, QString>>;
    /// Runs an action by its class name as a person would. `fields`: object names and values of its dialog. `answers`:
    /// titles of message boxes and buttons. Empty when it ran; otherwise why not.
    QString run(const char *action, const Fields &fields = {}, const QHash<QString, QString> &answers = {});
    /// Mouse work at a handle of the current node: press, moves to each point, release; or a right click in the middle.
    void drag(int handle, const std::vector<QPoint> &path, Qt::KeyboardModifiers modifiers, bool cancel);
    void controlClick(const QPoint &point);

private:
    void mouse(QEvent::Type type, const QPoint &point, Qt::MouseButton button, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers);

    QTemporaryDir m_settings;
    std::unique_ptr<RyMainWindow> m_window;
    EditingViewport *m_viewport = nullptr;
};
