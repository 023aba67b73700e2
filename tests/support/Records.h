#pragma once

#include <string>
#include <string_view>

#include "records/ScreenshotCoding.h"
#include "records/ScreenshotItem.h"

namespace quillmere::testing {

inline UUID uuid(int number) {
  return *uuidFromText("00000000-0000-4000-8000-" + std::to_string(100000000000 + number));
}

/// A record with its required fields alone.
inline ScreenshotItem bareItem(int number = 1) {
  ScreenshotItem item;
  item.id = uuid(number);
  item.url = FileURL::fromPath("/shots/" + std::to_string(number) + ".png");
  item.createdAt = {700000000.25};
  return item;
}

/// A record with every field set.
inline ScreenshotItem fullItem(int number = 1) {
  ScreenshotItem item = bareItem(number);
  item.state = ScreenshotItem::State::temporary;
  item.expiresAt = Date{700000300.5};
  item.suggestedName = "A name";
  item.recognizedText = "Some text";
  item.imageDescription = "A window";
  item.analysisFailure = AnalysisFailureCode::busy;
  item.analysisRetryable = true;
  item.sourceItemID = uuid(number + 1);
  item.fileBookmark = QByteArray("bookmark");
  item.fileIdentity = FileIdentity{"volume", 42, Date{699999999.75}, 1234};
  item.arrivedFromElsewhere = false;
  item.captureKind = CaptureKind::selection;
  return item;
}

inline std::string encoded(const ScreenshotItem& item) {
  std::string out;
  appendEncoded(out, item);
  return out;
}

/// A list file of these record objects, given as JSON texts joined by commas.
inline std::string envelope(std::string_view records, int version = 1) {
  return "{\"version\":" + std::to_string(version) + ",\"items\":[" + std::string(records) + "]}";
}

/// The JSON text of a record object with its required keys and whatever `more` adds, a comma first.
inline std::string recordJson(std::string_view more = {}) {
  return R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:\/\/\/shots\/1.png","createdAt":5,"state":"pending")" +
         std::string(more) + "}";
}

}  // namespace quillmere::testing
