#pragma once

#include <QAction>
#include <QKeySequence>

/// A command of the application, created by class name, one instance for each class.
class RyAction : public QAction
{
    Q_OBJECT
    Q_PROPERTY(QString description READ getDescription)
    Q_PROPERTY(QString unavailableReason READ unavailableReason)
    Q_PROPERTY(QString searchWords READ getSearchWords)
public:
    RyAction(const QString &text, const QString &description);
    ~RyAction() override;

    /// Called once after creation.
    virtual void init();
    virtual QString getActionGroup() const;
    /// Path in the main menu, levels parted by "/"; empty for none.
    virtual QString getDefaultMenuPath() const;
    virtual QKeySequence getDefaultAccel() const;
    /// Whether it only chooses, shows or sets up something. A clip that shows goes before any other action runs.
    virtual bool leavesSceneAlone() const { return false; }
    /// The tips are made of it.
    QString getDescription() const { return m_description; }

    /// What else people call this, words parted by blanks, for a search over actions.
    QString getSearchWords() const { return m_searchWords; }
    /// Why the action is disabled and what would help, one sentence; empty while it is enabled and where nobody has
    /// said.
    QString unavailableReason() const;

public slots:
    virtual void executeAction();

protected:
    void setDescription(const QString &description);
    void setSearchWords(const QString &words) { m_searchWords = words; }
    /// Told by whoever disables the action. It is kept while the action is enabled, and shown in the tips while it is
    /// not.
    void setUnavailableReason(const QString &reason);

private:
    void updateTips();

    QString m_description;
    QString m_searchWords;
    QString m_reason;
};
