#pragma once

#include "ryforeign/RyForeignReader.h"

/// The process that reads one foreign file, and may go down with it.
namespace RyForeignChild {

/// The whole of its program. Arguments: the file to read; the one to write, a glTF binary, as a whole or not at all;
/// centimetres per unit of the file, 0 to find it. Says on standard output how it goes (see `RyForeignProtocol`); what
/// libraries print there goes to standard error. Does not come back: the process ends without the libraries' last
/// words, with an exit code of the protocol.
[[noreturn]] void run(int argc, char **argv, RyForeignReadFunction read);

} // namespace RyForeignChild
