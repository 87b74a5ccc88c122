#pragma once

#include <span>

struct RySelectionRule;

/// All that is to be known of an action beside what it does. Texts are source texts for translation in the context
/// RyJEToolAction.
struct RyJEActionRow
{
    const char *className;
    const char *guid; // by which hosts know the class; it must never change
    const RySelectionRule &rule;
    bool checkable;
    const char *text;
    const char *description;
    const char *searchWords; // what others call it: found by a search, never shown
};

/// In the order in which the host learns of the classes, which must never change either.
std::span<const RyJEActionRow> ryJEActionRows();
/// The row of an action class; every joint editor action has one.
const RyJEActionRow &ryJEActionRow(const char *className);
