#include "publisher/signer.hpp"

#include <algorithm>
#include <ctime>

#include "base/base64.hpp"
#include "platform/files.hpp"
#include "platform/signature.hpp"
#include "publisher/failure.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/parallel.hpp"
#include "publisher/published_index.hpp"
#include "publisher/signing_key.hpp"
#include "publisher/source_files.hpp"
#include "publisher/update_list.hpp"

namespace publisher {
namespace {

constexpr std::uint64_t kLargestSigned = 64u << 20;
constexpr std::int64_t kDay = 24 * 3600, kUsualDays = 90;

// The names of everything that a launcher fetches to install or to heal a game.
std::vector<std::string> NamesToSign(const Layout& layout, const std::vector<int>& counts) {
  std::vector<std::string> wanted = {names::kIndex};
  for (std::size_t i = 0; i < counts.size(); ++i) {
    for (int n = 1; n <= counts[i]; ++n) wanted.push_back(names::Patch(update::kCategories[i], n));
  }
  for (const auto& [inBin, digest] : PublishedDigests(layout)) {
    if (!digest.empty()) wanted.push_back(names::Packed(inBin));
  }
  if (platform::IsFile(layout.Client())) wanted.push_back(names::kClient);
  return wanted;
}

// What a publication holds now, without version and times.
update::SignedFile ContentToSign(const Layout& layout, Console& console) {
  const std::vector<int> counts = NewestPatches(layout);
  const std::vector<std::string> wanted = NamesToSign(layout, counts);
  std::uint64_t total = 0;
  for (const std::string& name : wanted) {
    if (!platform::IsFile(layout.At(name))) throw Failure(layout.At(name) + ": it is missing");
    total += SizeOf(layout.At(name));
  }
  std::vector<update::SignedFile::File> files(wanted.size());
  {
    Progress progress(console, "taking digests", total);
    ForEachParallel(wanted.size(), [&](std::size_t i) {
      const std::string path = layout.At(wanted[i]);
      files[i] = {Sha256Of(path), SizeOf(path)};
      progress.Add(files[i].size);
    });
  }
  update::SignedFile content;
  std::copy(counts.begin(), counts.end(), content.counts.begin());
  for (std::size_t i = 0; i < wanted.size(); ++i) content.files.emplace(wanted[i], files[i]);
  return content;
}

void RequirePublicKey(const std::string& text) {
  const auto key = base::FromBase64(text);
  if (text.empty() || (key && platform::IsPublicKey(*key))) return;
  throw Failure("--next-key: \"" + text + "\" is no public key as \"publisher keygen\" prints them");
}

// Of the signed file that is to be replaced; 0 when there is none or it is no good.
std::uint64_t VersionOf(const Layout& layout, Console& console) try {
  const auto file = ReadSigned(layout);
  return file ? file->version : 0;
} catch (const Failure& failure) {
  console.err << "warning: " << failure.what() << "; it is replaced\n";
  return 0;
}

}  // namespace

std::int64_t ExpiryOf(const std::string& day, std::int64_t now) {
  if (day.empty()) return (now / kDay + kUsualDays) * kDay + kDay - 1;
  const auto start = update::FromUtcText(day + "T23:59:59Z");
  if (!start) throw Failure("--expires: \"" + day + "\" is no day like 2027-01-31");
  return *start;
}

std::optional<update::SignedFile> ReadSigned(const Layout& layout) {
  const std::string path = layout.At(names::kSigned);
  if (!platform::IsFile(path)) return std::nullopt;
  const std::string text = Naming(path, [&] { return platform::ReadWhole(path, kLargestSigned); });
  const auto split = update::SplitSigned(text);
  auto file = split ? update::ParseSignedBody(split->body) : std::nullopt;
  if (!file) throw Failure(path + ": it is no signed file");
  return file;
}

void WarnOfSignature(const Layout& layout, Console& console) {
  const std::string path = layout.At(names::kSigned);
  if (!platform::IsFile(path)) return;
  console.err << "warning: " << path
              << ": it no longer vouches for what is there (\"publisher sign\" makes it anew)\n";
}

Signature MakeSignature(const Layout& layout, const Layout& previous, const Signing& signing,
                        Console& console) {
  const SigningKey key(signing.keyFile);
  const std::int64_t now = std::time(nullptr);
  const std::int64_t expires = ExpiryOf(signing.expires, now);
  RequirePublicKey(signing.nextKey);
  // By the clock, so that it rises even where the file before was lost.
  const std::uint64_t version = std::max(static_cast<std::uint64_t>(now), VersionOf(previous, console) + 1);
  if (expires < now) console.err << "warning: " << layout.At(names::kSigned) << ": it has expired already\n";
  update::SignedFile file = ContentToSign(layout, console);
  file.version = version;
  file.signedAt = now;
  file.expires = expires;
  file.nextKey = signing.nextKey;
  const std::string body = update::SignedBody(file);
  return {std::move(file), base::Base64(key.Sign(body)) + "\n" + body};
}

std::string WordsOf(const Layout& layout, const update::SignedFile& file) {
  return layout.At(names::kSigned) + ": version " + std::to_string(file.version) + ", " +
         std::to_string(file.files.size()) + " files, until " + update::UtcText(file.expires);
}

}  // namespace publisher
