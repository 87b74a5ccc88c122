#pragma once

#include "support/RyEndedProgram.h"

#include <QStringList>
#include <QTemporaryDir>

/// Foreign files that a reader made for tests does with what they say (see reader/TestReader.cpp), and a folder for
/// temporary files of its own, so that what stays behind can be seen.
class ForeignStage
{
public:
    enum class Reader { Test, Real };
    explicit ForeignStage(Reader reader = Reader::Test);
    ~ForeignStage();

    static QString sample();
    static QString readerPath();

    QString path(const QString &name) const { return m_folder.filePath(name); }
    /// Writes a file and returns its path.
    QString write(const QString &name, const QByteArray &content) const;
    /// What the readings left behind.
    QStringList leftovers() const;

    using Run = RyEndedProgram;
    /// The program as a person at a shell would run it, without a display.
    static Run run(const QStringList &arguments);
    static Run runProgram(const QString &program, const QStringList &arguments);
    /// Processes that a process has at the moment.
    static QList<int> childrenOf(qint64 process);

private:
    QTemporaryDir m_folder;
    QTemporaryDir m_temporary;
};
