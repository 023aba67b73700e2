#pragma once

#include "model/ScreenshotLocationProviding.h"
#include "platform/linux/capture/CaptureEnvironment.h"

namespace quillmere {

/// Asks the capture tool in use, found anew at every call: tools come, go and are configured while the program runs.
class LiveScreenshotLocationProvider final : public ScreenshotLocationProviding {
 public:
  explicit LiveScreenshotLocationProvider(CaptureEnvironment environment = CaptureEnvironment::live())
      : environment_(std::move(environment)) {}

  std::optional<FileURL> folder() override;
  std::optional<QString> rawValue() override;
  QString rawValueOf(const FileURL& folder) override;
  bool canChange() override;
  bool tryToSetRawValue(const std::optional<QString>& value) override;

 private:
  CaptureEnvironment environment_;
};

}  // namespace quillmere
