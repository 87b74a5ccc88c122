#pragma once

#include <QObject>

/// Counts signals whose parameter types only their own library knows.
class RySignalCounter : public QObject
{
    Q_OBJECT
public:
    int counted = 0;

public slots:
    void count() { ++counted; }
};
