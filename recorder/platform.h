// What the recorder needs of the system it runs on.
#pragma once

#include <cstdint>
#include <string>

namespace qnv::recorder {

// The file that this code was loaded from.
std::string OwnPath();
// An environment variable; empty when it is not set.
std::string EnvironmentOf(const char* name);
uint64_t ProcessNumber();
// A number that no other running thread of the process has.
uint64_t ThreadNumber();
// Loads a library and keeps it. Null when that fails, with the reason in *error, or when it is the recorder itself.
void* OpenLibrary(const std::string& path, std::string* error);
void* FindSymbol(void* library, const char* name);
// A line for whoever looks after the host: standard error, and the debugger on Windows.
void Tell(const std::string& line);
// Called by the system's part when the process ends or unloads the recorder: writes the index of the file.
void EndOfProcess();
// Calls `function` in the child when the process forks.
void OnFork(void (*function)());

}  // namespace qnv::recorder
