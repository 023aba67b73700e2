#include "reading/ImageWriting.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <csignal>
#include <regex>

#include "formats/ImageOperations.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;
using ImageOperations::writeNewFile;
using ImageOperations::writeReplacement;
using testing::namesIn;
using testing::readBytes;
using testing::TemporaryFolder;
using testing::writeFile;

int modeOf(const FileURL& url) {
  struct stat status {};
  return ::stat(url.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

bool is(const Failure& failure, std::errc code) {
  const auto* error = std::get_if<std::error_code>(&failure);
  return error && *error == code;
}

class ImageWriting : public ::testing::Test {
 protected:
  std::string nameOf(const Result<FileURL, Failure>& written) {
    EXPECT_TRUE(written);
    return written ? written->lastPathComponent() : std::string();
  }
  TemporaryFolder folder;
  FileURL shot = folder.file("Screenshot 1.png");
  QByteArray data = QByteArray(100'000, 'p');
};

// --- A new file ---

TEST_F(ImageWriting, ANewFileStandsBesideTheOtherAsPng) {
  const auto written = writeNewFile(data, folder.file("Screenshot 1.heic"), QStringLiteral("Screenshot 1 Crop"));
  ASSERT_TRUE(written);
  EXPECT_EQ(*written, folder.file("Screenshot 1 Crop.png"));
  EXPECT_EQ(readBytes(*written), data.toStdString());
}

TEST_F(ImageWriting, ANewFileHasOneNameAndNothingIsLeftBesideIt) {
  const auto written = writeNewFile(data, shot, QStringLiteral("Crop"));
  ASSERT_TRUE(written);
  struct stat status {};
  ASSERT_EQ(::stat(written->c_str(), &status), 0);
  EXPECT_EQ(status.st_nlink, 1u);
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"Crop.png"});
}

TEST_F(ImageWriting, NobodySeesAPartOfANewFile) {
  // Ended in the middle of the writing, as by a kill: only what the next start removes is left.
  const int code = testing::exitCodeOfChild([&] {
    std::signal(SIGXFSZ, SIG_DFL);
    const rlimit limit{50'000, 50'000};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return testing::kCannotSetUp;
    (void)writeNewFile(data, shot, QStringLiteral("Crop"));
    return 0;
  });
  EXPECT_NE(code, 0) << "it was to be ended";
  for (const std::string& name : namesIn(folder.url())) {
    EXPECT_TRUE(name.starts_with(ImageOperations::kReplacementPrefix)) << name;
  }
}

TEST_F(ImageWriting, ATakenNameGetsANumber) {
  writeFile(folder.file("Screenshot 1 Crop.png"), "mine");
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QStringLiteral("Screenshot 1 Crop"))), "Screenshot 1 Crop (1).png");
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QStringLiteral("Screenshot 1 Crop"))), "Screenshot 1 Crop (2).png");
  EXPECT_EQ(readBytes(folder.file("Screenshot 1 Crop.png")), "mine");
}

TEST_F(ImageWriting, AFolderOrADanglingLinkTakesANameToo) {
  ASSERT_EQ(::mkdir(folder.file("a.png").c_str(), 0700), 0);
  ASSERT_EQ(::symlink("nowhere", folder.file("a (1).png").c_str()), 0);
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QStringLiteral("a"))), "a (2).png");
  EXPECT_FALSE(std::filesystem::exists(folder.file("nowhere").path()));
}

TEST_F(ImageWriting, TheNameIsCleaned) {
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QStringLiteral("  a/b:c.png "))), "a b c.png");
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QStringLiteral("../up"))), "up.png");
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QString(200, QLatin1Char('x')))), std::string(160, 'x') + ".png");
}

TEST_F(ImageWriting, ANameOfNothingIsScreenshot) {
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QStringLiteral("..."))), "Screenshot.png");
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QString())), "Screenshot (1).png");
}

TEST_F(ImageWriting, AfterAThousandNamesTheDestinationExists) {
  writeFile(folder.file("a.png"), "");
  for (int n = 1; n <= 998; ++n) writeFile(folder.file("a (" + std::to_string(n) + ").png"), "");
  EXPECT_EQ(nameOf(writeNewFile(data, shot, QStringLiteral("a"))), "a (999).png");
  const auto written = writeNewFile(data, shot, QStringLiteral("a"));
  ASSERT_FALSE(written);
  EXPECT_EQ(written.reason(), Failure(OperationError::destinationExists));
}

TEST_F(ImageWriting, ANewFileHasTheUsualPermissions) {
  const mode_t mask = ::umask(027);
  const auto written = writeNewFile(data, shot, QStringLiteral("a"));
  ::umask(mask);
  ASSERT_TRUE(written);
  EXPECT_EQ(modeOf(*written), 0640);
}

