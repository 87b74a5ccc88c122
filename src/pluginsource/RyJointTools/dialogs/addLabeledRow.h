#pragma once

class QGridLayout;
class QString;
class QWidget;

/// Appends a row to a grid of two columns: a label of that text and object name, to the right, and the field that it
/// belongs to.
void addLabeledRow(QGridLayout *grid, const QString &text, const QString &labelName, QWidget *field);
