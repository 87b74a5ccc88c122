#include "RyGoldenPicture.h"

#include <QDir>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int blurRadius = 2;
/// Of one channel of 255, once blurred.
constexpr int visible = 30;

/// Each pixel becomes the mean of those around it, as far as they are in the picture.
QImage blurred(const QImage &image)
{
    QImage result(image.size(), QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            int sums[3] = {};
            int count = 0;
            for (int v = std::max(y - blurRadius, 0); v <= std::min(y + blurRadius, image.height() - 1); ++v) {
                for (int u = std::max(x - blurRadius, 0); u <= std::min(x + blurRadius, image.width() - 1); ++u) {
                    const QRgb pixel = image.pixel(u, v);
                    sums[0] += qRed(pixel);
                    sums[1] += qGreen(pixel);
                    sums[2] += qBlue(pixel);
                    ++count;
                }
            }
            result.setPixel(x, y, qRgb(sums[0] / count, sums[1] / count, sums[2] / count));
        }
    }
    return result;
}

bool differ(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) > visible || std::abs(qGreen(a) - qGreen(b)) > visible ||
           std::abs(qBlue(a) - qBlue(b)) > visible;
}

} // namespace

double RyGoldenPicture::difference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size() || a.isNull())
        return 1.0;
    const QImage first = blurred(a);
    const QImage second = blurred(b);
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += differ(first.pixel(x, y), second.pixel(x, y));
    }
    return double(count) / (double(a.width()) * a.height());
}

QString RyGoldenPicture::compare(const QImage &drawn, const QString &name)
{
    const QString kept = QStringLiteral(RY_SOURCE_DIR "/tests/tool_gl/pictures/%1.png").arg(name);
    if (qEnvironmentVariableIsSet("RY_MAKE_PICTURES"))
        return drawn.save(kept) ? QString() : QStringLiteral("%1 cannot be written").arg(kept);
    const QImage expected(kept);
    const double share = difference(drawn, expected);
    if (share <= Tolerance)
        return {};
    const QDir folder(QStringLiteral(RY_BINARY_DIR "/pictures"));
    folder.mkpath(QStringLiteral("."));
    const QString drawnFile = folder.filePath(name + QStringLiteral("-drawn.png"));
    const QString expectedFile = folder.filePath(name + QStringLiteral("-expected.png"));
    drawn.save(drawnFile);
    expected.save(expectedFile);
    return QStringLiteral("%1 % of the pixels differ: see %2 and %3").arg(share * 100.0).arg(drawnFile, expectedFile);
}
