#pragma once

#include <QByteArray>

/// A file in memory that has no name and goes with the last process that knows it: nothing is left behind, whoever is
/// killed, and nothing waits for a disk.
class RyUnnamedFile
{
public:
    RyUnnamedFile();
    ~RyUnnamedFile();
    Q_DISABLE_COPY(RyUnnamedFile)

    bool isValid() const { return m_handle >= 0; }
    /// Of this process; one that is started does not get it by itself.
    int handle() const { return m_handle; }
    /// Empty where nothing was written.
    QByteArray readAll() const;

private:
    int m_handle;
};
