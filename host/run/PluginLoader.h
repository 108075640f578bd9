#pragma once

#include <kel/kelAbstractProcessGroupTracker.h>

#include <memory>
#include <string>

namespace grouptracker {

/// Loads the plugin and lets the factory make a group-tracker process by its type name. Without a
/// file name the plugin is looked for beside the executable, in the places of a build tree and of
/// an installed tree. A plugin that cannot be loaded or does not bring the type is an `InputError`.
/// Needs the application object. The plugin stays loaded until the program ends.
std::unique_ptr<kelAbstractProcessGroupTracker> loadGroupTracker(const std::string& pluginFile);

/// The file that these take for a name, or without one.
std::string pluginPath(const std::string& pluginFile);

/// Maps the plugin into this program without starting it: child processes that need it then start
/// without the work of the dynamic linker, a third of a short run.
void preloadGroupTracker(const std::string& pluginFile);

}  // namespace grouptracker
