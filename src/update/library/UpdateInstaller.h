#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "update/library/PackageFile.h"
#include "update/library/UpdateFailure.h"

namespace quillmere {

/// Puts a package in the place of the running program. Main thread.
class UpdateInstaller {
 public:
  using Ended = std::function<void(std::optional<UpdateFailure> failure)>;

  virtual ~UpdateInstaller() = default;
  /// What would be in the way, as far as it shows before anything is downloaded.
  virtual std::optional<UpdateFailure> obstacle() const { return std::nullopt; }
  /// Told once, in a later turn. After a failure the program that was there is there.
  virtual void install(std::shared_ptr<PackageFile> package, Ended ended) = 0;
  /// What is to be started in the place of this program.
  virtual FileURL programToStart() const = 0;
};

}  // namespace quillmere
