#pragma once

#include <QJsonObject>
#include <QList>

#include <functional>

/// Work in a process of its own, which may come to any end.
namespace BatchProcess {

using Listener = std::function<void(const QJsonObject &)>;

struct Result
{
    int code = 0; // what the work gave; 128 + n when the signal n killed it
    QList<QJsonObject> events;
};

/// Forks, does the work there and waits for its end; what it tells the listener comes back, also when it is killed
/// later. Must be called before the process has threads: a fork has none but the one that made it.
Result run(const std::function<int(const Listener &)> &work);

} // namespace BatchProcess
