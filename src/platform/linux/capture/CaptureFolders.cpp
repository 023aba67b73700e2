#include "platform/linux/capture/CaptureFolders.h"

#include <sys/stat.h>
#include <algorithm>
#include <array>

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

/// The desktops translate the folder's name once, when they make it.
constexpr std::array kScreenshotsNames{
    "Screenshots", "Bildschirmfotos",   "Captures d’écran", "Capturas de pantalla", "Capturas de tela", "Снимки экрана",
    "截图",        "スクリーンショット"};

bool hasImageExtension(const FileURL& url) {
  constexpr std::array<std::string_view, 5> kExtensions{"png", "jpg", "jpeg", "bmp", "webp"};
  const std::string extension = url.pathExtension();
  return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

std::vector<FileURL> picturesOr(const FileURL& otherwise, const CaptureEnvironment& environment) {
  return {environment.userFolder("PICTURES").value_or(otherwise), environment.home};
}

}  // namespace

std::optional<FileURL> CaptureFolders::named(const std::string& value, const FileURL& home) {
  if (value.find_first_not_of(" \t\r\n\v\f") == std::string::npos) return std::nullopt;
  constexpr std::string_view kScheme = "file:";
  FileURL url;
  if (value.starts_with(kScheme)) {
    // "file:/dir" is the same as "file:///dir".
    const bool hasHost = value.starts_with("file://");
    const auto coded = FileURL::fromCoded(hasHost ? value : "file://" + value.substr(kScheme.size()));
    url = coded.value_or(FileURL());
  } else if (value == "~") {
    url = home;
  } else if (value.starts_with("~/")) {
    url = home.appending(std::string_view(value).substr(2));
  } else {
    url = FileURL::fromPath(std::string_view(value));
  }
  return url.isEmpty() ? std::nullopt : std::optional(url.standardized());
}

bool CaptureFolders::isFolder(const FileURL& url) {
  struct stat status {};
  return ::stat(url.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<FileURL> CaptureFolders::holding(const FileURL& url) {
  if (isFolder(url)) return url;
  const bool isFile = fileExists(url) || hasImageExtension(url);
  return isFile && isFolder(url.parent()) ? std::optional(url.parent()) : std::nullopt;
}

std::optional<FileURL> CaptureFolders::firstExisting(const std::vector<FileURL>& folders) {
  const auto found = std::find_if(folders.begin(), folders.end(), &isFolder);
  return found == folders.end() ? std::nullopt : std::optional(found->standardized());
}

std::vector<FileURL> CaptureFolders::homePictures(const CaptureEnvironment& environment) {
  return picturesOr(environment.home, environment);
}

std::vector<FileURL> CaptureFolders::pictures(const CaptureEnvironment& environment) {
  return picturesOr(environment.home.appending("Pictures"), environment);
}

std::vector<FileURL> CaptureFolders::withScreenshots(const std::vector<FileURL>& folders) {
  std::vector<FileURL> all;
  for (const char* name : kScreenshotsNames) all.push_back(folders.front().appending(name));
  all.insert(all.end(), folders.begin(), folders.end());
  return all;
}

}  // namespace quillmere
