#pragma once

#include <QDialog>

#include <memory>

class QDialogButtonBox;
class QPushButton;
class QVBoxLayout;
class RyBasicDialogValidator;

/// A dialog of a content above a row of buttons: "BasicDialogOkBtn", "BasicDialogCancelBtn" and, where shown,
/// "BasicDialogApplyBtn". The content has the focus first, its first field selected; Enter is OK, Escape is Cancel.
class RyBasicDialog : public QDialog
{
    Q_OBJECT
public:
    explicit RyBasicDialog(QWidget *parent = nullptr);
    ~RyBasicDialog() override;

    /// Once: the dialog takes the layout and its widgets. A layout without margins of its own gets none.
    void setContentLayout(QLayout *layout);
    /// Apply (hidden at first) validates and applies like OK and leaves the dialog open.
    void setApplyVisible(bool visible);
    /// Switches OK and Apply; while they are off nothing accepts the dialog.
    void enableAccept(bool enable);
    bool isAcceptEnabled() const;
    /// The dialog owns it; null removes it.
    void setValidator(RyBasicDialogValidator *validator);
    RyBasicDialogValidator *getValidator() const { return m_validator.get(); }

    void setVisible(bool visible) override;

public slots:
    /// Asks the validator, applies and closes. Does nothing while accepting is off; stays open when the validator says
    /// no.
    void accept() override;

protected:
    /// Does what the dialog is for. Called after the validator agreed, on OK before the dialog closes.
    virtual void apply() {}
    QPushButton *acceptButton() const { return m_ok; }

private:
    bool applyIfValid();
    void focusContent();

    QVBoxLayout *m_layout;
    QDialogButtonBox *m_buttons;
    QPushButton *m_ok;
    QPushButton *m_apply;
    std::unique_ptr<RyBasicDialogValidator> m_validator;
};
