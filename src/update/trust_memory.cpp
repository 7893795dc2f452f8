#include "update/trust_memory.hpp"

#include <charconv>
#include <random>

#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "startup/launcher_settings.hpp"
#include "util/sha256.hpp"

namespace update {
namespace {

namespace keys = startup::keys;

constexpr const char *kCurrent = "Key", *kNext = "NextKey", *kSecret = "Secret", *kNewest = "Newest";
constexpr std::size_t kNameDigits = 16;
constexpr int kSecretWords = 8;

// Stands for a long text in the name of a value.
std::string ShortNameOf(std::string_view text) { return util::Sha256(text).substr(0, kNameDigits); }

std::string FreshSecret() {
  std::random_device random;
  std::string secret;
  for (int i = 0; i < kSecretWords; ++i) secret += std::to_string(random()) + " ";
  return util::Sha256(secret);
}

}  // namespace

TrustMemory::TrustMemory(platform::SettingsStore& settings, const startup::Folders& folders)
    : settings_(settings), folders_(folders) {}

// Windows names one folder in any case.
std::string TrustMemory::OfFolder(const char* name) const {
  return ShortNameOf(base::UpperLatin(folders_.AppPath)) + name;
}

std::string TrustMemory::Get(const std::string& name) const {
  return settings_.Get(keys::kApplication, keys::kTrust, name);
}

void TrustMemory::Set(const std::string& name, const std::string& value) {
  if (Get(name) != value) settings_.Set(keys::kApplication, keys::kTrust, name, value);
}

TrustMemory::Keys TrustMemory::KeysInUse() const { return {Get(OfFolder(kCurrent)), Get(OfFolder(kNext))}; }

void TrustMemory::Remember(const Keys& keys) {
  Set(OfFolder(kNext), keys.next);
  Set(OfFolder(kCurrent), keys.current);
}

std::optional<TrustMemory::Publication> TrustMemory::NewestUnder(const std::string& key) const {
  const std::string text = Get(ShortNameOf(key) + kNewest);
  Publication newest;
  const char* const end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, newest.version);
  if (error != std::errc{} || at == end || *at != ' ') return std::nullopt;
  newest.digest.assign(at + 1, end);
  return newest;
}

void TrustMemory::Remember(const std::string& key, const Publication& publication) {
  Set(ShortNameOf(key) + kNewest, std::to_string(publication.version) + " " + publication.digest);
}

std::string TrustMemory::Secret() {
  if (const std::string kept = Get(OfFolder(kSecret)); !kept.empty()) return kept;
  const std::string secret = FreshSecret();
  try {
    Set(OfFolder(kSecret), secret);
  } catch (const base::RuntimeError&) {
    return {};
  }
  return secret;
}

}  // namespace update
