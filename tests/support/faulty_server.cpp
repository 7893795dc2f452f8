#include "support/faulty_server.hpp"

#include <algorithm>
#include <chrono>

#include "base/text.hpp"

namespace support {
namespace {

constexpr int kPollMs = 10;  // how soon a waiting connection notices that the server stops
constexpr std::size_t kLargestHead = 1 << 20;

std::string UrlOf(std::string_view scheme, const std::string& address, std::uint16_t port,
                  std::string_view path) {
  return std::string(scheme) + "://" + address + ":" + std::to_string(port) + std::string(path);
}

const char* ReasonOf(int status) {
  static const std::map<int, const char*> kReasons = {{200, "OK"},
                                                      {301, "Moved Permanently"},
                                                      {206, "Partial Content"},
                                                      {302, "Found"},
                                                      {304, "Not Modified"},
                                                      {404, "Not Found"},
                                                      {407, "Proxy Authentication Required"},
                                                      {416, "Range Not Satisfiable"},
                                                      {500, "Internal Server Error"}};
  const auto found = kReasons.find(status);
  return found == kReasons.end() ? "Status" : found->second;
}

std::string ChunkOf(std::string_view bytes) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string size;
  for (std::size_t rest = bytes.size(); rest != 0 || size.empty(); rest >>= 4)
    size.insert(0, 1, kHex[rest & 15]);
  return size + "\r\n" + std::string(bytes) + "\r\n";
}

std::string HeadOf(const Answer& answer) {
  if (answer.framing == Answer::Framing::NoHead) return {};
  std::string head = "HTTP/1.1 " + std::to_string(answer.status) + " " + ReasonOf(answer.status) + "\r\n";
  for (const auto& [name, value] : answer.headers) head += name + ": " + value + "\r\n";
  if (answer.announced) {
    head += "Content-Length: " + *answer.announced + "\r\n";
  } else if (answer.framing == Answer::Framing::Length && answer.status != 304) {
    head += "Content-Length: " + std::to_string(answer.body.size()) + "\r\n";
  } else if (answer.framing == Answer::Framing::Chunked) {
    head += "Transfer-Encoding: chunked\r\n";
  } else if (answer.framing == Answer::Framing::UntilClose) {
    head += "Connection: close\r\n";
  }
  return head + "\r\n";
}

SeenRequest ParsedRequest(std::string_view head) {
  SeenRequest request;
  bool first = true;
  for (const std::string_view raw : base::Split(head, '\n')) {
    const std::string_view line = raw.ends_with('\r') ? raw.substr(0, raw.size() - 1) : raw;
    if (first) {
      request.method = base::Field(line, 1, ' ');
      request.target = base::Field(line, 2, ' ');
      first = false;
    } else if (const std::size_t colon = line.find(':'); colon != std::string_view::npos) {
      request.headers.emplace_back(base::Lower(line.substr(0, colon)), base::Trim(line.substr(colon + 1)));
    }
  }
  return request;
}

}  // namespace

std::string SeenRequest::Header(std::string_view lowerCaseName) const {
  for (const auto& [name, value] : headers) {
    if (name == lowerCaseName) return value;
  }
  return {};
}

Answer Text(std::string body, Headers headers) {
  return {.headers = std::move(headers), .body = std::move(body)};
}

Answer Page(int status, std::string body) {
  return {.status = status, .headers = {{"Content-Type", "text/html"}}, .body = std::move(body)};
}

Answer Redirect(std::string location, int status) {
  return {.status = status, .headers = {{"Location", std::move(location)}}, .body = "moved"};
}

Answer Silent() { return {.silent = true}; }

Answer Garbage() {
  return {.body = std::string("\x16\x03\x00\xFF garbage\r\n\r\n", 15), .framing = Answer::Framing::NoHead};
}

Answer CutShort(std::string body, std::size_t after, Answer::Cut cut) {
  return {.body = std::move(body), .cutAfter = after, .cut = cut};
}

std::function<Answer(const SeenRequest&)> Tagged(std::string body, std::string tag, Headers headers) {
  headers.emplace_back("ETag", tag);
  return [=](const SeenRequest& request) {
    Answer answer = Text(body, headers);
    if (request.Header("if-none-match") != tag) return answer;
    answer.status = 304;
    answer.body.clear();
    return answer;
  };
}

struct FaultyServer::Connection {
  Socket socket;
  std::thread thread;
};

FaultyServer::FaultyServer(std::string address)
    : address_(std::move(address)), listener_(Socket::Bound(address_)) {
  listener_.Listen(64);
  port_ = listener_.Port();
  accepting_ = std::thread([this] { AcceptLoop(); });
}

FaultyServer::~FaultyServer() {
  stopping_ = true;
  accepting_.join();
  for (Connection& connection : connections_) connection.thread.join();
}

std::string FaultyServer::Url(std::string_view path, std::string_view scheme) const {
  return UrlOf(scheme, address_, port_, path);
}

void FaultyServer::On(const std::string& path, Answer answer) {
  On(path, [answer = std::move(answer)](const SeenRequest&) { return answer; });
}

void FaultyServer::On(const std::string& path, Handler handler) {
  const std::lock_guard lock(mutex_);
  routes_[path] = std::move(handler);
}

void FaultyServer::Otherwise(Handler handler) {
  const std::lock_guard lock(mutex_);
  otherwise_ = std::move(handler);
}

std::vector<SeenRequest> FaultyServer::Seen() const {
  const std::lock_guard lock(mutex_);
  return seen_;
}

std::vector<std::string> FaultyServer::Targets() const {
  std::vector<std::string> targets;
  for (const SeenRequest& request : Seen()) targets.push_back(request.target);
  return targets;
}

