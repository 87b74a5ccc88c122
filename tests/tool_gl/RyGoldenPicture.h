#pragma once

#include <QImage>
#include <QString>

/// Compares pictures with those that are kept in `pictures` beside the tests. Renderers set the pixels along an edge
/// each in its own way: both pictures are blurred, and a small share of pixels may differ.
///
/// RY_MAKE_PICTURES in the environment keeps what is drawn instead; look at it then.
namespace RyGoldenPicture {

/// The share of pixels that differ, 1 for pictures of other sizes.
double difference(const QImage &a, const QImage &b);
constexpr double Tolerance = 0.003;

/// Empty when the picture is like the kept one. Otherwise both are saved below the build folder, and this says where.
QString compare(const QImage &drawn, const QString &name);

} // namespace RyGoldenPicture
