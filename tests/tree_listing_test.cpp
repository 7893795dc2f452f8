#include "update/tree_listing.hpp"

#include <gtest/gtest.h>

#include "base/runtime_error.hpp"
#include "support/temp_folder.hpp"

namespace {

using update::TreeListing;

TEST(TreeListing, GivesAllOfTheTreeOrWhyNotAndEndsWhenToldTo) {
  const support::TempFolder folder;
  for (int i = 0; i < 200; ++i) folder.Put("tree/" + std::to_string(i % 20) + "/" + std::to_string(i), "");
  EXPECT_EQ(TreeListing(folder / "tree").Take({}), platform::ListTree(folder / "tree"));
  try {
    TreeListing(folder / "none").Take({});
    ADD_FAILURE() << "a folder that is not there";
  } catch (const base::RuntimeError& error) {
    EXPECT_TRUE(error.Is(base::ErrorNumber::PathNotFound));
  }
  std::stop_source stop;
  stop.request_stop();
  EXPECT_LE(TreeListing(folder / "tree").Take(stop.get_token()).size(), 200u);
  const TreeListing givenUp(folder / "tree");
}

}  // namespace
