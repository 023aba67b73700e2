#include "platform/linux/login/InstalledProgram.h"

#include <unistd.h>
#include <QtCore/QStandardPaths>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "foundation/FileStatus.h"
#include "platform/linux/login/AutostartEntry.h"

namespace quillmere {
namespace {

constexpr std::string_view kEntry = "com.quillmere.app.desktop";
constexpr int64_t kLargest = 1 << 20;  // bytes; no entry has more than a few lines

std::vector<std::string> foldersInPath() {
  const char* path = std::getenv("PATH");
  std::vector<std::string> folders;
  std::istringstream parts(path ? path : "");
  for (std::string folder; std::getline(parts, folder, ':');) {
    if (!folder.empty()) folders.push_back(folder);
  }
  return folders;
}

/// What the system adds to the name of a file that was removed, also when another took its place since.
std::string withoutMark(std::string path) {
  constexpr std::string_view kDeleted = " (deleted)";
  if (path.ends_with(kDeleted)) path.resize(path.size() - kDeleted.size());
  return path;
}

std::filesystem::path real(const std::string& path) {
  std::error_code error;
  return std::filesystem::canonical(path, error);
}

}  // namespace

ProgramPlaces ProgramPlaces::live() {
  std::error_code error;
  ProgramPlaces places;
  places.running = std::filesystem::read_symlink("/proc/self/exe", error).string();
  for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
    places.launchers.push_back(FileURL::fromPath(folder));
  }
  // That of the prefix it was installed to, which the session need not know of.
  const std::filesystem::path prefix = std::filesystem::path(places.running).parent_path().parent_path();
  places.launchers.push_back(FileURL::fromPath((prefix / "share" / "applications").c_str()));
  places.searched = foldersInPath();
  return places;
}

std::optional<std::string> startable(const std::string& program, const ProgramPlaces& places) {
  const auto isProgram = [](const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
  };
  if (program.starts_with('/')) return isProgram(program) ? std::optional(program) : std::nullopt;
  for (const std::string& folder : places.searched) {
    std::string path = folder + '/' + program;
    if (!program.empty() && isProgram(path)) return path;
  }
  return std::nullopt;
}

std::optional<std::string> installedProgram(const ProgramPlaces& places) {
  const auto running = real(withoutMark(places.running));
  if (running.empty()) return std::nullopt;
  for (const FileURL& folder : places.launchers) {
    const auto text = readFile(folder.appending(kEntry), kLargest);
    auto program = text ? startable(AutostartEntry::programOf(*text), places) : std::nullopt;
    if (program && real(*program) == running) return program;
  }
  return std::nullopt;
}

}  // namespace quillmere
