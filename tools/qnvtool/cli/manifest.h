// Manifests: files whose lines name print jobs.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "qnvtool/cli/command_line.h"
#include "qnvtool/job/many_jobs.h"

namespace qnv::tool {

// How the options of one job are taken: `reset`, then the values of `options`, then `finish`, which throws ToolError
// for values that are wrong.
struct JobReader {
  const std::vector<Option>& options;
  std::function<void()> reset;
  std::function<PrintOptions()> finish;
};

// A share of a manifest: lines number, number + count, number + 2 * count and so on, counted from 1.
struct Shard {
  int number = 1;
  int count = 1;
};

// Parses "K/N"; empty: all. Throws ToolError (usage).
Shard ParseShard(const std::string& text);

// The jobs of a manifest, "-" being standard input; those of other shards are marked as printed elsewhere. Throws
// ToolError: bad input when the file cannot be read, usage for the first line that is wrong.
std::vector<ListedJob> ReadManifest(const std::string& path, const Shard& shard, const JobReader& reader);

// The values of all options of a job, one a line; the same for the same job, whatever gave them.
std::string DescribeValues(const std::vector<Option>& options);

}  // namespace qnv::tool
