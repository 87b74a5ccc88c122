#pragma once

#include <QStringList>

#include <functional>

/// Does work with a QApplication around it, and gives its result.
using ApplicationFrame = std::function<int(const std::function<int()> &work)>;

/// The whole of `ryhost --batch ...`; `arguments` without the program's name. One file is worked on in this process, so
/// that what ends it is seen by who started it. Several files, and what is told as JSON, get a process each, one after
/// the other: every file has a fresh scene, and one that brings the program down is a line in the result like any
/// other. There must be no QApplication yet.
int runBatch(const QStringList &arguments, const ApplicationFrame &frame);
