#include "platform/linux/informing/HelpPages.h"

#include <gtest/gtest.h>
#include <filesystem>

#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class HelpPagesTest : public ::testing::Test {
 protected:
  FileURL write(const std::string& name) const {
    const FileURL file = folder.file(name);
    std::filesystem::create_directories(file.parent().path());
    testing::writeFile(file, "page");
    return file;
  }
  testing::TemporaryFolder folder;
  HelpPages pages = HelpPages::besides(folder.file("prefix/bin"));
};

TEST_F(HelpPagesTest, WithoutHelpThereIsNoPage) {
  EXPECT_EQ(pages.page(HelpAnchor::contents), std::nullopt);
}

TEST_F(HelpPagesTest, OfAnInstallationTheyStandBelowTheSamePrefix) {
  const FileURL index = write("prefix/share/quillmere/help/index.html");
  EXPECT_EQ(pages.page(HelpAnchor::contents), index);
  EXPECT_EQ(pages.page(HelpAnchor::troubleshooting), std::nullopt) << "no other page in its place";
}

TEST_F(HelpPagesTest, OfABuildTheyStandBesideTheProgram) {
  const FileURL index = write("prefix/bin/help/index.html");
  EXPECT_EQ(pages.page(HelpAnchor::contents), index);
}

TEST_F(HelpPagesTest, EachAnchorIsAPageOfItsOwn) {
  const FileURL troubleshooting = write("prefix/bin/help/qm-troubleshooting.html");
  const FileURL mismatch = write("prefix/bin/help/qm-folder-mismatch.html");
  EXPECT_EQ(pages.page(HelpAnchor::troubleshooting), troubleshooting);
  EXPECT_EQ(pages.page(HelpAnchor::folderMismatch), mismatch);
}

}  // namespace
}  // namespace quillmere
