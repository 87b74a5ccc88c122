#pragma once

/// What is said of an action in menus: source texts for translation in the context RyJEToolAction.
struct RyJEActionText
{
    const char *className;
    const char *text;
    const char *description;
    bool checkable;
    const char *searchWords; // what others call it: found by a search, never shown
};

/// The row of an action class; every joint editor action has one.
const RyJEActionText &ryJEActionText(const char *className);
