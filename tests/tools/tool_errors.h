// What calls of the tool's code say when they refuse.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "qnvtool/base/tool_error.h"

namespace qnv::test {

// The message of the ToolError that `call` throws, which is to have this exit code; empty when it throws none.
template <class Call>
std::string ErrorOf(tool::ExitCode code, Call call) {
  try {
    call();
  } catch (const tool::ToolError& error) {
    EXPECT_EQ(error.code(), code) << error.what();
    return error.what();
  }
  return "";
}

template <class Call>
std::string UsageErrorOf(Call call) {
  return ErrorOf(tool::ExitCode::kUsage, call);
}

template <class Call>
std::string InputErrorOf(Call call) {
  return ErrorOf(tool::ExitCode::kBadInput, call);
}

}  // namespace qnv::test
