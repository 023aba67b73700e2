#pragma once

#include <QtCore/QByteArray>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "foundation/FileStatus.h"
#include "support/FaultyCalls.h"
#include "support/Files.h"

namespace quillmere::testing {

/// What the system answers when it refuses. ENOENT is the one that sounds like a lost file, and EINTR the one that asks
/// for another try.
inline constexpr std::array kErrors{ENOSPC, EACCES, EROFS, EIO, EXDEV, ENOENT, EINTR};

inline std::string describe(const FaultyCalls::Made& made, int error) {
  return nameOf(made.call) + " of " + made.path + (error == 0 ? "" : std::string(": ") + ::strerrorname_np(error));
}

enum class Place { oldName, newName, trash };
inline void PrintTo(Place place, std::ostream* out) {
  *out << (place == Place::trash ? "in Trash" : place == Place::oldName ? "under its old name" : "under its new name");
}

/// Where the whole picture lies, and what should not be: partial files, strays, Trash that nobody could restore.
struct Whereabouts {
  std::vector<Place> copies;
  std::vector<std::string> faults;
};

/// The value of a line of an info file.
inline std::string infoLine(const std::string& info, const std::string& key) {
  const auto at = info.find("\n" + key + "=");
  if (at == std::string::npos) return {};
  const auto start = at + key.size() + 2;
  return info.substr(start, info.find('\n', start) - start);
}

/// `others` are files of the folder that are none of the test's business.
inline Whereabouts findPicture(const std::string& bytes, const FileURL& oldPlace, const FileURL& newPlace,
                               const FileURL& trash, const std::vector<std::string>& others = {}) {
  Whereabouts found;
  for (const FileURL& folder : std::set{oldPlace.parent(), newPlace.parent()}) {
    for (const std::string& name : namesIn(folder)) {
      if (std::find(others.begin(), others.end(), name) != others.end()) continue;
      const FileURL url = folder.appending(name);
      if (url != oldPlace && url != newPlace) {
        found.faults.push_back("a stray " + name);
      } else if (readBytes(url) != bytes) {
        found.faults.push_back("not the whole picture under " + name);
      } else {
        found.copies.push_back(url == oldPlace ? Place::oldName : Place::newName);
      }
    }
  }
  if (!fileExists(trash.appending("files"))) return found;
  for (const std::string& name : namesIn(trash.appending("files"))) {
    if (readBytes(trash.appending("files").appending(name)) != bytes) {
      found.faults.push_back("not the whole picture in Trash");
      continue;
    }
    found.copies.push_back(Place::trash);
    const std::string info = readFile(trash.appending("info").appending(name + ".trashinfo")).value_or("");
    const QByteArray path = QByteArray::fromPercentEncoding(QByteArray::fromStdString(infoLine(info, "Path")));
    const bool isRestorable = info.starts_with("[Trash Info]\n") && path.toStdString() == oldPlace.path() &&
                              infoLine(info, "DeletionDate").size() == std::strlen("2026-01-31T12:00:00");
    if (!isRestorable) found.faults.push_back("in Trash without its old place: '" + info + "'");
  }
  return found;
}

}  // namespace quillmere::testing
