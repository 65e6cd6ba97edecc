// Files that are printed each by itself.
#pragma once

#include <string>
#include <vector>

#include "qnvtool/job/many_jobs.h"

namespace qnv::tool {

// A job for each file of `options`, whose outputs are patterns: {name} is the name of the file without its ending,
// {file} with it, {folder} where it lies, {number} its place in the list. An `out` that is a folder, or ends in '/',
// takes NAME.FORMAT for each; `newFolder` is set to it. `values` stands for all other options. Throws ToolError
// (usage).
std::vector<ListedJob> JobsOfFiles(const PrintOptions& options, const std::string& values, std::string& newFolder);

// The name of a file by a pattern. Throws ToolError (usage) for braces with another name in them.
std::string ExpandPattern(const std::string& pattern, const std::string& file, std::size_t number, std::size_t count);

}  // namespace qnv::tool
