#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <vector>

/// Small glTF files made by hand for the tests, without any help from the code that is tested.
namespace GltfFixture {

/// A container of these two chunks, padded as the format asks.
QByteArray glb(QByteArray json, QByteArray binary);

/// Two joints, a quad with two influence sets' worth of places in JOINTS_0/WEIGHTS_0, a clip, an image in a buffer
/// view, and members that mean nothing to anybody.
QByteArray skinnedJson(const QByteArray &bufferMember);
QByteArray skinnedBinary();
QByteArray skinnedGlb();

template<typename T>
void append(QByteArray &bytes, const std::vector<T> &values)
{
    bytes.append(reinterpret_cast<const char *>(values.data()), int(values.size() * sizeof(T)));
}

/// Writes a file into the folder and returns its path.
QString put(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes);
QByteArray contents(const QString &path);

} // namespace GltfFixture
