// Unpacking on a disk that is too small, and over folders that lie elsewhere.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "platform/files.hpp"
#include "support/archives.hpp"
#include "support/test_services.hpp"
#include "update/smodUnzip.hpp"

namespace {

using support::MakeZip;
using support::ZipItem;

struct NativeUnzipTest : testing::Test, support::TestServices {
  NativeUnzipTest() : TestServices("juego") { platform::MakeFolders(folders.AppPath); }

  update::Unpacked Unpack(const std::vector<ZipItem>& items) {
    folder.Put("p.zip", MakeZip(items));
    return update::smodUnzip(services).Unzip(folder / "p.zip", folders.AppPath);
  }
  void ExpectFull(const update::Unpacked& unpacked, int least, int most) {
    EXPECT_FALSE(unpacked.done);
    int megabytes = 0;
    char unit[3] = "";
    EXPECT_EQ(std::sscanf(unpacked.reason.c_str(), "disco lleno: faltan %d %2s", &megabytes, unit), 2)
        << unpacked.reason;
    EXPECT_STREQ(unit, "MB");
    EXPECT_TRUE(megabytes >= least && megabytes <= most) << megabytes;
    EXPECT_TRUE(host.dialogs.shown.empty());
    EXPECT_TRUE(platform::ListFolder(folder / "juego/RECURSOS/INIT/UPDATE/Unzip").empty());
    EXPECT_EQ(folder.Get("juego/a"), "viejo");
    EXPECT_FALSE(folder.Has("juego/b"));
  }
};

class SmallVolume {
 public:
  explicit SmallVolume(const std::string& path) : path_(path) {
    mounted = mount("tmpfs", path.c_str(), "tmpfs", 0, "size=3m") == 0;
  }
  ~SmallVolume() {
    if (mounted) umount2(path_.c_str(), MNT_DETACH);
  }
  SmallVolume(const SmallVolume&) = delete;
  bool mounted = false;

 private:
  const std::string path_;
};

TEST_F(NativeUnzipTest, TheFreeSpaceIsAskedBeforeAnythingIsWritten) {
  const SmallVolume volume(folders.AppPath);
  if (!volume.mounted) GTEST_SKIP() << "mounting a small volume takes the rights of root";
  folder.Put("juego/a", "viejo");
  ExpectFull(Unpack({{"a", "nuevo"}, {"b", std::string(10 << 20, 'b')}}), 7, 9);
}

// The limit for a single file stands for the disk that fills while others write to it too.
TEST_F(NativeUnzipTest, ADiskThatFillsOnTheWayChangesNothing) {
  folder.Put("juego/a", "viejo");
  const std::vector<ZipItem> items = {{"a", "nuevo"}, {"b", std::string(3 << 20, 'b')}};
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1 << 20, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const update::Unpacked unpacked = Unpack(items);
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  ExpectFull(unpacked, 1, 1);
}

TEST_F(NativeUnzipTest, AFolderOnAnotherVolumeLeavesAllAsItWas) {
  const std::string elsewhere = "/dev/shm/launcher-test-" + platform::FileNameOf(folder.Path());
  struct stat here {
  }, there{};
  if (stat(folder.Path().c_str(), &here) != 0 || stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev)
    GTEST_SKIP() << "there is no second volume";
  platform::MakeFolders(elsewhere);
  folder.Put("juego/a", "viejo");
  std::filesystem::create_directory_symlink(elsewhere, folder / "juego/fuera");
  const update::Unpacked unpacked = Unpack({{"a", "nuevo"}, {"n/c", "c"}, {"fuera/b", "nuevo"}});
  platform::RemoveTree(elsewhere);
  EXPECT_FALSE(unpacked.done);
  EXPECT_EQ(unpacked.reason, "no se pudo reemplazar fuera/b: no es accesible o está en otra unidad");
  EXPECT_EQ(folder.Get("juego/a"), "viejo");
  EXPECT_FALSE(folder.Has("juego/n"));
  EXPECT_TRUE(platform::ListFolder(folder / "juego/RECURSOS/INIT/UPDATE/Unzip").empty());
}

// A link of the player's own to a folder of the same volume is written through.
TEST_F(NativeUnzipTest, ALinkedFolderIsWrittenThrough) {
  folder.Put("aparte/a", "viejo");
  std::filesystem::create_directory_symlink(folder / "aparte", folder / "juego/enlace");
  EXPECT_TRUE(Unpack({{"enlace/a", "nuevo"}, {"enlace/b", "nuevo", false, 1 << 11, 8, 0100755}}).done);
  EXPECT_EQ(folder.Get("aparte/a"), "nuevo");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "juego/enlace"));
  struct stat status {};
  ASSERT_EQ(stat((folder / "aparte/b").c_str(), &status), 0);
  EXPECT_TRUE(status.st_mode & S_IXUSR) << "what is marked as a program may be run";
}

}  // namespace
