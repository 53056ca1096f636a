// Whole files, read and written with every failure told.
#pragma once

#include <string>
#include <string_view>

namespace vorn::console {

// The contents of a file. Refuses with the reason when it cannot be read.
std::string readFile(const std::string& path);

// Puts the contents into a new file beside the path and renames it, so that the old file stays whole until the new one
// is; what is no regular file, such as a device, is written directly. Refuses with the reason, and leaves nothing
// behind.
void writeFile(const std::string& path, std::string_view contents);

// The path with ~ in its front replaced by the home directory.
std::string expandedPath(std::string_view path);

}  // namespace vorn::console
