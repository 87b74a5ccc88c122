#pragma once

#include <QByteArray>

/// Small whole files of foreign formats: an arm of two bones that bend a bar, with a clip. Written here, byte by byte.
namespace ForeignSketch {

/// Two joints and an end site, three frames, no mesh.
QByteArray bvh();
/// Y up, metres.
QByteArray collada();
/// Binary, version 7.4, centimetres.
QByteArray fbx();
/// The same of version 7.7, with packed arrays.
QByteArray packedFbx();
/// The same said to be of version 6.1, which few programs read any more.
QByteArray oldFbx();
/// The same arm as text.
QByteArray textFbx();
/// All of it on one line.
QByteArray textFbxWithoutLineEnds();

} // namespace ForeignSketch
