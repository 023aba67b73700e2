#include "update/TrustedPlace.h"

#include <sys/stat.h>

namespace quillmere {
namespace {

bool isOnlyTheirs(const struct stat& status, uid_t owner) {
  if (status.st_uid != 0 && status.st_uid != owner) return false;
  const bool isSticky = S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
  return isSticky || (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

bool isAsSafeAsTheProgram(const FileURL& file, const FileURL& program) {
  struct stat programStatus {};
  struct stat status {};
  if (::stat(program.c_str(), &programStatus) != 0) return false;
  const uid_t owner = programStatus.st_uid;
  if (::lstat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || !isOnlyTheirs(status, owner)) return false;
  for (FileURL folder = file.parent();; folder = folder.parent()) {
    if (::lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || !isOnlyTheirs(status, owner)) return false;
    if (folder.path() == "/") return true;
  }
}

}  // namespace quillmere
