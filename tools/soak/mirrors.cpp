#include "soak/mirrors.hpp"

#include <algorithm>
#include <functional>
#include <span>

#include "base/text.hpp"
#include "support/archives.hpp"

namespace soak {
namespace {

using support::Answer;

constexpr int kEntries = 7, kAnswering = 4;
constexpr double kLeastBadness = 0.05, kMostBadness = 0.6, kSilent = 0.4, kProbeFails = 0.5;
constexpr const char *kProbe = "Online.txt", *kSigned = "Signed.txt";
constexpr std::string_view kPlaces[] = {"/files/update/kvn2011/", "/update/kvn2011/"};

std::string Unescaped(std::string_view path) {
  std::string text;
  for (std::size_t i = 0; i < path.size(); ++i) {
    const bool escaped = path[i] == '%' && i + 2 < path.size();
    text += escaped ? static_cast<char>(std::stoi(std::string(path.substr(i + 1, 2)), nullptr, 16)) : path[i];
    if (escaped) i += 2;
  }
  return text;
}

bool IsPiece(const std::string& name) { return name.ends_with(".zip") || name.starts_with("NewAct2/Bin/"); }

// As web servers serve files: with a strong tag and ranges.
Answer Whole(const std::string& body, const support::SeenRequest& request) {
  const std::string tag = "\"" + support::Md5Of(body) + "\"";
  Answer answer{.headers = {{"ETag", tag}, {"Accept-Ranges", "bytes"}}, .body = body};
  const std::string range = request.Header("range");
  if (!range.starts_with("bytes=") || request.Header("if-range") != tag) return answer;
  const std::size_t from = std::stoull(range.substr(6));
  if (from >= body.size()) return support::Page(416, "beyond the end");
  answer.status = 206;
  answer.headers.emplace_back("Content-Range", "bytes " + std::to_string(from) + "-" +
                                                   std::to_string(body.size() - 1) + "/" +
                                                   std::to_string(body.size()));
  answer.body = body.substr(from);
  return answer;
}

struct Given {
  const std::string& good;
  const std::string* old;  // of the publication before, null when it is the same
  int entry;
  Dice& dice;
};

std::size_t Part(const Given& given) { return given.dice.Below(given.good.size() + 1); }
std::string PageOf(const Given& given) {
  return "<!DOCTYPE html><html><body><h1>Mantenimiento " + std::to_string(given.entry) +
         "</h1></body></html>";
}

Answer Altered(const Given& given) {
  Answer answer{.body = given.good};
  for (std::uint64_t i = 0, count = 1 + given.dice.Below(4); i < count && !given.good.empty(); ++i) {
    char& byte = answer.body[given.dice.Below(answer.body.size())];
    byte = static_cast<char>(byte ^ (1 << given.dice.Below(8)));
  }
  return answer;
}

struct Fault {
  const char* name;
  std::function<Answer(const Given&)> answer;
};

Answer PageAnswer(const Given& given) { return support::Page(200, PageOf(given)); }
Answer ErrorAnswer(const Given& given) {
  constexpr int kStatus[] = {403, 404, 500, 503};
  return support::Page(kStatus[given.dice.Below(std::size(kStatus))], PageOf(given));
}

const Fault kFaults[] = {
    {"hung up", [](const Given&) { return Answer{.cut = Answer::Cut::Reset, .pieces = {""}}; }},
    {"cut", [](const Given& given) { return support::CutShort(given.good, Part(given)); }},
    {"reset",
     [](const Given& given) { return support::CutShort(given.good, Part(given), Answer::Cut::Reset); }},
    {"altered", Altered},
    {"longer", [](const Given& given) { return Answer{.body = given.good + PageOf(given)}; }},
    {"page", PageAnswer},
    {"error", ErrorAnswer},
    {"empty", [](const Given&) { return Answer{}; }},
    {"slow",
     [](const Given& given) {
       return Answer{.body = given.good, .paceBytes = 16'384, .paceMs = 10, .waitMs = 300};
     }},
    {"old", [](const Given& given) { return given.old ? Answer{.body = *given.old} : ErrorAnswer(given); }},
};
const Fault kProbeFaults[] = {{"probe page", PageAnswer},
                              {"probe error", ErrorAnswer},
                              {"probe off", [](const Given&) { return Answer{.body = "0"}; }}};

}  // namespace

Mirrors::Mirrors(const Game& game, const Dice& dice) : game_(game), dice_(dice) {
  Dice own = dice.For("mirrors");
  badness_ = kLeastBadness + (kMostBadness - kLeastBadness) * static_cast<double>(own.Below(101)) / 100;
  silenceLeft_ = own.Chance(kSilent);
  roles_.assign(kEntries, Role::Refuses);
  std::fill_n(roles_.begin(), kAnswering, Role::Answers);
  if (own.Chance(kProbeFails)) roles_[kAnswering] = Role::FailsProbe;
  for (std::size_t i = roles_.size() - 1; i > 0; --i) std::swap(roles_[i], roles_[own.Below(i + 1)]);
  for (int entry = 0; entry < kEntries; ++entry) {
    const std::string_view place = kPlaces[entry == 1 || entry == 4 ? 0 : 1];
    const Role role = roles_[static_cast<std::size_t>(entry)];
    if (role == Role::Refuses) {
      addresses_.push_back(closed_.emplace_back().Url(place));
      continue;
    }
    if (role == Role::Answers) answering_.push_back(entry);
    support::FaultyServer& server = servers_.emplace_back();
    server.Otherwise([this, entry](const support::SeenRequest& request) { return AnswerOf(entry, request); });
    addresses_.push_back(server.Url(place));
  }
}

std::string Mirrors::Site() const {
  const std::string& address = addresses_[static_cast<std::size_t>(answering_.front())];
  return address.substr(0, address.find('/', 8));
}

std::map<std::string, int> Mirrors::Faults() const {
  const std::lock_guard lock(mutex_);
  return faults_;
}

bool Mirrors::IsGood(int entry, const std::string& name) const {
  Dice dice = dice_.For("good").For(name).For(static_cast<std::uint64_t>(start_));
  return answering_[dice.Below(answering_.size())] == entry;
}

bool Mirrors::TakesSilence(Dice& dice) {
  const std::lock_guard lock(mutex_);
  const bool takes = silenceLeft_ && dice.Chance(0.2);
  if (takes) silenceLeft_ = false;
  return takes;
}

support::Answer Mirrors::AnswerOf(int entry, const support::SeenRequest& request) {
  const std::string path = Unescaped(request.Path());
  for (const std::string_view place : kPlaces) {
    if (path.starts_with(place)) return FileOf(entry, path.substr(place.size()), request);
  }
  const std::string script = path.substr(path.rfind('/') + 1);
  const auto found = game_.published.find("web/include/" + script);
  return found == game_.published.end() ? support::Page(404, "nothing here") : support::Text(found->second);
}

support::Answer Mirrors::FileOf(int entry, const std::string& name, const support::SeenRequest& request) {
  const auto found = game_.published.find(name);
  if (found == game_.published.end()) return support::Page(404, "nothing here");
  if (IsPiece(name)) ++fetched_;
  std::uint64_t asked;
  {
    const std::lock_guard lock(mutex_);
    asked = static_cast<std::uint64_t>(asked_[std::to_string(entry) + name]++);
  }
  Dice dice = dice_.For("fault").For(name).For(static_cast<std::uint64_t>(entry)).For(asked);
  const bool probe = name == kProbe;
  const bool spoils = probe ? roles_[static_cast<std::size_t>(entry)] == Role::FailsProbe
                            : !IsGood(entry, name) && dice.Chance(badness_);
  return spoils && !behave_ ? Spoilt(entry, name, found->second, dice) : Whole(found->second, request);
}

support::Answer Mirrors::Spoilt(int entry, const std::string& name, const std::string& good, Dice dice) {
  const auto before = game_.publishedFirst.find(name);
  const bool differs = before != game_.publishedFirst.end() && before->second != good;
  // An older publication may be taken by a launcher that has not seen the newest one yet, and rightly so.
  const bool tooEarly = name == kSigned && fetched_ == 0;
  std::string kind;
  Answer answer;
  if (TakesSilence(dice)) {
    kind = "silent";
    answer =
        dice.Chance(0.5) ? support::Silent() : support::CutShort(good, good.size() / 2, Answer::Cut::Silence);
  } else {
    const std::span<const Fault> all = name == kProbe ? std::span<const Fault>(kProbeFaults) : kFaults;
    const Fault& fault = all[dice.Below(tooEarly ? all.size() - 1 : all.size())];
    kind = fault.name;
    answer = fault.answer({good, differs ? &before->second : nullptr, entry, dice});
  }
  const std::lock_guard lock(mutex_);
  ++faults_[kind];
  return answer;
}

}  // namespace soak
