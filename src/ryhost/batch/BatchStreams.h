#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class BatchArguments;
class RyTemporaryFolder;

/// Standard input and output of a batch run, for what is called "-". While it lives, what a run writes to standard
/// output is alone there: whatever else the process prints to it goes to standard error.
class BatchStreams
{
public:
    explicit BatchStreams(const BatchArguments &arguments);
    BatchStreams(const BatchStreams &) = delete;
    BatchStreams &operator=(const BatchStreams &) = delete;
    ~BatchStreams();

    /// Reads all of standard input into a file that goes with this object. `format` is an ending; where it is empty,
    /// the first bytes tell. Empty with a message when there is nothing to read, when the format cannot be told, or
    /// when the bytes name other files, which a stream has no folder for.
    QString readInput(const QString &format, QString *error);
    /// The same for a script.
    QString readScript(QString *error);
    /// Reads standard input now where a verb needs it, for processes that are forked later: each then finds all of it,
    /// or is told why there is none.
    void readAhead(const BatchArguments &arguments);
    /// A path to write a scene to before it goes to standard output by `sendFile`; empty with a message for none.
    QString outputFile(const QString &format, QString *error) const;
    /// Sends what was written there. False with a message; also when other files had to be written beside it.
    bool sendFile(const QString &path, QString *error);
    bool write(const QByteArray &bytes, QString *error);
    /// The message, with the streams in the places of the files that stand for them.
    QString named(const QString &message) const;

private:
    bool readBytes(const QString &what, QString *error);
    QString keepInput(const QString &ending, QString *error);

    int m_output = -1; // -1: nothing of this run goes there
    bool m_isRead = false;
    QByteArray m_input;
    QString m_inputError;                        // why there is none
    std::unique_ptr<RyTemporaryFolder> m_folder; // null where no stream stands for a file
};
