#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>

#include "base/text.hpp"
#include "base/unique_handle.hpp"
#include "base/url.hpp"
#include "platform/machine.hpp"
#include "platform/posix/speed_watch.hpp"

namespace platform {
namespace {

using SteadyClock = SpeedWatch::Clock;
using std::chrono::milliseconds;

constexpr int kMostRedirects = 10;
constexpr std::size_t kMostIdle = 4;              // sessions kept with their connections
constexpr std::size_t kLargestHead = 128 * 1024;  // bytes of all header lines of one answer
constexpr int kProxyRefuses = 407;

struct EasyTraits : base::NullIsNone<CURL*> {
  static void Close(CURL* easy) { curl_easy_cleanup(easy); }
};
struct MultiTraits : base::NullIsNone<CURLM*> {
  static void Close(CURLM* multi) { curl_multi_cleanup(multi); }
};
struct ListTraits : base::NullIsNone<curl_slist*> {
  static void Close(curl_slist* list) { curl_slist_free_all(list); }
};

// One transfer at a time; the multi handle owns the connections that are used again.
struct Session {
  base::UniqueHandle<MultiTraits> multi{curl_multi_init()};
  base::UniqueHandle<EasyTraits> easy{curl_easy_init()};
};

bool IsRedirect(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

struct UrlTraits : base::NullIsNone<CURLU*> {
  static void Close(CURLU* url) { curl_url_cleanup(url); }
};
struct TextTraits : base::NullIsNone<char*> {
  static void Close(char* text) { curl_free(text); }
};

// `location` as seen from `base`; as it stands when that makes no address.
std::string Absolute(const std::string& base, const std::string& location) {
  const base::UniqueHandle<UrlTraits> url(curl_url());
  constexpr unsigned kFlags = CURLU_URLENCODE | CURLU_NON_SUPPORT_SCHEME;
  char* text = nullptr;
  if (curl_url_set(url.get(), CURLUPART_URL, base.c_str(), kFlags) != CURLUE_OK ||
      curl_url_set(url.get(), CURLUPART_URL, location.c_str(), kFlags) != CURLUE_OK ||
      curl_url_get(url.get(), CURLUPART_URL, &text, 0) != CURLUE_OK) {
    return location;
  }
  return base::UniqueHandle<TextTraits>(text).get();
}

HttpError ErrorOf(CURLcode code) {
  switch (code) {
    case CURLE_OK:
      return HttpError::None;
    case CURLE_URL_MALFORMAT:
      return HttpError::BadUrl;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_LOGIN_DENIED:        // of a proxy, see ProxyRefused
    case CURLE_OPERATION_TIMEDOUT:  // the only limit that is left to the library is the one of connecting
      return HttpError::CannotConnect;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
      return HttpError::Insecure;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
      return HttpError::CutShort;
    default:
      return HttpError::Other;
  }
}

// One request and its answer: what the library's callbacks work on.
class Exchange {
 public:
  Exchange(Session& session, const HttpRequest& request, HttpSink& sink, std::stop_token stop)
      : easy_(session.easy.get()),
        multi_(session.multi.get()),
        sink_(sink),
        stop_(std::move(stop)),
        watch_(milliseconds(request.stallLimitMs)),
        deadline_(request.wholeLimitMs == 0 ? SteadyClock::time_point::max()
                                            : SteadyClock::now() + milliseconds(request.wholeLimitMs)) {
    SetUp(request);
  }
  ~Exchange() {
    if (added_) curl_multi_remove_handle(multi_, easy_);
    curl_easy_reset(easy_);
  }
  Exchange(const Exchange&) = delete;

  // Fetches one address; `redirect` is where the answer leads, empty when it was given to the sink.
  HttpOutcome Fetch(const std::string& url, std::string& redirect) {
    head_ = {};
    headBytes_ = 0;
    headDone_ = false;
    discarding_ = redirecting_ = refused_ = false;
    libraryError_ = CURLE_OK;
    libraryText_.fill('\0');
    curl_easy_setopt(easy_, CURLOPT_URL, url.c_str());
    const HttpError error = Perform();
    if (failure_) std::rethrow_exception(failure_);
    if (redirecting_ && error != HttpError::Cancelled && error != HttpError::Stalled) {
      redirect = Absolute(url, head_.Header("location"));
      return {HttpError::None, head_.status};
    }
    HttpOutcome outcome = Told(error);
    if (error == HttpError::None && !headDone_) outcome.error = HttpError::Other;
    return outcome;
  }

 private:
  template <class Value>
  void Set(CURLoption option, Value value) {
    curl_easy_setopt(easy_, option, value);
  }

  void SetUp(const HttpRequest& request) {
    for (const auto& [name, value] : request.headers) {
      curl_slist* longer = curl_slist_append(headers_.get(), (name + ": " + value).c_str());
      if (!longer) throw std::bad_alloc();
      headers_.release();
      headers_.reset(longer);
    }
    Set(CURLOPT_HTTPHEADER, headers_.get());
    Set(CURLOPT_ERRORBUFFER, libraryText_.data());
    Set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    Set(CURLOPT_USERAGENT, "KelvarinLauncher/" LAUNCHER_VERSION);
    Set(CURLOPT_PROTOCOLS_STR, "http,https");
    Set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    Set(CURLOPT_NOSIGNAL, 1L);
    Set(CURLOPT_QUICK_EXIT, 1L);  // a cancelled look-up of a name is not waited for
    Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request.connectLimitMs));
    // The certificates that the system trusts, or those that the user names as for other programs.
    if (const char* trusted = std::getenv("SSL_CERT_FILE")) Set(CURLOPT_CAINFO, trusted);
    Set(CURLOPT_PREREQFUNCTION, &Exchange::OnConnected);
    Set(CURLOPT_PREREQDATA, this);
    Set(CURLOPT_HEADERFUNCTION, &Exchange::OnHeader);
    Set(CURLOPT_HEADERDATA, this);
    Set(CURLOPT_WRITEFUNCTION, &Exchange::OnBody);
    Set(CURLOPT_WRITEDATA, this);
  }

