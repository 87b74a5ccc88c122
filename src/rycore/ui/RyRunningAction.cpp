#include "rycore/ui/RyRunningAction.h"

int RyRunningAction::s_count = 0;
