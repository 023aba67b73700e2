#pragma once

#include <QtCore/QString>

#include "foundation/Executor.h"
#include "update/library/UpdateInstaller.h"

namespace quillmere {

/// The one file that this program is, or an empty URL: the file that the runtime of a bundle names, from whose mounted
/// folder this program runs, and which is an executable of this person.
FileURL singleFileOf(const FileURL& program, const QByteArray& bundle, const QByteArray& mountedAt);

/// Replaces the program's one file: a copy beside it, looked through as it stands there, takes its name in one step, so
/// that the old or the new one is there at every moment.
class SingleFileInstaller final : public UpdateInstaller {
 public:
  SingleFileInstaller(Executor& executor, FileURL file) : executor_(executor), file_(std::move(file)) {}

  std::optional<UpdateFailure> obstacle() const override;
  void install(std::shared_ptr<PackageFile> package, Ended ended) override;
  FileURL programToStart() const override { return file_; }

  /// The whole of it. Not on the main thread.
  static std::optional<UpdateFailure> replace(const FileURL& file, const PackageFile& package);

 private:
  Executor& executor_;
  FileURL file_;
};

}  // namespace quillmere