  HttpError Perform() {
    const std::stop_callback wakeUp(stop_, [this] { curl_multi_wakeup(multi_); });
    watch_.Stop();
    if (curl_multi_add_handle(multi_, easy_) != CURLM_OK) return HttpError::Other;
    added_ = true;
    const HttpError error = Drive();
    curl_multi_remove_handle(multi_, easy_);
    added_ = false;
    return error;
  }

  HttpError Drive() {
    for (;;) {
      int running = 0;
      if (curl_multi_perform(multi_, &running) != CURLM_OK) return HttpError::Other;
      if (stop_.stop_requested()) return HttpError::Cancelled;
      if (running == 0) return Result();
      const auto now = SteadyClock::now();
      if (watch_.TooSlow() || now >= deadline_) return HttpError::Stalled;
      const auto left = std::chrono::ceil<milliseconds>(std::min<SteadyClock::duration>(
          deadline_ - now, std::min<SteadyClock::duration>(watch_.Slice(), std::chrono::seconds(1))));
      curl_multi_poll(multi_, nullptr, 0, static_cast<int>(left.count()), nullptr);
    }
  }

  HttpError Result() {
    int queued = 0;
    const CURLMsg* message = curl_multi_info_read(multi_, &queued);
    if (!message || message->msg != CURLMSG_DONE) return HttpError::Other;
    if (refused_ && !ProxyRefused()) return HttpError::Refused;
    libraryError_ = ProxyRefused() ? CURLE_LOGIN_DENIED : message->data.result;
    return ErrorOf(libraryError_);
  }

  // Whether a proxy wanted to know who asks, be it for a page or for a tunnel to a secure host.
  bool ProxyRefused() const {
    long tunnel = 0;
    curl_easy_getinfo(easy_, CURLINFO_HTTP_CONNECTCODE, &tunnel);
    return tunnel == kProxyRefuses || head_.status == kProxyRefuses;
  }

  // `error` together with what the library said of it.
  HttpOutcome Told(HttpError error) const {
    HttpOutcome outcome{error, head_.status};
    if (error == HttpError::None || libraryError_ == CURLE_OK) return outcome;
    if (libraryError_ == CURLE_LOGIN_DENIED) outcome.status = kProxyRefuses;
    outcome.systemError = static_cast<std::uint32_t>(libraryError_);
    outcome.systemText =
        libraryText_.front() != '\0' ? libraryText_.data() : curl_easy_strerror(libraryError_);
    return outcome;
  }

  // Runs what the sink does; an exception must not travel through the library's C frames.
  template <class Call>
  bool Guarded(Call call) {
    try {
      return call();
    } catch (...) {
      failure_ = std::current_exception();
      return false;
    }
  }

  static int OnConnected(void* self, char*, char*, int, int) {
    static_cast<Exchange*>(self)->watch_.Start();
    return CURL_PREREQFUNC_OK;
  }

  static std::size_t OnHeader(char* data, std::size_t, std::size_t size, void* self) {
    Exchange& exchange = *static_cast<Exchange*>(self);
    exchange.watch_.Count(size);
    return exchange.Guarded([&] { return exchange.TakeHeader({data, size}); }) ? size : 0;
  }

