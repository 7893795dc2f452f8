#pragma once

#include <string>

// The launcher in a folder of the player's own: copied there from wherever it was unpacked, with a list of
// what was put, so that the same and nothing else can be taken away again.
namespace platform {

inline constexpr const char* kInstalledProgram = "launcher.exe";

// Copies `program` (full path; it gets the name above) and, from beside it, Deployment.ini and the pictures
// of RECURSOS\GRAFICOS into `folder`, which is made when missing. What is missing beside the program is not
// copied. Raises base::RuntimeError; what was copied until then stays, and stays listed.
void InstallInto(const std::string& program, const std::string& folder);

bool IsInstalledIn(const std::string& folder);  // whether there is a list

// Removes what InstallInto put into `folder`, and those of its folders that are empty then. A name of the
// list that leads out of the folder is passed over. False when something could not be removed.
bool RemoveInstalled(const std::string& folder);

// Removes a program that may be running just now: where a running one cannot be removed it leaves its folder
// for the one of temporary files. False when it is still there.
bool RemoveProgram(const std::string& path);

}  // namespace platform
