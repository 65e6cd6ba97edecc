// A server for one page, for programs on this machine only.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace qnv::tool {

// Serves `page` at http://127.0.0.1:PORT/ until the program is interrupted (Interrupted). port 0: any free one.
// isReady(url) is called when it can be asked for. Throws ToolError: usage when the port is taken or there is no
// network.
//
// Requests must name this machine in their Host header: pages of other hosts, whose names lead here, get nothing.
void ServeLocalPage(const std::string& page, uint16_t port, const std::function<void(const std::string& url)>& isReady);

}  // namespace qnv::tool
