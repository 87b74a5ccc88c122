#pragma once

#include "ryhost/recovery/RecoveryInfo.h"
#include "ryhost/recovery/RecoverySession.h"

#include <QDialog>

#include <memory>
#include <vector>

class QLabel;
class QListWidget;
class QPushButton;

/// Offers the unsaved work of programs that no longer run: one of it can be brought back, any of it deleted, and what
/// is left is offered again at the next start.
class RecoveryDialog : public QDialog
{
    Q_OBJECT
public:
    /// `folders`: those of `RecoverySession::leftBehind`.
    explicit RecoveryDialog(const QStringList &folders, QWidget *parent = nullptr);

    bool isEmpty() const { return m_entries.empty(); }
    /// After it was accepted: what is to be brought back.
    std::unique_ptr<RecoverySession> takeChosen();

private:
    struct Entry
    {
        std::unique_ptr<RecoverySession> session;
        RecoveryInfo info;
        QString damage; // why it cannot be brought back
    };
    void fill(const QStringList &folders);
    int current() const;
    void showCurrent();
    void deleteCurrent();
    static bool isNamed(const Entry &entry);
    static QString titleOf(const Entry &entry);
    static QString describe(const Entry &entry);

    std::vector<Entry> m_entries; // as in the list
    QListWidget *m_list;
    QLabel *m_detail;
    QPushButton *m_recover;
};
