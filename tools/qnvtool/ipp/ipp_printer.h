// Printers over IPP, through libcups.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/ipp/printer.h"

namespace qnv::tool {

// See OpenPrinter.
std::unique_ptr<Printer> OpenIppPrinter(const std::string& address);

}  // namespace qnv::tool
