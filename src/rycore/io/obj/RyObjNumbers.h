#pragma once

/// Numbers for a text that nobody edited by hand: as short as they can be for a reader to get the same single.
namespace RyObjNumbers {

/// The shortest number that reads as the same single.
double shortest(float number);
/// In file units: read and multiplied by `unit` it is `centimetres` again, and short where one such number is.
double inUnits(float centimetres, double unit);
/// The v of the file, which grows upwards, of one that grows downwards.
double upwards(float v);

} // namespace RyObjNumbers
