#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace support {
namespace {

// Settings and locks of the tests go to a folder of their own, never to the user's.
class PrivateFolders {
 public:
  PrivateFolders() {
    std::string name = (std::filesystem::temp_directory_path() / "launcher-home-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    base_ = name;
    // A test may look at them with the eyes of another user.
    using std::filesystem::perms;
    std::filesystem::permissions(base_, perms::group_exec | perms::others_exec,
                                 std::filesystem::perm_options::add);
    setenv("XDG_CONFIG_HOME", (base_ / "config").c_str(), 1);
    setenv("XDG_DATA_HOME", (base_ / "data").c_str(), 1);
    std::filesystem::create_directory(base_ / "run");
    setenv("XDG_RUNTIME_DIR", (base_ / "run").c_str(), 1);
    // The servers of the tests are on this machine.
    setenv("no_proxy", "127.0.0.0/8,localhost", 1);
  }
  ~PrivateFolders() {
    std::error_code ignored;
    std::filesystem::remove_all(base_, ignored);
  }

 private:
  std::filesystem::path base_;
};

const PrivateFolders kPrivateFolders;

}  // namespace
}  // namespace support
