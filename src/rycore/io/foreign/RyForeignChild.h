#pragma once

#include <QString>

/// The process that reads one foreign file. It loads the library that knows foreign formats, which nothing else does,
/// and may go down with it.
namespace RyForeignChild {

/// Reads `in` and writes `out`, a glTF binary, as a whole or not at all. `unit`: centimetres per unit of the file, 0 to
/// find it. Says on standard output how it goes (see
/// `RyForeignProtocol`); what the library itself prints there goes to standard error. Does not come back: the process
/// ends without the library's last words, with an exit code of the protocol.
[[noreturn]] void run(const QString &in, const QString &out, double unit);

/// Path of the library: RYHOST_FOREIGN_LIBRARY, else beside the host library.
QString libraryPath();

} // namespace RyForeignChild
