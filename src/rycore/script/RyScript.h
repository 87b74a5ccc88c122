#pragma once

#include "rycore/base/RyBase.h"

/// A program of the script language, run in the current script engine. Script files are UTF-8 and end in ".rsx".
class RyScript : public RyBase
{
    Q_OBJECT
public:
    explicit RyScript(const QString &name, QObject *parent = nullptr);

    /// False when the file is missing or cannot be read, which is logged unless `quiet`; the program stays what it was.
    /// The engine notes the failure in any case. A script without a name takes the file's.
    bool loadFromFile(const QString &path, bool quiet);
    /// Why the latest `loadFromFile` failed; empty when it did not.
    const QString &getError() const { return m_error; }
    void setSource(const QString &source);

    /// False when the program failed, which is in the log, or when there is no engine.
    bool execute();

private:
    QString m_source;
    QString m_filePath;
    QString m_error;
};
