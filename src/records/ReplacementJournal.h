#pragma once

#include <mutex>
#include <vector>

#include "foundation/FileURL.h"
#include "records/JournalFile.h"
#include "records/UUID.h"

namespace quillmere {

/// A file that is to take another's place, which goes to Trash first.
struct Replacement {
  UUID id;            ///< of the record
  FileURL original;   ///< the place
  FileURL temporary;  ///< what will stand there
  uint64_t file = 0;  ///< its inode, which tells it when it stands there
  bool operator==(const Replacement&) const = default;
};

/// Replacements that have begun, kept on disk: between the original's leaving and the new file's coming nothing stands
/// in the place, and a run that ends there leaves it to the next to bring the new file. Any thread.
class ReplacementJournal {
 public:
  explicit ReplacementJournal(FileURL file) : file_(std::move(file)) {}

  /// None where there is no journal or it cannot be read.
  std::vector<Replacement> load() const;
  /// Flushed before they return. Answer whether that is certain to be there after a power cut.
  bool save(const std::vector<Replacement>& replacements) const;
  bool add(const Replacement& replacement);
  bool remove(const std::vector<Replacement>& replacements);

 private:
  JournalFile file_;
  std::mutex changing_;
};

}  // namespace quillmere
