// Libraries that are loaded while the program runs, by the means of the system.
#pragma once

#include <memory>
#include <string>

namespace qnv::tool {

// Open as long as any copy is kept. Throws ToolError (library) with the system's reason. `path` means a file even
// where it is a bare name, which the system would look for in folders of its own.
std::shared_ptr<void> OpenLibrary(const std::string& path);

// Null when the library does not export the name.
void* FindSymbol(void* library, const char* name);

}  // namespace qnv::tool
