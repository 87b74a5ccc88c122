#pragma once

#include <QStringList>

#include <memory>

class Autosave;
class HostFiles;
class QWidget;
class RecoverySession;
class RyScene;

/// Offers what programs that no longer run have left. True when some of it is in the scene now; `asked`, the files
/// that the program was started with, are named then, for they are not opened.
bool offerUnsavedWork(RyScene &scene, HostFiles &files, Autosave &autosave, const QStringList &asked, QWidget *window);

/// Brings back the work of a session, which stays on the disk until there is something newer. On failure the scene is
/// as it was, and the session stays too.
bool recoverUnsavedWork(std::unique_ptr<RecoverySession> session, RyScene &scene, HostFiles &files, Autosave &autosave,
                        QString *error);
