#pragma once

#include <QAction>
#include <QKeySequence>

/// A command of the application, created by class name, one instance for each class.
class RyAction : public QAction
{
    Q_OBJECT
public:
    RyAction(const QString &text, const QString &description);
    ~RyAction() override;

    /// Called once after creation.
    virtual void init();
    virtual QString getActionGroup() const;
    /// Path in the main menu, levels parted by "/"; empty for none.
    virtual QString getDefaultMenuPath() const;
    virtual QKeySequence getDefaultAccel() const;
    QString getDescription() const { return m_description; }

public slots:
    virtual void executeAction();

private:
    QString m_description;
};
