#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "support/sockets.hpp"

namespace support {

using Headers = std::vector<std::pair<std::string, std::string>>;

struct SeenRequest {
  std::string method, target;                                // the target as sent: path and query
  Headers headers;                                           // in the order sent, names in lower case
  std::string Header(std::string_view lowerCaseName) const;  // empty when missing
  std::string Path() const { return target.substr(0, target.find('?')); }
};

// One answer and what goes wrong with it. The default is an honest 200 that keeps the connection.
struct Answer {
  enum class Framing { Length, UntilClose, Chunked, NoHead };  // NoHead: the body's bytes and nothing else
  enum class Cut { Close, Reset, Silence };

  int status = 200;
  Headers headers{};
  std::string body{};
  Framing framing = Framing::Length;
  std::optional<std::string> announced{};  // what Content-Length says instead of the truth
  std::optional<std::size_t> cutAfter{};   // so many bytes of the body are sent, then `cut` happens
  Cut cut = Cut::Close;
  bool silent = false;        // the request is read and never answered
  std::size_t paceBytes = 0;  // 0: as fast as it goes; else so many bytes of the body ...
  std::uint32_t paceMs = 1;   // ... every so many milliseconds
  std::uint32_t waitMs = 0;   // before the head
  // When there are any: sent as they stand in place of head and body, `paceMs` apart; then `cut` happens.
  std::vector<std::string> pieces{};
};

Answer Text(std::string body, Headers headers = {});
Answer Page(int status, std::string body);
Answer Redirect(std::string location, int status = 302);
Answer Silent();
Answer Garbage();
Answer CutShort(std::string body, std::size_t after, Answer::Cut cut = Answer::Cut::Close);
// Honours If-None-Match: 304 without a body when the client knows this tag.
std::function<Answer(const SeenRequest&)> Tagged(std::string body, std::string tag, Headers headers = {});

// A mirror on loopback that misbehaves as told, on a free port of an address of its own. Serves several
// connections at once, each kept alive while answers allow it. Its handlers run on its own threads.
class FaultyServer {
 public:
  using Handler = std::function<Answer(const SeenRequest&)>;

  explicit FaultyServer(std::string address = "127.0.0.1");
  ~FaultyServer();  // ends every connection at once, the silent and the slow ones too
  FaultyServer(const FaultyServer&) = delete;

  std::string Url(std::string_view path = "/", std::string_view scheme = "http") const;

  // `path` with its query is looked up first, then without it; anything else gets `Otherwise`, a 404 page
  // when none was set.
  void On(const std::string& path, Answer answer);
  void On(const std::string& path, Handler handler);
  void Otherwise(Handler handler);

  // What would be answered to such a request, for a server that mostly does as this one does.
  Answer AnswerFor(const SeenRequest& request);

  std::vector<SeenRequest> Seen() const;  // in the order they arrived
  std::vector<std::string> Targets() const;
  std::size_t Count(std::string_view target) const;  // how often exactly this was asked
  void Forget();                                     // Seen starts over
  std::size_t Connections() const { return accepted_; }

 private:
  struct Connection;

  void AcceptLoop();
  void Serve(Socket& socket);
  bool ReadRequest(Socket& socket, std::string& pending, SeenRequest& request);
  bool SendAnswer(Socket& socket, const SeenRequest& request, const Answer& answer);  // true: keep it open
  bool SendPieces(Socket& socket, const Answer& answer);
  void Cut(Socket& socket, const Answer& answer);
  bool SendBody(Socket& socket, const Answer& answer, std::string_view body);
  bool SendAll(Socket& socket, std::string_view bytes);
  void Pause(std::uint32_t milliseconds);

  std::string address_;
  Socket listener_;
  std::uint16_t port_ = 0;
  std::atomic<bool> stopping_ = false;
  std::atomic<std::size_t> accepted_ = 0;
  mutable std::mutex mutex_;
  std::map<std::string, Handler> routes_;
  Handler otherwise_;
  std::vector<SeenRequest> seen_;
  std::list<Connection> connections_;  // of the accepting thread until it has ended
  std::thread accepting_;
};

// A port of loopback that refuses every connection, held for the life of the object.
class ClosedPort {
 public:
  explicit ClosedPort(std::string address = "127.0.0.1");
  std::string Url(std::string_view path = "/") const;

 private:
  std::string address_;
  Socket socket_;
};

// A port of loopback whose queue is full: a connection to it is neither accepted nor refused (Windows may
// refuse it after a while).
class DeafPort {
 public:
  explicit DeafPort(std::string address = "127.0.0.1");
  std::string Url(std::string_view path = "/") const;

 private:
  std::string address_;
  Socket socket_;
  std::vector<Socket> waiting_;
};

}  // namespace support
