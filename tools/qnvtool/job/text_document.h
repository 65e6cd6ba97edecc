// Texts as documents.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/job/document.h"

namespace qnv::tool {

// `name` goes into the headers of the pages.
std::unique_ptr<Document> OpenTextDocument(const Input& file, const PrintOptions& options, const PageSetup& setup,
                                           const std::string& name);

}  // namespace qnv::tool
