#pragma once

#include <QString>

/// One line on standard error that says what a batch run is doing, written over by the next; only where standard error
/// is a terminal, so that logs do not get it.
class BatchProgress
{
public:
    BatchProgress();
    ~BatchProgress();
    BatchProgress(const BatchProgress &) = delete;
    BatchProgress &operator=(const BatchProgress &) = delete;

    void show(const QString &text);
    /// Before anything else is printed.
    void clear();

private:
    bool m_isTerminal;
    bool m_isShown = false;
};
