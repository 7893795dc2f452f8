#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace settings {

inline constexpr const char* kGameConfigVersion = "1.0.03";
inline constexpr std::int32_t kFactoryVideoMemory = 209715200;  // bytes, 200 MB

// What the game client and the launcher agree on. The initialisers are the factory values; fields without a
// key in the file (see modGameIni.cpp) live in memory only.
struct GameConfig {
  bool RememberPassword = false;
  bool MiniMapa = true;
  bool FreqencyLag = false;
  bool Effect_Nicks = false;
  bool Effect_Die = false;
  bool Effect_Keys = false;
  bool Effect_KeysUnstored = false;  // switched off together with its neighbours
  bool Effect_Arrows = true;
  bool Effect_Time = false;
  bool Effect_Text = false;
  bool Effect_Filter = true;
  bool Effect_Clic_Spells = false;
  bool Effect_Cast_Spells = false;
  bool IntervalMessages = false;
  bool FullScreenResolution = false;
  bool Guild_Chat_OnScreen = false;
  bool Music_Activated = true;
  bool Sound_Activated = true;
  bool Sound3D_Activated = true;
  bool AmbientSounds = true;
  bool NormaliceSounds = true;
  bool InvertSounds = false;
  std::uint8_t VIDEO_MODE = 0;
  std::int32_t FPS = 100;
  std::int16_t SoundVolume = 100;  // percent
  std::int32_t MusicVolume = 100;  // percent
  std::int32_t MaxVideoMemory = kFactoryVideoMemory;
  std::string Version = kGameConfigVersion;
  std::string NameSaved;
  bool CacheMap1 = false;
  bool CacheMap2 = false;
  bool CacheMap3 = false;
  std::uint8_t MaxInterfaces = 0;
  std::uint8_t InterfaceID = 0;
  std::vector<std::string> CreditoInterfaz = std::vector<std::string>(1);  // 0 to MaxInterfaces once loaded
  bool OptimizarRendimiento = false;
  std::uint8_t ChatType = 0;

  bool operator==(const GameConfig&) const = default;
};

// Any field that has a key of its own.
using GameConfigMember =
    std::variant<bool GameConfig::*, std::uint8_t GameConfig::*, std::int16_t GameConfig::*,
                 std::int32_t GameConfig::*, std::string GameConfig::*>;

// Volumes above 100, a frame rate of 0 and a memory below 1 byte are put right. Volumes have no lower bound.
void ClampGameConfig(GameConfig& config);

}  // namespace settings
