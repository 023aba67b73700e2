#include "model/Messages.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere::testing {
namespace {

using Kind = BackgroundIssue::Kind;

TEST(Messages, EachBannerHasItsWords) {
  struct Row {
    BackgroundIssue issue;
    const char* words;
  };
  const Row rows[] = {
      {{Kind::expiredScreenshotsNotTrashed, 1},
       "1 expired screenshot couldn’t be moved to Trash. Quillmere will try again."},
      {{Kind::expiredScreenshotsNotTrashed, 3},
       "3 expired screenshots couldn’t be moved to Trash. Quillmere will try again."},
      {{Kind::expiredScreenshotsKept, 1},
       "1 expired screenshot was kept because Quillmere couldn’t tell whether it had been replaced."},
      {{Kind::expiredScreenshotsKept, 2},
       "2 expired screenshots were kept because Quillmere couldn’t tell whether they had been replaced."},
      {{Kind::automaticRenameFailed},
       "A screenshot was kept with its original filename because automatic renaming failed."},
      {{Kind::automaticExtractionFailed},
       "A screenshot was kept whole because the window extracted from it couldn’t be saved."},
      {{Kind::recordsNotSaved},
       "Quillmere couldn’t save its screenshot list. Recent changes may be lost when Quillmere quits."},
      {{Kind::recordsWaiting}, "Quillmere is waiting for the disk to save its screenshot list."},
      {{Kind::recordsReadOnly},
       "Quillmere couldn’t back up its screenshot list, so it isn’t saving changes. Free up disk space, then dismiss "
       "this message to try again."},
  };
  for (const Row& row : rows) EXPECT_EQ(message(row.issue), QString::fromUtf8(row.words));
}

}  // namespace
}  // namespace quillmere::testing
