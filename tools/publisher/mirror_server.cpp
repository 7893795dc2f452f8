#include "publisher/mirror_server.hpp"

#include <arpa/inet.h>
#include <httplib.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

#include "publisher/cache_rules.hpp"
#include "publisher/conditions.hpp"
#include "publisher/failure.hpp"
#include "publisher/served_file.hpp"

namespace publisher {
namespace {

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::uint64_t kPiecesPerSecond = 10;  // at a limited rate
constexpr std::size_t kConnections = 32;        // at once; an idle one occupies its thread too
constexpr std::time_t kIdleSeconds = 2;
constexpr std::size_t kMostRequests = 100'000;  // on one connection
bool IsLoopback(const std::string& host) {
  in_addr address{};
  return inet_pton(AF_INET, host.c_str(), &address) == 1 && ntohl(address.s_addr) >> 24 == 127;
}

// Two servers on one port would share its connections at random, which the library's default allows.
void KeepPortToItself(int socket) {
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

// The library would cut its own ranges out of the answer, without a look at If-Range or at the file's end.
Conditions ConditionsOf(const httplib::Request& request) {
  const_cast<httplib::Request&>(request).ranges.clear();
  return {request.get_header_value("If-None-Match"), request.get_header_value("If-Modified-Since"),
          request.get_header_value("Range"), request.get_header_value("If-Range")};
}

int StatusOf(Portion::Kind kind) {
  switch (kind) {
    case Portion::Kind::Part:
      return 206;
    case Portion::Kind::NotModified:
      return 304;
    case Portion::Kind::BeyondTheEnd:
      return 416;
    case Portion::Kind::Whole:
      break;
  }
  return 200;
}

}  // namespace

struct MirrorServer::State {
  State(const Layout& served, const ServeOptions& how, Console& speech)
      : layout(served), options(how), console(speech) {}

  const Layout layout;
  const ServeOptions options;
  Console& console;
  int port = 0;
  httplib::Server server;
  std::mutex mutex;  // of `ending` and the console
  std::condition_variable ended;
  bool ending = false;
  std::thread listener;

  void Answer(const httplib::Request& request, httplib::Response& response);
  void SendPortion(ServedFile&& served, const Portion& portion, httplib::Response& response);
  bool Send(ServedFile& served, std::size_t offset, std::size_t length, httplib::DataSink& sink,
            std::chrono::steady_clock::time_point start, std::uint64_t& sent);
  bool WaitUntil(std::chrono::steady_clock::time_point time) {
    std::unique_lock lock(mutex);
    return !ended.wait_until(lock, time, [&] { return ending; });
  }
  void Log(const httplib::Request& request, const httplib::Response& response) {
    const std::lock_guard lock(mutex);
    console.out << request.method << " " << request.target << " " << response.status << "\n" << std::flush;
  }
};

void MirrorServer::State::Answer(const httplib::Request& request, httplib::Response& response) {
  const Conditions asked = ConditionsOf(request);
  const std::optional<std::string> path = layout.FileFor(request.path);
  if (!path) {
    response.status = 404;
    return;
  }
  std::optional<ServedFile> served = OpenServed(*path);
  if (!served) {
    response.status = 404;
    return;
  }
  response.set_header("ETag", served->etag);
  response.set_header("Last-Modified", served->lastModified);
  response.set_header("Cache-Control", CachingOf(KindOf(layout.RelativeOf(*path))).header);
  SendPortion(std::move(*served), PortionFor(*served, asked), response);
}

void MirrorServer::State::SendPortion(ServedFile&& served, const Portion& portion,
                                      httplib::Response& response) {
  const std::uint64_t size = served.size;
  const bool part = portion.kind == Portion::Kind::Part;
  response.status = StatusOf(portion.kind);
  if (portion.kind == Portion::Kind::NotModified) return;
  if (portion.kind == Portion::Kind::BeyondTheEnd) {
    return response.set_header("Content-Range", "bytes */" + std::to_string(size));
  }
  if (size == 0) return response.set_content("", served.type);
  const std::uint64_t first = part ? portion.first : 0, length = part ? portion.length : size;
  if (part) {
    response.set_header("Content-Range", "bytes " + std::to_string(first) + "-" +
                                             std::to_string(first + length - 1) + "/" + std::to_string(size));
  }
  const auto file = std::make_shared<ServedFile>(std::move(served));
  response.set_content_provider(
      length, file->type,
      [this, file, first, start = std::chrono::steady_clock::now(), sent = std::uint64_t{0}](
          std::size_t offset, std::size_t left, httplib::DataSink& sink) mutable {
        return Send(*file, first + offset, left, sink, start, sent);
      });
}

bool MirrorServer::State::Send(ServedFile& served, std::size_t offset, std::size_t length,
                               httplib::DataSink& sink, std::chrono::steady_clock::time_point start,
                               std::uint64_t& sent) try {
  std::array<std::byte, kPiece> piece;
  std::size_t wanted = std::min(length, piece.size());
  if (options.rate != 0) {
    wanted = std::min<std::size_t>(wanted, std::max<std::uint64_t>(1, options.rate / kPiecesPerSecond));
  }
  served.file.Seek(offset);
  const std::size_t count = served.file.Read(std::span(piece).first(wanted));
  sent += count;
  const double seconds =
      options.rate == 0 ? 0 : static_cast<double>(sent) / static_cast<double>(options.rate);
  const auto due =
      std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(seconds));
  return count != 0 && WaitUntil(start + due) &&
         sink.write(reinterpret_cast<const char*>(piece.data()), count);
} catch (const base::RuntimeError&) {
  return false;  // the client sees a body that is cut short
}

MirrorServer::MirrorServer(const Layout& layout, const ServeOptions& options, Console& console)
    : state_(std::make_unique<State>(layout, options, console)) {
  httplib::Server& server = state_->server;
  if (!IsLoopback(options.host)) throw Failure(options.host + ": no loopback address (127.0.0.0/8)");
  server.set_socket_options(KeepPortToItself);
  server.set_tcp_nodelay(true);  // else the body of a small file waits 40 ms for its head to be confirmed
  server.set_keep_alive_timeout(kIdleSeconds);
  server.set_keep_alive_max_count(kMostRequests);
  server.new_task_queue = [] { return new httplib::ThreadPool(kConnections); };  // the server deletes it
  server.Get(".*", [state = state_.get()](const httplib::Request& request, httplib::Response& response) {
    state->Answer(request, response);
  });
  if (options.log) {
    server.set_logger(
        [state = state_.get()](const httplib::Request& request, const httplib::Response& response) {
          state->Log(request, response);
        });
  }
  if (options.port == 0) {
    state_->port = server.bind_to_any_port(options.host);
  } else {
    state_->port = server.bind_to_port(options.host, options.port) ? options.port : -1;
  }
  if (state_->port <= 0) {
    throw Failure(options.host + ":" + std::to_string(options.port) +
                  ": cannot listen there: " + std::strerror(errno));
  }
  state_->listener = std::thread([&server] { server.listen_after_bind(); });
  while (!server.is_running()) std::this_thread::yield();  // before that it could not be stopped either
}

MirrorServer::~MirrorServer() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->ending = true;
  }
  state_->ended.notify_all();
  state_->server.stop();
  state_->listener.join();
}

std::string MirrorServer::Url() const {
  return "http://" + state_->options.host + ":" + std::to_string(state_->port) + "/";
}

}  // namespace publisher
