// Libraries that are loaded while the program runs, by the means of the system.
#pragma once

#include <memory>
#include <string>

namespace qnv::tool {

// Opens a library, which stays open as long as a copy of the result exists. A path without folders is a file of the
// current folder; the folders of the system are not searched. Throws ToolError (library) with the reason.
std::shared_ptr<void> OpenLibrary(const std::string& path);

// The address of an exported function; null when the library does not export the name.
void* FindSymbol(void* library, const char* name);

}  // namespace qnv::tool
