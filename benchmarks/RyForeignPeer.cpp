// What a program of its own takes to read a file with the importers' library and nothing else: no toolkit is linked.
// Ends without tidying up, as the reading process does.

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include <cstdlib>

int main(int argc, char **argv)
{
    Assimp::Importer importer;
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_REMOVE_EMPTY_BONES, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    const bool isRead = argc == 2 && importer.ReadFile(argv[1], 0) != nullptr;
    std::_Exit(isRead ? 0 : 1);
}
