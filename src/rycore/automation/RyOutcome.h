#pragma once

/// What became of work that was done without a person. Fields that nothing used are a mistake of who asked, but the
/// work has gone its way all the same.
enum class RyOutcome {
    Ran,
    RanWithUnusedFields,
    Cancelled, // an answer gave it up
    CancelledWithUnusedFields,
    Refused, // it was disabled, told why it does nothing, its dialog could not be accepted, or its script failed
    WrongUse // no such action, or fields and answers that do not fit what opened
};

/// It did what it was asked.
bool ryHasRun(RyOutcome outcome);
bool ryIsCancelled(RyOutcome outcome);
/// Who asked made a mistake.
bool ryIsWrongUse(RyOutcome outcome);
/// `outcome`, after which fields were left that nothing had used.
RyOutcome ryWithUnusedFields(RyOutcome outcome);
