#pragma once

#include <QtGlobal>

/// What there is to know of the GL context that is current.
namespace RyGLContext {

/// Tells contexts of the process apart, those that are gone included; 0 when none is current.
quint64 currentNumber();
/// Whether the processor does the work of a graphics card.
bool isSoftware();

} // namespace RyGLContext
