#pragma once

class RyBasicDialog;

/// Decides whether a dialog may be accepted. Says itself why not, by a message or in the dialog's fields.
class RyBasicDialogValidator
{
public:
    RyBasicDialogValidator() = default;
    RyBasicDialogValidator(const RyBasicDialogValidator &) = delete;
    RyBasicDialogValidator &operator=(const RyBasicDialogValidator &) = delete;
    virtual ~RyBasicDialogValidator() = default;

    /// True lets the dialog apply and close, false keeps it open.
    virtual bool validate(RyBasicDialog *dialog) = 0;
};
