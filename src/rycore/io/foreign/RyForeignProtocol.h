#pragma once

/// What the process that reads a foreign file and the one that started it say to one another: lines of UTF-8 on the
/// standard output of the reading one, a word and what it is about.
namespace RyForeignProtocol {

// The reading program, beside the host library, unless the variable names another one. Its arguments are the file to
// read, the one to write and a unit.
constexpr char Program[] = "ryforeign";
constexpr char ProgramVariable[] = "RYHOST_FOREIGN_READER";

constexpr char Progress[] = "progress "; // how much is done, from 0 to 1
constexpr char Note[] = "note ";
constexpr char Refusal[] = "error ";
constexpr char NoMemory[] = "memory";

enum Exit { Done = 0, Refused = 1, WrongUse = 2, OutOfMemory = 3 };

} // namespace RyForeignProtocol
