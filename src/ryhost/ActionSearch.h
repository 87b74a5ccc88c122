#pragma once

#include <QLineEdit>

class QCompleter;
class QMenuBar;

/// A field that finds the commands of all menus by their names and runs the one that is chosen.
class ActionSearch : public QLineEdit
{
    Q_OBJECT
public:
    explicit ActionSearch(QMenuBar *menus);

    /// Collects the commands as they are now and takes the keyboard.
    void begin();
    /// Texts that can be chosen, "Menu > Command".
    QStringList texts() const;

protected:
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void collect();
    void run(const QString &text);

    QMenuBar *m_menus;
    QCompleter *m_completer;
};
