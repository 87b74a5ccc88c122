#pragma once

#include <QByteArray>

/// How bytes differ from others that they mostly are: blocks in the same places. What was moved counts as other.
namespace RyByteDifference {

/// Whether it is not worth to keep the difference instead of the bytes.
bool isLarge(const QByteArray &from, const QByteArray &to);
/// What makes `to` of `from`.
QByteArray between(const QByteArray &from, const QByteArray &to);
/// False for a difference that does not fit.
bool apply(const QByteArray &from, const QByteArray &difference, QByteArray *to);

} // namespace RyByteDifference
