#include "platform/linux/capture/CaptureEnvironment.h"

#include <pwd.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

constexpr int64_t kLargestList = 1 << 20;

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

FileURL homeFolder() {
  const FileURL home = FileURL::fromPath(std::string_view(variable("HOME")));
  if (!home.isEmpty()) return home;
  const passwd* entry = ::getpwuid(::getuid());
  return entry ? FileURL::fromPath(std::string_view(entry->pw_dir)) : FileURL();
}

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> parts;
  std::istringstream stream(list);
  for (std::string part; std::getline(stream, part, ':');) parts.push_back(part);
  return parts;
}

bool isExecutable(const FileURL& url) {
  struct stat status {};
  return ::stat(url.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(url.c_str(), X_OK) == 0;
}

}  // namespace

CaptureEnvironment CaptureEnvironment::live() {
  CaptureEnvironment environment;
  environment.home = homeFolder();
  environment.configHome = FileURL::fromPath(std::string_view(variable("XDG_CONFIG_HOME")));
  if (environment.configHome.isEmpty()) environment.configHome = environment.home.appending(".config");
  const std::string folders = variable("XDG_DATA_DIRS");
  for (const std::string& folder : split(folders.empty() ? "/usr/local/share:/usr/share" : folders)) {
    environment.dataFolders.push_back(FileURL::fromPath(std::string_view(folder)));
  }
  environment.searchPath = variable("PATH");
  environment.currentDesktop = variable("XDG_CURRENT_DESKTOP");
  return environment;
}

std::optional<FileURL> CaptureEnvironment::installed(std::string_view program) const {
  for (const std::string& name : split(searchPath)) {
    const FileURL folder = FileURL::fromPath(std::string_view(name));
    if (!folder.isEmpty() && isExecutable(folder.appending(program))) return folder.appending(program);
  }
  return std::nullopt;
}

bool CaptureEnvironment::isDesktop(std::string_view name) const {
  const std::vector<std::string> names = split(currentDesktop);
  return std::any_of(names.begin(), names.end(), [&](const std::string& candidate) {
    return candidate.size() == name.size() && ::strncasecmp(candidate.data(), name.data(), name.size()) == 0;
  });
}

std::optional<FileURL> CaptureEnvironment::userFolder(std::string_view name) const {
  // Lines of the form XDG_PICTURES_DIR="$HOME/Pictures"; a later one counts. The home itself means "none wanted", and
  // the tools then save in the home.
  const auto list = readFile(configHome.appending("user-dirs.dirs"), kLargestList);
  const std::string start = "XDG_" + std::string(name) + "_DIR=\"";
  std::optional<FileURL> found;
  std::istringstream lines(list.value_or(""));
  for (std::string line; std::getline(lines, line);) {
    line.erase(0, std::min(line.find_first_not_of(" \t"), line.size()));
    const auto end = line.rfind('"');
    if (!line.starts_with(start) || end < start.size()) continue;
    std::string path = line.substr(start.size(), end - start.size());
    constexpr std::string_view kHome = "$HOME";
    if (path == kHome || path.starts_with("$HOME/")) path.replace(0, kHome.size(), home.path());
    const FileURL url = FileURL::fromPath(std::string_view(path));
    if (!url.isEmpty()) found = url.standardized();
  }
  return found;
}

}  // namespace quillmere
