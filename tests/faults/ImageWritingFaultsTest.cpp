#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>

#include "formats/ImageOperations.h"
#include "reading/ImageWriting.h"
#include "support/FaultyCalls.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;
using Written = Result<FileURL, Failure>;

const QByteArray kData(50'000, 'p');

struct Way {
  const char* name;
  Written (*write)(const FileURL& original);
};
const Way kNewFile{"NewFile", [](const FileURL& original) {
                     return ImageOperations::writeNewFile(kData, original, QStringLiteral("Crop"));
                   }};
const Way kReplacement{"Replacement",
                       [](const FileURL& original) { return ImageOperations::writeReplacement(kData, original); }};

class ImageWritingFaults : public ::testing::TestWithParam<Way> {
 protected:
  size_t count(const std::vector<FaultyCalls::Made>& made, Call call) {
    return static_cast<size_t>(
        std::count_if(made.begin(), made.end(), [&](const auto& one) { return one.call == call; }));
  }
  TemporaryFolder folder;
  FileURL original = folder.file("Screenshot 1.png");
};

INSTANTIATE_TEST_SUITE_P(Of, ImageWritingFaults, ::testing::Values(kNewFile, kReplacement),
                         [](const auto& way) { return std::string(way.param.name); });

TEST_P(ImageWritingFaults, AWholeFileOrNone) {
  for (const int error : {ENOSPC, EIO, EACCES, EDQUOT}) {
    for (size_t number = 1;; ++number) {
      SCOPED_TRACE("call " + std::to_string(number) + ", error " + std::to_string(error));
      TemporaryFolder own;
      Written written = Failure(OperationError::encoding);
      size_t made = 0;
      bool isNotRemoved = false;
      {
        FaultyCalls faults(own.url());
        faults.fail(number, error);
        written = GetParam().write(own.file("Screenshot 1.png"));
        made = faults.made().size();
        isNotRemoved = number <= made && faults.made()[number - 1].call == Call::unlink;
      }
      if (written) {
        EXPECT_EQ(readBytes(*written), kData.toStdString());
        // A hidden name that could not be removed is removed at the next start.
        EXPECT_EQ(namesIn(own.url()).size(), isNotRemoved ? 2u : 1u);
      } else {
        EXPECT_EQ(written.reason(), Failure(std::error_code(error, std::generic_category())));
        EXPECT_THAT(namesIn(own.url()), ::testing::IsEmpty());
      }
      if (made < number) break;
    }
  }
}

TEST_P(ImageWritingFaults, AnInterruptionIsNoFailure) {
  for (const Call call : {Call::open, Call::write, Call::flush, Call::close}) {
    TemporaryFolder own;
    FaultyCalls faults(own.url());
    faults.failOnly(call, 1, EINTR);
    const Written written = GetParam().write(own.file("Screenshot 1.png"));
    ASSERT_TRUE(written) << nameOf(call);
    EXPECT_EQ(readBytes(*written), kData.toStdString());
  }
}

TEST_P(ImageWritingFaults, AShortWriteIsFinished) {
  const auto calls = callsMade(folder.url(), [&] { EXPECT_TRUE(GetParam().write(original)); });
  for (size_t number = 1; number <= calls.size(); ++number) {
    if (calls[number - 1].call != Call::write) continue;
    TemporaryFolder own;
    FaultyCalls faults(own.url());
    faults.shorten(number);
    const Written written = GetParam().write(own.file("Screenshot 1.png"));
    ASSERT_TRUE(written);
    EXPECT_EQ(readBytes(*written), kData.toStdString());
  }
}

TEST_P(ImageWritingFaults, TheFileIsFlushedBeforeItIsClosed) {
  const auto calls = callsMade(folder.url(), [&] { EXPECT_TRUE(GetParam().write(original)); });
  std::vector<Call> kinds;
  for (const auto& one : calls) {
    if (one.call == Call::write || one.call == Call::flush || one.call == Call::close) kinds.push_back(one.call);
  }
  ASSERT_GE(kinds.size(), 3u);
  EXPECT_EQ((std::vector<Call>{kinds.begin(), kinds.begin() + 3}),
            (std::vector{Call::write, Call::flush, Call::close}));
}

TEST_F(ImageWritingFaults, AReplacementWhoseNameIsTakenGetsAnotherUpToEightTimes) {
  FaultyCalls faults(folder.url());
  faults.failEvery(Call::open, EEXIST);
  const Written written = kReplacement.write(original);
  ASSERT_FALSE(written);
  EXPECT_EQ(written.reason(), Failure(OperationError::destinationExists));
  std::vector<std::string> names;
  for (const auto& one : faults.made()) {
    if (one.call == Call::open) names.push_back(one.path);
  }
  EXPECT_EQ(names.size(), 8u);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end()) << "each with a name of its own";
}

TEST_F(ImageWritingFaults, AReplacementWhoseNameIsTakenOnceIsWritten) {
  FaultyCalls faults(folder.url());
  faults.failOnly(Call::open, 1, EEXIST);
  EXPECT_TRUE(kReplacement.write(original));
}

TEST_F(ImageWritingFaults, ANewFileTriesAThousandNames) {
  FaultyCalls faults(folder.url());
  faults.failEvery(Call::link, EEXIST);
  const Written written = kNewFile.write(original);
  ASSERT_FALSE(written);
  EXPECT_EQ(written.reason(), Failure(OperationError::destinationExists));
  EXPECT_EQ(count(faults.made(), Call::link), 1000u);
  EXPECT_TRUE(namesIn(folder.url()).empty());
}

TEST_F(ImageWritingFaults, ANewFileIsWrittenAlsoWhereThereAreNoLinks) {
  FaultyCalls faults(folder.url());
  faults.failEvery(Call::link, EPERM);
  writeFile(folder.file("Crop.png"), "mine");
  const Written written = kNewFile.write(original);
  ASSERT_TRUE(written);
  EXPECT_EQ(*written, folder.file("Crop (1).png"));
  EXPECT_EQ(readBytes(*written), kData.toStdString());
  EXPECT_EQ(readBytes(folder.file("Crop.png")), "mine");
  EXPECT_EQ(namesIn(folder.url()).size(), 2u);
}

}  // namespace
}  // namespace quillmere::testing
