#pragma once

#include <QDialog>
#include <QPointer>

#include <utility>

/// Owns a dialog that its parent may delete while it is open: a window that goes takes its dialogs along.
template<typename Dialog>
class RyGuardedDialog
{
public:
    template<typename... Args>
    explicit RyGuardedDialog(Args &&...args) : m_dialog(new Dialog(std::forward<Args>(args)...))
    {}
    ~RyGuardedDialog() { delete m_dialog.data(); }
    RyGuardedDialog(const RyGuardedDialog &) = delete;
    RyGuardedDialog &operator=(const RyGuardedDialog &) = delete;

    /// What the dialog's own exec answers, which is 0 (rejected) where the dialog went while it was open.
    int exec() { return m_dialog->exec(); }
    /// Null once the dialog is gone.
    Dialog *get() const { return m_dialog; }
    Dialog *operator->() const { return m_dialog; }

private:
    QPointer<Dialog> m_dialog;
};
