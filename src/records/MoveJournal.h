#pragma once

#include <vector>

#include "foundation/FileURL.h"
#include "records/JournalFile.h"
#include "records/UUID.h"

namespace quillmere {

/// A record's file that is to have another place.
struct BegunMove {
  UUID id;  ///< of the record
  FileURL from;
  FileURL to;
  bool operator==(const BegunMove&) const = default;
};

/// Moves that have begun, kept on disk: a run that ends when the file has its new place and the list still tells the
/// old one leaves it to the next to find it there.
class MoveJournal {
 public:
  explicit MoveJournal(FileURL file) : file_(std::move(file)) {}
  const FileURL& file() const { return file_.file(); }

  /// None where there is no journal or it cannot be read.
  std::vector<BegunMove> load() const;
  /// Flushed before it returns. Answers whether it is certain to be there after a power cut.
  bool save(const std::vector<BegunMove>& moves) const;

 private:
  JournalFile file_;
};

}  // namespace quillmere
