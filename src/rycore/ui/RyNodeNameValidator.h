#pragma once

#include <QValidator>

/// Names of nodes as people type them: letters and digits of any script, `_`, `-`, `(`, `)`, blanks between them. A
/// text that is empty or begins or ends with a blank is on the way to a name; any other character is refused.
class RyNodeNameValidator : public QValidator
{
    Q_OBJECT
public:
    explicit RyNodeNameValidator(QObject *parent = nullptr) : QValidator(parent) {}

    State validate(QString &text, int &position) const override;
    /// Takes blanks off the ends.
    void fixup(QString &text) const override;
};
