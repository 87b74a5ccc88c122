#pragma once

/// Lets the heap begin with large pages. Until the first picture a program asks for tens of megabytes, and a fifth of
/// the time goes to page faults where each takes 4 kB. To be called first of all; does nothing where the C library
/// differs.
void prepareStartMemory();
