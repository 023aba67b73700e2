#include "model/FileRenaming.h"

#include "records/ScreenshotNaming.h"

namespace quillmere {
namespace {

NumberedSearchResult moveToStem(const FileURL& url, const QString& stem, FileOperations& files) {
  return renameAvoidingCollision(url, stem, [&files](const FileURL& from, const FileURL& to) {
    switch (files.move(from, to)) {
      case FileOutcome::done:
        return MoveResult::done;
      case FileOutcome::destinationExists:
        return MoveResult::destinationExists;
      case FileOutcome::missing:
      case FileOutcome::failed:
        return MoveResult::failed;
    }
    return MoveResult::failed;
  });
}

bool isAnother(const FileIdentity& present, const std::optional<FileIdentity>& expected) {
  return expected && expected->isComplete() && present.isComplete() && !present.isSameInode(*expected);
}

}  // namespace

RenameReport renameFile(const RenameJob& job, const FileServices& services) {
  using Outcome = RenameReport::Outcome;
  RenameReport report;
  const auto present = services.identity(job.url);
  if (present && isAnother(*present, job.accepted ? job.accepted : job.identity)) {
    report.outcome = Outcome::another;
    report.identity = present;
    report.moved = services.relocated(job.bookmark, job.url, job.watchFolder);
    return report;
  }
  const auto result = moveToStem(job.url, job.stem, *services.operations);
  if (result.outcome == NumberedSearchResult::Outcome::alreadyNamed) report.outcome = Outcome::unchanged;
  if (result.outcome != NumberedSearchResult::Outcome::moved) return report;
  report.outcome = Outcome::renamed;
  report.url = result.url;
  report.identity = services.identity(result.url);
  report.bookmark = services.scope->makeBookmark(result.url);
  // Here, where nobody waits for the disk.
  services.operations->flush();
  return report;
}

}  // namespace quillmere
