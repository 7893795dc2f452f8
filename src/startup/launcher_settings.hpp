#pragma once

// Names of the launcher's values in the per-user settings store: application / section / key.
namespace startup::keys {

inline constexpr const char* kApplication = "KVN_UPDATER";
inline constexpr const char* kConfig = "CONFIG";
inline constexpr const char* kShow = "SHOW";        // "1": another start asks this one to show itself
inline constexpr const char* kLastUrl = "LASTURL";  // the mirror that last answered
inline constexpr const char* kUrlWeb = "URLWEB";    // the same, as the base of the web scripts
inline constexpr const char* kUrl = "URL";
inline constexpr const char* kTrust = "TRUST";  // what signatures were accepted (update/trust_memory.hpp)

inline constexpr const char* kLibraries = "KVNLibrerias";  // Version / V: the library set last checked
inline constexpr const char* kVersion = "Version";
inline constexpr const char* kV = "V";

inline constexpr const char* kOpen = "OPEN";  // F / A: launch stamp
inline constexpr const char* kF = "F";
inline constexpr const char* kA = "A";

inline constexpr const char* kStaff = "PW";  // section and key of the staff marker

}  // namespace startup::keys
