#include "host/base/child_process.h"
#include "host/set/disc_image.h"

#include "tests/support/files.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tavenhall::test {

namespace {

const std::string kTop = "/Users/tester/Tree";

void makeTree() {
  writeFile(kTop + "/Folder one/file one", "12345");
  writeFile(kTop + "/.hidden/file", "1");
  std::filesystem::create_symlink("Folder one", kTop + "/to folder");
  std::filesystem::create_symlink("Folder one/file one", kTop + "/to file");
  std::filesystem::create_symlink("to file", kTop + "/to link");
  std::filesystem::create_symlink("nothing", kTop + "/broken");
  std::filesystem::permissions(kTop + "/Folder one/file one", std::filesystem::perms(0750));
  ASSERT_EQ(mkfifo((kTop + "/pipe").c_str(), 0600), 0);
}

std::string describe(const SourceTree& tree) {
  static const char* const kKinds[] = {"file",           "folder",      "link to file",
                                       "link to folder", "broken link", "other"};
  std::string text;
  for (const TreeEntry& entry : tree.entries()) {
    text += entry.path + ": " + kKinds[static_cast<int>(entry.kind)] + " " + std::to_string(entry.size) +
            (entry.isHidden ? " hidden" : "") + "\n";
  }
  return text;
}

constexpr const char* kDescription =
    ".hidden: folder 0 hidden\n"
    ".hidden/file: file 1 hidden\n"
    "Folder one: folder 0\n"
    "Folder one/file one: file 5\n"
    "broken: broken link 0\n"
    "pipe: other 0\n"
    "to file: link to file 5\n"
    "to folder: link to folder 0\n"
    "to link: link to file 5\n";

}  // namespace

TEST(SourceTree, DescribesAFolder) {
  makeTree();
  EXPECT_EQ(describe(SourceTree::ofFolder(kTop)), kDescription);
}

TEST(SourceTree, DescribesAnImageOfAFolderAlike) {
  makeTree();
  const std::string image = "/Users/tester/tree.squashfs";
  ASSERT_EQ(std::system(("mksquashfs " + kTop + " " + image + " -quiet -no-progress >/dev/null 2>&1").c_str()),
            0);
  const std::optional<SourceTree> tree = treeOfImage(image);
  ASSERT_TRUE(tree.has_value());
  EXPECT_EQ(describe(*tree), kDescription);
  ASSERT_NE(tree->find("Folder one/file one"), nullptr);
  EXPECT_EQ(tree->find("Folder one/file one")->permissions, 0750U);
}

TEST(SourceTree, DescribesNothingOfAFolderThatIsNone) {
  EXPECT_TRUE(SourceTree::ofFolder("/Users/tester/nothing").entries().empty());
}

TEST(SourceTree, KnowsWhatALinkOfAListingLeadsTo) {
  const SourceTree tree = treeOfSquashfsListing(
      "drwxr-xr-x 0/0                      74 2026-01-21 05:26 squashfs-root\n"
      "drwxr-xr-x 0/0                      74 2026-01-21 05:26 squashfs-root/a\n"
      "-rwsr-x--T 0/0                     745 2026-01-21 05:26 squashfs-root/a/file -> name\n"
      "lrwxrwxrwx 0/0                       4 2026-01-21 05:26 squashfs-root/a/up -> ../b\n"
      "lrwxrwxrwx 0/0                       4 2026-01-21 05:26 squashfs-root/outside -> ../b\n"
      "lrwxrwxrwx 0/0                       4 2026-01-21 05:26 squashfs-root/absolute -> /a\n"
      "lrwxrwxrwx 0/0                       4 2026-01-21 05:26 squashfs-root/itself -> itself\n"
      "-rw-r--r-- 0/0                       7 2026-01-21 05:26 squashfs-root/b\n"
      "\n"
      "12 inodes (12 blocks) to write\n");
  EXPECT_EQ(describe(tree),
            "a: folder 0\n"
            "a/file -> name: file 745\n"
            "a/up: link to file 7\n"
            "absolute: broken link 0\n"
            "b: file 7\n"
            "itself: broken link 0\n"
            "outside: broken link 0\n");
  EXPECT_EQ(tree.find("a/file -> name")->permissions, 0750U);
}

TEST(SourceTree, ShowsWhatIsBelowAFolder) {
  makeTree();
  const SourceTree tree = SourceTree::ofFolder(kTop);
  EXPECT_EQ(describe(tree.below("Folder one")), "file one: file 5\n");
  EXPECT_EQ(describe(tree.below(".hidden")), "file: file 1\n");
}

TEST(SourceTree, ABrokenLinkIsNotThere) {
  makeTree();
  const SourceTree tree = SourceTree::ofFolder(kTop);
  EXPECT_TRUE(tree.exists("to folder"));
  EXPECT_FALSE(tree.exists("broken"));
  EXPECT_FALSE(tree.exists("Folder"));
}

TEST(ToolOutput, IsWhatTheToolPrints) {
  EXPECT_EQ(outputOfTool({"printf", "%s-%s", "a b", "$HOME"}), "a b-$HOME");
}

TEST(ToolOutput, IsNoneOfAToolThatFailsOrIsNotThere) {
  EXPECT_FALSE(outputOfTool({"false"}).has_value());
  EXPECT_FALSE(outputOfTool({"no-tool-of-this-name"}).has_value());
}

}  // namespace tavenhall::test
