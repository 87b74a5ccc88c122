#pragma once

#include <QtTest/QtTest>

#include <functional>
#include <memory>
#include <vector>

/// A test program holds several QtTest classes; each registers itself with RY_TEST and the program runs them all.
/// `tst_scene RyNodeTest` runs one class, further arguments go to QtTest (`tst_scene RyNodeTest bindPose -v2`).
struct RyTestEntry
{
    const char *name;
    std::function<QObject *()> create;
};

std::vector<RyTestEntry> &ryTestRegistry();
int ryRunTests(int argc, char **argv);

struct RyTestRegistration
{
    RyTestRegistration(const char *name, std::function<QObject *()> create)
    {
        ryTestRegistry().push_back({name, std::move(create)});
    }
};

#define RY_TEST(Class)                                                                                                 \
    static RyTestRegistration registerTest##Class(#Class, [] { return static_cast<QObject *>(new Class); });

/// The folder of real characters, or an empty text when this machine has none; a test that needs it says so with QSKIP.
QString ryModelsPath();
/// Path of one of the characters, empty when it is not there.
QString ryModel(const QString &name);
/// The seed of this run's random tests; RY_SEED repeats a run. Printed once.
unsigned ryTestSeed();
