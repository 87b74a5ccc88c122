#pragma once

#include <QString>

class RyMainWindow;

/// Folder of plug-in libraries: RYHOST_PLUGIN_PATH, else that of an installed program, else "plugins" beside the folder
/// of the program.
QString hostPluginFolder();
/// Adds the host's own actions and loads all plug-ins; what is refused stands in the message log. Returns how many were
/// loaded.
int loadHostPlugins(RyMainWindow &window);
