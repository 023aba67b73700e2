#pragma once

#include <QtCore/QString>
#include <optional>

#include "model/FileServices.h"
#include "model/FileStamp.h"
#include "records/ReplacementJournal.h"

namespace quillmere {

/// A file that is to stand in the place of a record's, which goes to Trash.
struct ExchangeJob {
  UUID id;
  FileURL original;
  FileURL temporary;   ///< beside it; removed when it cannot come
  FileStamp readFrom;  ///< the original that may be thrown away for it
};

/// How an exchange ended.
struct ExchangeReport {
  std::optional<QString> reason = std::nullopt;     ///< why the new file did not come, in words
  std::optional<FileURL> putAt = std::nullopt;      ///< where the original had to be put back, if not in its own place
  std::optional<Replacement> noted = std::nullopt;  ///< to be removed once the list tells what has come of it
};

/// Notes the exchange in the journal and carries it out. Where it gives a reason the original is where it was, unless
/// it could not be taken back out of Trash. Whoever calls it has a hold on the file. Any thread.
ExchangeReport exchangeFile(const ExchangeJob& job, const FileServices& services, ReplacementJournal& journal);

}  // namespace quillmere
