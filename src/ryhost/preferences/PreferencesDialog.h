#pragma once

#include "rycore/ui/RyBasicDialog.h"

class QCheckBox;
class QLabel;
class QLineEdit;

/// What the program does by itself: whether it keeps unsaved work, and where.
class PreferencesDialog : public RyBasicDialog
{
    Q_OBJECT
public:
    explicit PreferencesDialog(QWidget *parent = nullptr);

protected:
    void apply() override;

private:
    friend class PreferencesValidator;
    QString folder() const;
    void browse();
    void showState();
    bool isFolderUsable();

    QCheckBox *m_on;
    QLineEdit *m_folder;
    QLabel *m_state;
};
