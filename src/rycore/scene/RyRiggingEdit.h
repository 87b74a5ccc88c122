#pragma once

#include <QPointer>

class RyScene;

/// Keeps a rig edit of the application's scene open while it lives; `RyScene::beginRiggingEdit` says what that means.
/// It ends the one that it began and no other, also where an exception leaves the block or the scene was cleared
/// meanwhile. Where the work is a step, the hold is opened before and accepted after it:
///
///     RyUndoStackHold hold;
///     {
///         const RyRiggingEdit edit;
///         ... // place bones
///     }
///     hold.accept(caption);
class RyRiggingEdit
{
public:
    RyRiggingEdit();
    ~RyRiggingEdit();
    RyRiggingEdit(const RyRiggingEdit &) = delete;
    RyRiggingEdit &operator=(const RyRiggingEdit &) = delete;

private:
    QPointer<RyScene> m_scene;
    quint64 m_period; // of the scene's rig edits
};
