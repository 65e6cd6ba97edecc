// Answers GET and HEAD, one request a connection.
#include "qnvtool/calls/local_server.h"

#include "qnvtool/base/tool_error.h"

#ifdef __linux__
#include <arpa/inet.h>
#include <fmt/core.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "qnvtool/base/interruption.h"
#endif

namespace qnv::tool {

#ifdef __linux__

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMaxRequestBytes = 16384, kMaxConnections = 64;
constexpr std::chrono::seconds kPatience{15};
constexpr int kPollMilliseconds = 200;

struct Reply {
  int code;
  const char* reason;
  bool isPage;
};

bool IsSame(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return lower(x) == lower(y);
  });
}

// The value of the only header of a name; empty when there is none, or more than one.
std::string_view HeaderOf(std::string_view request, std::string_view name) {
  std::string_view value;
  int count = 0;
  for (std::size_t at = request.find("\r\n"); at != std::string_view::npos && at + 2 < request.size();) {
    const std::size_t begin = at + 2;
    at = request.find("\r\n", begin);
    const std::string_view line = request.substr(begin, at == std::string_view::npos ? at : at - begin);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || !IsSame(line.substr(0, colon), name)) continue;
    value = line.substr(colon + 1);
    while (!value.empty() && (value.front() == ' ' || value.front() == '\t')) value.remove_prefix(1);
    while (!value.empty() && (value.back() == ' ' || value.back() == '\t')) value.remove_suffix(1);
    ++count;
  }
  return count == 1 ? value : std::string_view();
}

// request: up to the empty line.
Reply ReplyTo(std::string_view request, uint16_t port, bool* isHead) {
  const std::string_view line = request.substr(0, request.find("\r\n"));
  const std::size_t space = line.find(' '), last = line.rfind(' ');
  if (space == std::string_view::npos || last == space || line.substr(last + 1).substr(0, 7) != "HTTP/1.") {
    return {400, "Bad Request", false};
  }
  const std::string_view method = line.substr(0, space);
  std::string_view path = line.substr(space + 1, last - space - 1);
  const std::string_view host = HeaderOf(request, "Host");
  if (!IsSame(host, fmt::format("127.0.0.1:{}", port)) && !IsSame(host, fmt::format("localhost:{}", port))) {
    return {403, "Forbidden", false};
  }
  *isHead = method == "HEAD";
  if (method != "GET" && !*isHead) return {405, "Method Not Allowed", false};
  path = path.substr(0, path.find('?'));
  return path == "/" ? Reply{200, "OK", true} : Reply{404, "Not Found", false};
}

bool SendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

class Connection {
 public:
  explicit Connection(int socket) : socket_(socket), end_(Clock::now() + kPatience) {}
  ~Connection() {
    if (socket_ >= 0) close(socket_);
  }
  Connection(Connection&& other) noexcept
      : socket_(std::exchange(other.socket_, -1)), end_(other.end_), request_(std::move(other.request_)) {}
  Connection& operator=(Connection&& other) noexcept {
    std::swap(socket_, other.socket_);
    end_ = other.end_;
    request_.swap(other.request_);
    return *this;
  }

  int socket() const { return socket_; }
  bool IsLate() const { return Clock::now() > end_; }

  // Reads what is there, and answers when the request is complete. False when the connection is done.
  bool Go(const std::string& page, uint16_t port) {
    char buffer[4096];
    const ssize_t got = recv(socket_, buffer, sizeof buffer, MSG_DONTWAIT);
    if (got < 0) return errno == EAGAIN || errno == EINTR;
    if (got == 0) return false;
    request_.append(buffer, static_cast<std::size_t>(got));
    const std::size_t end = request_.find("\r\n\r\n");
    if (end == std::string::npos) return request_.size() < kMaxRequestBytes;
    bool isHead = false;
    const Reply reply = ReplyTo(std::string_view(request_).substr(0, end), port, &isHead);
    const std::string text = reply.isPage ? "" : fmt::format("{}\n", reply.reason);
    const std::string_view body = reply.isPage ? std::string_view(page) : std::string_view(text);
    const std::string head = fmt::format(
        "HTTP/1.1 {} {}\r\nContent-Type: {}; charset=utf-8\r\nContent-Length: {}\r\nConnection: close\r\n"
        "Cache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\nCross-Origin-Resource-Policy: same-origin\r\n"
        "X-Frame-Options: DENY\r\n{}\r\n",
        reply.code, reply.reason, reply.isPage ? "text/html" : "text/plain", body.size(),
        reply.code == 405 ? "Allow: GET, HEAD\r\n" : "");
    const timeval patience{kPatience.count(), 0};
    setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    if (SendAll(socket_, head) && !isHead) SendAll(socket_, body);
    shutdown(socket_, SHUT_WR);
    return false;
  }

 private:
  int socket_;
  Clock::time_point end_;
  std::string request_;
};

// A socket that is closed in the end.
class Listener {
 public:
  explicit Listener(uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const int on = 1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t bytes = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (socket_ < 0 || setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        bind(socket_, generic, bytes) != 0 || listen(socket_, 16) != 0 || getsockname(socket_, generic, &bytes) != 0) {
      const std::string why = std::strerror(errno);
      if (socket_ >= 0) close(socket_);
      throw ToolError(ExitCode::kUsage, fmt::format("port {} of 127.0.0.1 cannot be used: {}", port, why));
    }
    port_ = ntohs(address.sin_port);
  }
  ~Listener() { close(socket_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int socket() const { return socket_; }
  uint16_t port() const { return port_; }

 private:
  int socket_;
  uint16_t port_ = 0;
};

}  // namespace

void ServePage(const std::string& page, uint16_t port, const std::function<void(const std::string& url)>& isReady) {
  const InterruptionGuard guard;
  const Listener listener(port);
  isReady(fmt::format("http://127.0.0.1:{}/", listener.port()));
  std::vector<Connection> connections;
  for (;;) {
    // Browsers open connections in advance and ask later: all of them are waited for.
    std::vector<pollfd> waiting{{listener.socket(), POLLIN, 0}};
    for (const Connection& connection : connections) waiting.push_back({connection.socket(), POLLIN, 0});
    const int ready = poll(waiting.data(), waiting.size(), kPollMilliseconds);
    ThrowIfInterrupted();
    for (std::size_t i = connections.size(); i-- > 0;) {
      const bool isOpen = ready <= 0 || waiting[i + 1].revents == 0 || connections[i].Go(page, listener.port());
      if (!isOpen || connections[i].IsLate()) connections.erase(connections.begin() + static_cast<std::ptrdiff_t>(i));
    }
    if (ready > 0 && waiting[0].revents != 0) {
      const int socket = accept4(listener.socket(), nullptr, nullptr, SOCK_CLOEXEC);
      if (socket < 0) continue;
      if (connections.size() >= kMaxConnections) connections.erase(connections.begin());
      connections.emplace_back(socket);
    }
  }
}

#else

void ServePage(const std::string&, uint16_t, const std::function<void(const std::string&)>&) {
  throw ToolError(ExitCode::kUsage, "--serve works on Linux; write a page with -o and open it");
}

#endif

}  // namespace qnv::tool
