#pragma once

#include <QValidator>

/// Labels of nodes: one line of any printable text. A text without anything to see is on the way to a label.
class RyNodeLabelValidator : public QValidator
{
    Q_OBJECT
public:
    explicit RyNodeLabelValidator(QObject *parent = nullptr) : QValidator(parent) {}

    State validate(QString &text, int &position) const override;
};
