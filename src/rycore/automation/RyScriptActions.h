#pragma once

#include <QObject>
#include <QPointer>
#include <QScriptValue>
#include <QScriptable>
#include <QStringList>

class RyActionMgr;

/// The actions in scripts, by class name. What dialogs and boxes they open is answered without a person, see
/// `RyActionRunner`. Mistakes of the script, such as an unknown class or field, are script errors.
class RyScriptActions : public QObject, protected QScriptable
{
    Q_OBJECT
public:
    RyScriptActions(RyActionMgr *manager, QObject *parent);

    /// `fields` has values by object name of the dialogs' fields, `answers` buttons by title of the message boxes; both
    /// may be left out. Returns an object with ran, refused, cancelled, reason, notes and boxes.
    Q_INVOKABLE QScriptValue run(const QString &className, const QScriptValue &fields = QScriptValue(),
                                 const QScriptValue &answers = QScriptValue()) const;
    Q_INVOKABLE QStringList names() const;
    Q_INVOKABLE bool isEnabled(const QString &className) const;

private:
    QPointer<RyActionMgr> m_manager;
};
