#pragma once

#include <optional>
#include <vector>

#include "model/FileServices.h"
#include "model/FileStamp.h"
#include "records/UUID.h"

namespace quillmere {

/// What became of a record's file that was to be thrown away.
enum class TrashOutcome {
  removed,      ///< it is in Trash, or deleted
  gone,         ///< it was not there any more
  notTracked,   ///< there is no such record
  inUse,        ///< it is open in the program
  replaced,     ///< it is not what was decided about
  failed,       ///< the file system refused
  unreachable,  ///< its disk or its folder is away
};

struct DisposalJob {
  UUID id;
  FileURL url;
  std::optional<FileIdentity> identity;  ///< of the record's file
  std::optional<FileStamp> asked;        ///< what it was when the person was asked about it
  bool deletes = false;                  ///< for good, instead of moving it to Trash
};

/// Throws the file away, unless it is another one than the job says. Any thread.
TrashOutcome disposeFile(const DisposalJob& job, const FileServices& services);

}  // namespace quillmere
