#pragma once

class QByteArray;
class RyFbxRecords;

/// A binary FBX file with its packed arrays (RFC 1950) as they are. The importers' library unpacks them too, in twice
/// the time, which for most files is half of what it takes. Empty where nothing is packed or where anything of the file
/// is other than it should be: what is wrong with it is for that library to say; and where the arrays are so large that
/// the memory which a file may take is better spent otherwise.
QByteArray ryFbxUnpacked(const RyFbxRecords &records);