std::size_t FaultyServer::Count(std::string_view target) const {
  const std::vector<std::string> targets = Targets();
  return static_cast<std::size_t>(std::count(targets.begin(), targets.end(), target));
}

void FaultyServer::Forget() {
  const std::lock_guard lock(mutex_);
  seen_.clear();
}

void FaultyServer::AcceptLoop() {
  while (!stopping_) {
    if (!listener_.WaitReadable(kPollMs)) continue;
    Socket accepted = listener_.Accept();
    if (!accepted.Valid()) continue;
    ++accepted_;
    Connection& connection = connections_.emplace_back();
    connection.socket = std::move(accepted);
    connection.thread = std::thread([this, &connection] {
      Serve(connection.socket);
      connection.socket.Close();
    });
  }
}

void FaultyServer::Serve(Socket& socket) {
  std::string pending;
  SeenRequest request;
  while (ReadRequest(socket, pending, request)) {
    {
      const std::lock_guard lock(mutex_);
      seen_.push_back(request);
    }
    if (!SendAnswer(socket, request, AnswerFor(request))) return;
  }
}

bool FaultyServer::ReadRequest(Socket& socket, std::string& pending, SeenRequest& request) {
  while (!stopping_ && pending.size() < kLargestHead) {
    const std::size_t end = pending.find("\r\n\r\n");
    if (end != std::string::npos) {
      request = ParsedRequest(std::string_view(pending).substr(0, end));
      pending.erase(0, end + 4);
      return true;
    }
    if (!socket.WaitReadable(kPollMs)) continue;
    char buffer[4096];
    const std::ptrdiff_t count = socket.Receive(buffer, sizeof buffer);
    if (count < 0) return false;
    pending.append(buffer, static_cast<std::size_t>(count));
  }
  return false;
}

Answer FaultyServer::AnswerFor(const SeenRequest& request) {
  Handler handler;
  {
    const std::lock_guard lock(mutex_);
    auto found = routes_.find(request.target);
    if (found == routes_.end()) found = routes_.find(request.Path());
    handler = found == routes_.end() ? otherwise_ : found->second;
  }
  return handler ? handler(request) : Page(404, "<!DOCTYPE html><p>nothing here</p>");
}

bool FaultyServer::SendAnswer(Socket& socket, const SeenRequest& request, const Answer& answer) {
  Pause(answer.waitMs);
  while (answer.silent && !stopping_) Pause(kPollMs);
  if (!answer.pieces.empty()) return SendPieces(socket, answer);
  if (stopping_ || !SendAll(socket, HeadOf(answer))) return false;
  const std::string_view whole = request.method == "HEAD" ? std::string_view{} : answer.body;
  if (!SendBody(socket, answer, whole.substr(0, answer.cutAfter.value_or(whole.size())))) return false;
  if (answer.cutAfter) {
    Cut(socket, answer);
    return false;
  }
  if (answer.framing == Answer::Framing::Chunked) return SendAll(socket, ChunkOf({}));
  return answer.framing == Answer::Framing::Length && !answer.announced;
}

bool FaultyServer::SendPieces(Socket& socket, const Answer& answer) {
  for (const std::string& piece : answer.pieces) {
    if (&piece != &answer.pieces.front()) Pause(answer.paceMs);
    if (!SendAll(socket, piece)) return false;
  }
  Cut(socket, answer);
  return false;
}

void FaultyServer::Cut(Socket& socket, const Answer& answer) {
  while (answer.cut == Answer::Cut::Silence && !stopping_) Pause(kPollMs);
  if (answer.cut == Answer::Cut::Reset) socket.ResetOnClose();
}

bool FaultyServer::SendBody(Socket& socket, const Answer& answer, std::string_view body) {
  constexpr std::size_t kPiece = 16384;
  const bool chunked = answer.framing == Answer::Framing::Chunked;
  const auto start = std::chrono::steady_clock::now();
  std::uint64_t slices = 0;
  while (!body.empty()) {
    const std::string_view piece = body.substr(0, answer.paceBytes == 0 ? kPiece : answer.paceBytes);
    body.remove_prefix(piece.size());
    if (!SendAll(socket, chunked ? ChunkOf(piece) : std::string(piece))) return false;
    if (answer.paceBytes == 0) continue;
    const auto due = start + std::chrono::milliseconds(++slices * answer.paceMs);
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(due - std::chrono::steady_clock::now());
    if (left.count() > 0) Pause(static_cast<std::uint32_t>(left.count()));
  }
  return true;
}

bool FaultyServer::SendAll(Socket& socket, std::string_view bytes) {
  while (!bytes.empty() && !stopping_) {
    if (!socket.WaitWritable(kPollMs)) continue;
    const std::ptrdiff_t count = socket.Send(bytes);
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return bytes.empty();
}

void FaultyServer::Pause(std::uint32_t milliseconds) {
  const auto due = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (!stopping_) {
    const auto left = due - std::chrono::steady_clock::now();
    if (left <= left.zero()) return;
    std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, std::chrono::milliseconds(kPollMs)));
  }
}

ClosedPort::ClosedPort(std::string address)
    : address_(std::move(address)), socket_(Socket::Bound(address_)) {}

std::string ClosedPort::Url(std::string_view path) const {
  return UrlOf("http", address_, socket_.Port(), path);
}

DeafPort::DeafPort(std::string address) : address_(std::move(address)), socket_(Socket::Bound(address_)) {
  constexpr int kEnoughToFill = 8;
  socket_.Listen(0);
  for (int i = 0; i < kEnoughToFill; ++i) waiting_.push_back(Socket::Connected(address_, socket_.Port()));
}

std::string DeafPort::Url(std::string_view path) const {
  return UrlOf("http", address_, socket_.Port(), path);
}

}  // namespace support
