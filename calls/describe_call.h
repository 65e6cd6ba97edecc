// Calls in words: arguments by name, codes and flags by the names of the interface.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "calls/call_file.h"

namespace qnv::calls {

// An argument, or a part of a record, as text; isNumber: may stand in JSON without quotes.
struct DescribedField {
  std::string name, text;
  bool isNumber = false;
};

std::vector<DescribedField> DescribeArguments(const CallFile& file, const StoredCall& call);

// The whole call in a line: its number, function, arguments, result and time.
std::string DescribeCall(const CallFile& file, std::size_t number, const StoredCall& call);
std::string DescribeCall(std::size_t number, const StoredCall& call, const std::vector<DescribedField>& fields);

// "SRCCOPY", or the formula in reverse Polish form that the code stands for.
std::string RasterCodeName(uint32_t rop);
std::string Rop2Name(int rop2);

}  // namespace qnv::calls
