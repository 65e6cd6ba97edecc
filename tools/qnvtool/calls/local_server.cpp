// Answers GET and HEAD with libmicrohttpd.
#include "qnvtool/calls/local_server.h"

#include <arpa/inet.h>
#include <fmt/core.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <strings.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

// Connections, of which browsers open some in advance; bytes of a request; and seconds that one may take.
constexpr unsigned kMaxConnections = 64, kPatienceSeconds = 15;
constexpr std::size_t kMaxRequestBytes = 16384;
constexpr std::chrono::milliseconds kWait{200};  // between two looks for a signal

struct ServedPage {
  const std::string& text;
  std::vector<std::string> hosts = {};
};

enum MHD_Result CollectHost(void* hosts, enum MHD_ValueKind, const char* name, const char* value) {
  if (strcasecmp(name, MHD_HTTP_HEADER_HOST) == 0) {
    static_cast<std::vector<std::string>*>(hosts)->emplace_back(value == nullptr ? "" : value);
  }
  return MHD_YES;
}

// Whether the request names this machine, once.
bool IsForThisMachine(MHD_Connection* connection, const ServedPage& page) {
  std::vector<std::string> hosts;
  MHD_get_connection_values(connection, MHD_HEADER_KIND, CollectHost, &hosts);
  if (hosts.size() != 1) return false;
  for (const std::string& host : page.hosts) {
    if (strcasecmp(host.c_str(), hosts[0].c_str()) == 0) return true;
  }
  return false;
}

enum MHD_Result Reply(MHD_Connection* connection, unsigned code, std::string_view body, const char* type) {
  const std::unique_ptr<MHD_Response, decltype(&MHD_destroy_response)> response(
      MHD_create_response_from_buffer(body.size(), const_cast<char*>(body.data()), MHD_RESPMEM_PERSISTENT),
      MHD_destroy_response);
  if (response == nullptr) return MHD_NO;
  const auto header = [&](const char* name, const char* value) {
    MHD_add_response_header(response.get(), name, value);
  };
  header(MHD_HTTP_HEADER_CONTENT_TYPE, type);
  header(MHD_HTTP_HEADER_CONNECTION, "close");
  header(MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
  header("X-Content-Type-Options", "nosniff");
  header("Cross-Origin-Resource-Policy", "same-origin");
  header("X-Frame-Options", "DENY");
  if (code == MHD_HTTP_METHOD_NOT_ALLOWED) header(MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
  return MHD_queue_response(connection, code, response.get());
}

enum MHD_Result Answer(void* served, MHD_Connection* connection, const char* url, const char* method, const char*,
                       const char*, std::size_t*, void**) {
  const ServedPage& page = *static_cast<const ServedPage*>(served);
  const auto refuse = [&](unsigned code, std::string_view why) {
    return Reply(connection, code, why, "text/plain; charset=utf-8");
  };
  if (!IsForThisMachine(connection, page)) return refuse(MHD_HTTP_FORBIDDEN, "Forbidden\n");
  const std::string_view asked = method;
  if (asked != MHD_HTTP_METHOD_GET && asked != MHD_HTTP_METHOD_HEAD) {
    return refuse(MHD_HTTP_METHOD_NOT_ALLOWED, "Method Not Allowed\n");
  }
  if (std::string_view(url) != "/") return refuse(MHD_HTTP_NOT_FOUND, "Not Found\n");
  return Reply(connection, MHD_HTTP_OK, page.text, "text/html; charset=utf-8");
}

}  // namespace

void ServeLocalPage(const std::string& page, uint16_t port,
                    const std::function<void(const std::string& url)>& isReady) {
  const InterruptionGuard guard;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ServedPage served{page};
  errno = 0;
  const std::unique_ptr<MHD_Daemon, decltype(&MHD_stop_daemon)> daemon(
      MHD_start_daemon(MHD_USE_AUTO_INTERNAL_THREAD, port, nullptr, nullptr, Answer, &served,  //
                       MHD_OPTION_SOCK_ADDR, &address,                                         //
                       MHD_OPTION_CONNECTION_LIMIT, kMaxConnections,                           //
                       MHD_OPTION_CONNECTION_TIMEOUT, kPatienceSeconds,                        //
                       MHD_OPTION_CONNECTION_MEMORY_LIMIT, kMaxRequestBytes, MHD_OPTION_END),
      MHD_stop_daemon);
  if (daemon == nullptr) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("port {} of 127.0.0.1 cannot be used: {}", port, std::strerror(errno)));
  }
  const uint16_t chosen = MHD_get_daemon_info(daemon.get(), MHD_DAEMON_INFO_BIND_PORT)->port;
  // No browser can ask before it has the address.
  served.hosts = {fmt::format("127.0.0.1:{}", chosen), fmt::format("localhost:{}", chosen)};
  isReady(fmt::format("http://127.0.0.1:{}/", chosen));
  for (;;) {
    ThrowIfInterrupted();
    std::this_thread::sleep_for(kWait);
  }
}

}  // namespace qnv::tool
