#pragma once

#include <QString>

/// "1.15.0": the version of the project that the program was built from.
QString hostVersion();
