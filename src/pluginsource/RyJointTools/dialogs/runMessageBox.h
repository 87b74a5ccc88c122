#pragma once

#include <QMessageBox>

/// Shows a modal message box and returns the button that closed it, NoButton where its parent took it along. Plain text
/// is for what users typed, which else could pass for rich text.
QMessageBox::StandardButton runMessageBox(QMessageBox::Icon icon, QWidget *parent, const QString &title,
                                          const QString &text, QMessageBox::StandardButtons buttons,
                                          QMessageBox::StandardButton defaultButton,
                                          Qt::TextFormat format = Qt::AutoText);
