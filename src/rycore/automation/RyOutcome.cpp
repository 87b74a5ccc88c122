#include "rycore/automation/RyOutcome.h"

bool ryHasRun(RyOutcome outcome)
{
    return outcome == RyOutcome::Ran || outcome == RyOutcome::RanWithUnusedFields;
}

bool ryIsCancelled(RyOutcome outcome)
{
    return outcome == RyOutcome::Cancelled || outcome == RyOutcome::CancelledWithUnusedFields;
}

bool ryIsWrongUse(RyOutcome outcome)
{
    return outcome == RyOutcome::WrongUse || outcome == RyOutcome::RanWithUnusedFields ||
           outcome == RyOutcome::CancelledWithUnusedFields;
}

RyOutcome ryWithUnusedFields(RyOutcome outcome)
{
    switch (outcome) {
    case RyOutcome::Ran:
        return RyOutcome::RanWithUnusedFields;
    case RyOutcome::Cancelled:
        return RyOutcome::CancelledWithUnusedFields;
    default:
        return outcome;
    }
}
