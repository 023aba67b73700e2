#pragma once

#include "fakes/DecodedPictures.h"
#include "inbox/PresentationFixture.h"
#include "reading/ThumbnailLoader.h"

namespace quillmere::testing {

/// Offers two programs, and notes what was sent where.
class FakeInboxSharing final : public Sharing {
 public:
  Task<std::vector<ShareTarget>> targets(QStringList contentTypes) override {
    askedTypes = contentTypes;
    std::vector<ShareTarget> offered = programs;
    co_return offered;
  }
  Task<bool> share(std::vector<PreparedTransfer> transfers, QString targetID) override {
    for (const PreparedTransfer& transfer : transfers) sent.push_back(transfer.file);
    target = targetID;
    co_return takes;
  }

  std::vector<ShareTarget> programs{{QStringLiteral("email"), QStringLiteral("Mail"), {}, ShareTarget::Group::mail},
                                    {QStringLiteral("paint"), QStringLiteral("Paint & Draw"), {}}};
  QStringList askedTypes;
  std::vector<FileURL> sent;
  QString target;
  bool takes = true;
};

/// A presentation with everything that the Inbox's own widgets need.
class InboxFixture : public PresentationFixture {
 protected:
  void SetUp() override {
    services.thumbnails = &thumbnails;
    services.sharing = &sharing;
    PresentationFixture::SetUp();
  }
  /// Begins anew with these records.
  void relaunchWith(const std::vector<ScreenshotItem>& items) {
    close();
    model.reset();
    storeRecords(items);
    launchWatching();
    open();
  }

  ThumbnailLoader thumbnails{executor, decodedPictures(), [](const FileURL&) { return false; }};
  FakeInboxSharing sharing;
};

}  // namespace quillmere::testing