TEST_F(ImageWriting, AFolderOfBytesThatAreNoTextIsKept) {
  const FileURL inside = folder.file("caf\xe9\xff");
  ASSERT_EQ(::mkdir(inside.c_str(), 0700), 0);
  const auto written = writeNewFile(data, inside.appending("\xfe.png"), QStringLiteral("a"));
  ASSERT_TRUE(written);
  EXPECT_EQ(*written, inside.appending("a.png"));
  EXPECT_EQ(readBytes(*written).size(), 100'000u);
}

TEST_F(ImageWriting, AFolderThatIsGoneIsAFailureOfTheSystem) {
  const FileURL gone = folder.file("gone/Screenshot 1.png");
  for (const auto& written : {writeNewFile(data, gone, QStringLiteral("a")), writeReplacement(data, gone)}) {
    ASSERT_FALSE(written);
    EXPECT_TRUE(is(written.reason(), std::errc::no_such_file_or_directory));
    EXPECT_TRUE(ImageOperations::isFileMissing(written.reason()));
  }
  writeFile(folder.file("file"), "");
  const auto written = writeNewFile(data, folder.file("file/a.png"), QStringLiteral("a"));
  ASSERT_FALSE(written);
  EXPECT_TRUE(is(written.reason(), std::errc::not_a_directory));
}

// --- A replacement ---

TEST_F(ImageWriting, AReplacementIsHiddenBesideTheOriginalUnderItsExtension) {
  writeFile(shot, "whole");
  const auto written = writeReplacement(data, shot);
  ASSERT_TRUE(written);
  EXPECT_EQ(written->parent(), folder.url());
  EXPECT_TRUE(std::regex_match(
      written->lastPathComponent(),
      std::regex("\\.quillmere-replacing-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\.png")))
      << written->path();
  EXPECT_EQ(readBytes(*written), data.toStdString());
  EXPECT_EQ(readBytes(shot), "whole");
}

TEST_F(ImageWriting, AReplacementHasTheExtensionAsItIs) {
  EXPECT_EQ(writeReplacement(data, folder.file("a.HEIC"))->pathExtension(), "HEIC");
  EXPECT_EQ(writeReplacement(data, folder.file("a.xyz"))->pathExtension(), "xyz");
  EXPECT_EQ(writeReplacement(data, folder.file("a.\xe9\xff"))->pathExtension(), "\xe9\xff");
  EXPECT_EQ(writeReplacement(data, folder.file("no extension"))->pathExtension(), "png");
}

TEST_F(ImageWriting, TwoReplacementsHaveTwoNames) {
  EXPECT_NE(*writeReplacement(data, shot), *writeReplacement(data, shot));
  EXPECT_EQ(namesIn(folder.url()).size(), 2u);
}

TEST_F(ImageWriting, AReplacementIsNoLessPrivateThanTheOriginal) {
  writeFile(shot, "whole");
  for (const mode_t mode : {0600, 0640, 0644}) {
    ASSERT_EQ(::chmod(shot.c_str(), mode), 0);
    EXPECT_EQ(modeOf(*writeReplacement(data, shot)), static_cast<int>(mode));
  }
}

// --- Failures ---

enum class Way { newFile, replacement };

Result<FileURL, Failure> writtenBy(Way way, const QByteArray& data, const FileURL& url) {
  return way == Way::newFile ? writeNewFile(data, url, QStringLiteral("Crop")) : writeReplacement(data, url);
}

class ImageWritingFailure : public ImageWriting, public ::testing::WithParamInterface<Way> {};

INSTANTIATE_TEST_SUITE_P(Ways, ImageWritingFailure, ::testing::Values(Way::newFile, Way::replacement),
                         [](const auto& way) { return way.param == Way::newFile ? "NewFile" : "Replacement"; });

TEST_P(ImageWritingFailure, AFullDiskLeavesNoHalfFile) {
  const std::string failure = testing::failureWithPrivateMounts([&]() -> std::string {
    MUST(::mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=64k") == 0);
    const auto written = writtenBy(GetParam(), data, shot);
    MUST(!written);
    MUST(is(written.reason(), std::errc::no_space_on_device));
    MUST(namesIn(folder.url()).empty());
    return {};
  });
  EXPECT_EQ(failure, "");
}

TEST_P(ImageWritingFailure, AFileThatMayNotGrowThatLargeLeavesNoHalfFile) {
  const int code = testing::exitCodeOfChild([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{50'000, 50'000};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return testing::kCannotSetUp;
    const auto written = writtenBy(GetParam(), data, shot);
    if (written || !is(written.reason(), std::errc::file_too_large)) return 1;
    return namesIn(folder.url()).empty() ? 0 : 2;
  });
  EXPECT_EQ(code, 0);
}

TEST_P(ImageWritingFailure, AFolderThatCannotBeWrittenIsAFailureOfTheSystem) {
  const std::string failure = testing::failureWithPrivateMounts([&]() -> std::string {
    MUST(::mount("tmpfs", folder.path().c_str(), "tmpfs", MS_RDONLY, "") == 0);
    const auto written = writtenBy(GetParam(), data, shot);
    MUST(!written);
    MUST(is(written.reason(), std::errc::read_only_file_system));
    return {};
  });
  EXPECT_EQ(failure, "");
}

}  // namespace
}  // namespace quillmere