  static std::size_t OnBody(char* data, std::size_t, std::size_t size, void* self) {
    Exchange& exchange = *static_cast<Exchange*>(self);
    exchange.watch_.Count(size);
    return exchange.Guarded([&] { return exchange.TakeBody({data, size}); }) ? size : 0;
  }

  bool TakeHeader(std::string_view line) {
    headBytes_ += line.size();
    if (headBytes_ > kLargestHead) return false;
    if (headDone_) return true;  // a trailer behind the body
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.remove_suffix(1);
    if (line.empty()) return HeadComplete();
    if (line.starts_with("HTTP/")) {
      head_ = {};
      return true;
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return true;
    head_.headers.emplace_back(base::Lower(line.substr(0, colon)), base::Trim(line.substr(colon + 1)));
    return true;
  }

  bool HeadComplete() {
    long status = 0;
    curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
    if (status < 200) return true;  // the true answer follows
    head_.status = static_cast<int>(status);
    headDone_ = true;
    const std::string length = head_.Header("content-length");
    std::uint64_t announced = 0;
    const auto [end, error] = std::from_chars(length.data(), length.data() + length.size(), announced);
    if (error == std::errc{} && end == length.data() + length.size()) head_.contentLength = announced;
    redirecting_ = IsRedirect(head_.status) && !head_.Header("location").empty();
    discarding_ = redirecting_ || head_.status == kProxyRefuses;
    if (!discarding_) sink_.Begin(head_);
    return true;
  }

  // The page of a redirect, or of a proxy, is thrown away, a long one with its connection.
  bool TakeBody(std::span<const char> bytes) {
    if (discarding_) {
      headBytes_ += bytes.size();
      refused_ = headBytes_ > kLargestHead;
    } else {
      refused_ = !sink_.Write(std::as_bytes(bytes));
    }
    return !refused_;
  }

  CURL* easy_;
  CURLM* multi_;
  HttpSink& sink_;
  std::stop_token stop_;
  SpeedWatch watch_;
  SteadyClock::time_point deadline_;
  base::UniqueHandle<ListTraits> headers_;
  HttpHead head_;
  std::size_t headBytes_ = 0;
  std::exception_ptr failure_;
  CURLcode libraryError_ = CURLE_OK;
  std::array<char, CURL_ERROR_SIZE> libraryText_{};  // the library's own words, more exact than its number
  bool headDone_ = false, discarding_ = false, redirecting_ = false, refused_ = false, added_ = false;
};

class CurlHttpClient : public HttpClient {
 public:
  CurlHttpClient() {
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    static_cast<void>(started);
    // A peer that closes while a secure channel is being written would end the whole program otherwise.
    std::signal(SIGPIPE, SIG_IGN);
  }

  HttpOutcome Get(const HttpRequest& request, HttpSink& sink, std::stop_token stop) override {
    std::string url = base::ResolvedUrl(request.url);
    if (url.empty()) return {HttpError::BadUrl};
    const Lent lent(*this);
    Exchange exchange(*lent.session, request, sink, std::move(stop));
    HttpOutcome outcome;
    for (int followed = 0; followed <= kMostRedirects; ++followed) {
      std::string redirect;
      outcome = exchange.Fetch(url, redirect);
      if (redirect.empty()) return outcome;
      if (!base::RedirectAllowed(url, redirect)) break;
      url = base::ResolvedUrl(redirect);
    }
    return {HttpError::RefusedRedirect, outcome.status};
  }

 private:
  // A session taken out of the pool for one request.
  struct Lent {
    explicit Lent(CurlHttpClient& owner) : client(owner), session(owner.Take()) {}
    ~Lent() { client.GiveBack(std::move(session)); }
    Lent(const Lent&) = delete;
    CurlHttpClient& client;
    std::unique_ptr<Session> session;
  };

  std::unique_ptr<Session> Take() {
    const std::lock_guard lock(mutex_);
    if (idle_.empty()) return std::make_unique<Session>();
    std::unique_ptr<Session> session = std::move(idle_.back());
    idle_.pop_back();
    return session;
  }

  void GiveBack(std::unique_ptr<Session> session) {
    const std::lock_guard lock(mutex_);
    if (idle_.size() < kMostIdle) idle_.push_back(std::move(session));
  }

  std::mutex mutex_;
  std::vector<std::unique_ptr<Session>> idle_;
};

}  // namespace

std::unique_ptr<HttpClient> MakeHttpClient() { return std::make_unique<CurlHttpClient>(); }

}  // namespace platform
