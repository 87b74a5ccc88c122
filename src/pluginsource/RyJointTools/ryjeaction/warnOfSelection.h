#pragma once

class QString;

/// Says in a box titled "Selection Error" what must be selected for an action to run.
void warnOfSelection(const QString &text);
