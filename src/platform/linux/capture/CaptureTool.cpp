#include "platform/linux/capture/CaptureTool.h"

#include "platform/linux/capture/CaptureFolders.h"

namespace quillmere {
namespace {

std::optional<QString> textOf(const std::optional<std::string>& value) {
  return value ? std::optional(QString::fromStdString(*value)) : std::nullopt;
}

/// The same URL for its readers, in characters that any text can hold.
std::string withEscapedBytes(const std::string& url) {
  if (QString::fromStdString(url).toStdString() == url) return url;
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : url) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      escaped += c;
    } else {
      escaped += {'%', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
  return escaped;
}

std::optional<std::string> bytesOf(const std::optional<QString>& value) {
  return value ? std::optional(value->toStdString()) : std::nullopt;
}

}  // namespace

std::optional<FileURL> CaptureTool::folder() const {
  const auto configured = configuredFolder();
  return configured ? configured : CaptureFolders::firstExisting(folders_);
}

FileCaptureTool::FileCaptureTool(FileURL file, ConfigurationKey key, FolderNotation notation,
                                 std::vector<FileURL> folders)
    : CaptureTool(std::move(folders)), file_(std::move(file)), key_(std::move(key)), notation_(std::move(notation)) {}

std::optional<QString> FileCaptureTool::rawValue() const {
  return textIn(file_.text().value_or(""));
}

std::optional<QString> FileCaptureTool::textIn(const std::string& configuration) const {
  auto value = configurationValue(configuration, key_);
  if (value && notation_.hasBareBytes) value = withEscapedBytes(*value);
  return textOf(value);
}

bool FileCaptureTool::tryToSetRawValue(const std::optional<QString>& value) const {
  return file_.setValue(key_, bytesOf(value));
}

std::optional<FileURL> FileCaptureTool::configuredFolder() const {
  const std::string configuration = file_.text().value_or("");
  const auto value = textIn(configuration);
  return value ? notation_.read(*value, expandsVariables(configuration, key_)) : std::nullopt;
}

SettingsCaptureTool::SettingsCaptureTool(SettingsKey key, Use use, FileURL home, std::vector<FileURL> folders)
    : CaptureTool(std::move(folders)), key_(std::move(key)), use_(use), home_(std::move(home)) {}

std::optional<QString> SettingsCaptureTool::rawValue() const {
  return textOf(key_.value());
}

bool SettingsCaptureTool::tryToSetRawValue(const std::optional<QString>& value) const {
  return key_.write(bytesOf(value));
}

std::optional<FileURL> SettingsCaptureTool::configuredFolder() const {
  const auto url = CaptureFolders::named(key_.effectiveValue().value_or(""), home_);
  return url && CaptureFolders::isFolder(*url) ? url : std::nullopt;
}

}  // namespace quillmere
