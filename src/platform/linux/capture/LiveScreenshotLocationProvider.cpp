#include "platform/linux/capture/LiveScreenshotLocationProvider.h"

#include "platform/linux/capture/CaptureTools.h"

namespace quillmere {
namespace {

/// Bytes that are no UTF-8 became a replacement character when they were read as text: written again, the value would
/// be another one.
bool isExact(const std::optional<QString>& value) {
  return !value || !(value->contains(QChar::ReplacementCharacter) || value->contains(QChar::Null));
}

/// What could not be put back afterwards is not changed.
bool canChange(const CaptureTool& tool) {
  return tool.canChange() && isExact(tool.rawValue());
}

}  // namespace

std::optional<FileURL> LiveScreenshotLocationProvider::folder() {
  return captureToolInUse(environment_)->folder();
}

std::optional<QString> LiveScreenshotLocationProvider::rawValue() {
  return captureToolInUse(environment_)->rawValue();
}

QString LiveScreenshotLocationProvider::rawValueOf(const FileURL& folder) {
  return captureToolInUse(environment_)->rawValueOf(folder);
}

bool LiveScreenshotLocationProvider::canChange() {
  return quillmere::canChange(*captureToolInUse(environment_));
}

bool LiveScreenshotLocationProvider::tryToSetRawValue(const std::optional<QString>& value) {
  const auto tool = captureToolInUse(environment_);
  return isExact(value) && quillmere::canChange(*tool) && tool->tryToSetRawValue(value);
}

}  // namespace quillmere
