#include "settings/modGameIni.hpp"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/numeric.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace settings {
namespace {

constexpr const char* kSection = "INIT";
constexpr int kLineStep = 10;
constexpr const char* kCredit = "CreditoInterfaz";
constexpr const char* kOptimised = "OptimizarRendimiento";

enum class Written { AsItIs, AsTruth, Never };

struct Field {
  const char* key;
  GameConfigMember member;  // its type decides how the text of the file is read
  int place;                // among the keys written; the rows stand in reading order
  Written written = Written::AsItIs;
};

using C = GameConfig;
constexpr Field kFields[] = {
    {"IntervalMessages", &C::IntervalMessages, 0},
    {"Effect_Arrows", &C::Effect_Arrows, 1},
    {"Effect_Die", &C::Effect_Die, 2},
    {"Effect_Time", &C::Effect_Time, 3},
    {"Effect_Text", &C::Effect_Text, 4},
    {"Version", &C::Version, 5},
    {"Music_Activated", &C::Music_Activated, 6},
    {"FullScreenResolution", &C::FullScreenResolution, 7},
    {"Sound_Activated", &C::Sound_Activated, 8},
    {"Sound3D_Activated", &C::Sound3D_Activated, 9},
    {"AmbientSounds", &C::AmbientSounds, 10},
    {"NormaliceSounds", &C::NormaliceSounds, 11},
    {"InvertSounds", &C::InvertSounds, 12},
    {"SoundVolume", &C::SoundVolume, 13},
    {"MusicVolume", &C::MusicVolume, 14},
    {"VIDEO_MODE", &C::VIDEO_MODE, 15},
    {"Effect_Filter", &C::Effect_Filter, 16},
    {"Effect_Clic_Spells", &C::Effect_Clic_Spells, 17},
    {"Effect_Cast_Spells", &C::Effect_Cast_Spells, 18},
    {"Guild_Chat_OnScreen", &C::Guild_Chat_OnScreen, 19},
    {"FreqencyLag", &C::FreqencyLag, 21},
    {"MiniMapa", &C::MiniMapa, 22},
    {"Effect_Keys", &C::Effect_Keys, 23},
    {"FPS", &C::FPS, 24},
    {"MaxVideoMemory", &C::MaxVideoMemory, 25},
    {"NameSaved", &C::NameSaved, 26},
    {"RememberPassword", &C::RememberPassword, 27},
    {"Effect_Nicks", &C::Effect_Nicks, 28},
    {"CacheMap1", &C::CacheMap1, 29},
    {"CacheMap2", &C::CacheMap2, 30},
    {"CacheMap3", &C::CacheMap3, 31},
    {"ChatType", &C::ChatType, 20, Written::AsTruth},
    {"MaxInterfaces", &C::MaxInterfaces, 33},
    {"InterfaceID", &C::InterfaceID, 32},
    {kOptimised, &C::OptimizarRendimiento, -1, Written::Never},
};

constexpr std::size_t kWrittenCount = std::size(kFields) - 1;

// The rows' numbers in writing order.
constexpr std::array<std::size_t, kWrittenCount> WritingOrder() {
  constexpr std::size_t kNone = std::size(kFields);
  std::array<std::size_t, kWrittenCount> order{};
  order.fill(kNone);
  for (std::size_t i = 0; i < kNone; ++i) {
    if (kFields[i].written != Written::Never) order.at(static_cast<std::size_t>(kFields[i].place)) = i;
  }
  return order;
}
constexpr auto kWritingOrder = WritingOrder();
static_assert(std::find(kWritingOrder.begin(), kWritingOrder.end(), std::size(kFields)) ==
                  kWritingOrder.end(),
              "two fields claim one place");

void Assign(bool& field, const std::string& text) { field = base::Val(text) != 0; }
void Assign(std::uint8_t& field, const std::string& text) { field = base::ToByte(base::Val(text)); }
void Assign(std::int16_t& field, const std::string& text) { field = base::ToInt16(base::Val(text)); }
void Assign(std::int32_t& field, const std::string& text) { field = base::ToInt32(base::Val(text)); }
void Assign(std::string& field, const std::string& text) { field = text; }

std::string TruthText(bool value) { return value ? "1" : "0"; }
std::string AsWritten(bool value, Written) { return TruthText(value); }
std::string AsWritten(const std::string& value, Written) { return value; }
std::string AsWritten(std::int32_t value, Written written) {
  return written == Written::AsTruth ? TruthText(value != 0) : std::to_string(value);
}

std::string AsWritten(const GameConfig& config, const Field& field) {
  return std::visit(
      [&](auto member) {
        using Value = std::remove_cvref_t<decltype(config.*member)>;
        if constexpr (std::is_integral_v<Value> && !std::is_same_v<Value, bool>) {
          return AsWritten(std::int32_t{config.*member}, field.written);
        } else {
          return AsWritten(config.*member, field.written);
        }
      },
      field.member);
}

// The report of a failed procedure of this module.
auto Words(const char* procedure) {
  return [procedure](const startup::Failure& failure) {
    return failure.Opening() + " procedimiento " + procedure + " Módulo modGameIni línea: " + failure.Line();
  };
}

}  // namespace

