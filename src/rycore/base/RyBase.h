#pragma once

#include <QObject>

/// Base of every class of the host and its plug-ins. Its name and its Qt object name are one text.
class RyBase : public QObject
{
    Q_OBJECT
public:
    explicit RyBase(QObject *parent = nullptr) : QObject(parent) {}

    QString getName() const { return objectName(); }
    /// Undoable where a hold is open.
    virtual void setName(const QString &name);

signals:
    void nameChanged(const QString &name);

protected:
    /// Called after `nameChanged`, also by undo and redo.
    virtual void nameHasChanged() {}

private:
    struct NameValue;
    void applyName(const QString &name);
};
