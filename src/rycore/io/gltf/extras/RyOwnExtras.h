#pragma once

#include <QStringList>

class RyGltfDocument;

/// All that is ours in the extras of a document, wherever it stands.
namespace RyOwnExtras {

/// Takes it out, for a file that says nothing beyond what the format knows; other extras stay. Skins that are kept for
/// their place alone go too, unless an extension may name one by its number: without our mark they would be figures
/// again. Gives what the file no longer says, for people: "limits of 3 bones".
QStringList takeOut(RyGltfDocument &document);

} // namespace RyOwnExtras
