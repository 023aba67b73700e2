#include <cstdint>
#include <cstdlib>

#include "update/library/UpdateFeed.h"

using namespace quillmere;

/// Nobody gets a feed past its signature; and what is in one that is signed keeps within its bounds.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  if (UpdateFeed::read(bytes, FeedSignature(QByteArray(FeedSignature::kKeyBytes, 'k')))) std::abort();

  const auto feed = UpdateFeed::readObject(bytes);
  if (!feed) return 0;
  if (feed->size <= 0 || feed->size > UpdateFeed::kMostPackageBytes) std::abort();
  if (feed->package.scheme() != QLatin1String("https") || feed->package.host().isEmpty()) std::abort();
  if (feed->signature.size() != FeedSignature::kSignatureBytes || feed->minimumVersion > feed->version) std::abort();
  if (VersionNumber::read(feed->version.display()) != feed->version) std::abort();
  for (const QChar c : feed->notes) {
    if (c != QLatin1Char('\n') && c.category() == QChar::Other_Control) std::abort();
  }
  return 0;
}