void ClampGameConfig(GameConfig& config) {
  config.MusicVolume = std::min(config.MusicVolume, 100);
  config.SoundVolume = std::min(config.SoundVolume, std::int16_t{100});
  if (config.FPS == 0) config.FPS = 100;
  if (config.MaxVideoMemory < 1) config.MaxVideoMemory = kFactoryVideoMemory;
}

modGameIni::modGameIni(platform::ProfileFiles& profiles, const startup::Folders& folders,
                       startup::ErrorRecorder& recorder)
    : profiles_(profiles),
      recorder_(recorder),
      file_(folders.InitDir + "ConfigVideo.cfg"),
      own_(std::size(kFields)) {}

void modGameIni::Own(GameConfigMember field) {
  for (std::size_t i = 0; i < own_.size(); ++i) own_[i] = own_[i] || kFields[i].member == field;
}

void modGameIni::LoadGameConfig() {
  startup::Guarded(
      recorder_,
      [&](int& line) {
        own_.assign(own_.size(), false);
        ownsCredits_ = false;
        ReadFields(line);
        line += kLineStep;
        ReadCredits();
        line += kLineStep;
        config_.FreqencyLag = false;  // kept in the file, never honoured
        ClampGameConfig(config_);
        line += kLineStep;
        if (config_.Version == kGameConfigVersion) return;
        LoadDefaultGameConfig();
        if (platform::CanWriteTo(platform::FolderOf(file_))) SaveGameConfig(config_);
      },
      Words("LoadGameConfig"));
}

void modGameIni::ReadFields(int& line) {
  std::vector<std::string> keys;
  for (const Field& field : kFields) keys.emplace_back(field.key);
  const std::vector<std::string> texts = profiles_.GetVars(file_, kSection, keys);
  for (std::size_t i = 0; i < std::size(kFields); ++i) {
    line += kLineStep;  // a line for each field, so that a report tells which one the file has wrong
    std::visit([&](auto member) { Assign(config_.*member, texts[i]); }, kFields[i].member);
    own_[i] = true;
  }
}

void modGameIni::ReadCredits() {
  ownsCredits_ = true;
  config_.CreditoInterfaz.assign(1, "");
  if (config_.MaxInterfaces == 0) return;
  std::vector<std::string> keys;
  for (int i = 0; i <= config_.MaxInterfaces; ++i) keys.push_back(kCredit + std::to_string(i));
  config_.CreditoInterfaz = profiles_.GetVars(file_, kSection, keys);
}

void modGameIni::LoadDefaultGameConfig() {
  startup::Guarded(
      recorder_,
      [&](int& line) {
        line = 10;
        GameConfig factory;
        factory.RememberPassword = config_.RememberPassword;
        factory.CreditoInterfaz = std::move(config_.CreditoInterfaz);
        if (factory.CreditoInterfaz.empty()) factory.CreditoInterfaz.resize(1);
        factory.CreditoInterfaz.front().clear();
        config_ = std::move(factory);
        own_.assign(own_.size(), true);
        ownsCredits_ = true;
        line = 20;
        ClampGameConfig(config_);
      },
      Words("LoadDefaultGameConfig"));
}

void modGameIni::SaveGameConfig(const GameConfig& config) {
  startup::Guarded(
      recorder_,
      [&](int& line) {
        line = 10;
        std::vector<platform::ProfileFiles::Entry> entries;
        for (const std::size_t i : kWritingOrder) {
          if (own_[i]) entries.emplace_back(kFields[i].key, AsWritten(config, kFields[i]));
        }
        line = 20;
        const std::size_t held =
            ownsCredits_ ? std::min(config.CreditoInterfaz.size(), std::size_t{config.MaxInterfaces} + 1) : 0;
        for (std::size_t i = 0; i < held; ++i) {
          entries.emplace_back(kCredit + std::to_string(i), config.CreditoInterfaz[i]);
        }
        line = 30;
        profiles_.WriteVars(file_, kSection, entries);
      },
      Words("SaveGameConfig"));
}

void modGameIni::SaveOptimizarRendimiento() {
  profiles_.WriteVar(file_, kSection, kOptimised, TruthText(config_.OptimizarRendimiento));
}

}  // namespace settings
