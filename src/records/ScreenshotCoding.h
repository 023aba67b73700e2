#pragma once

#include <optional>
#include <string>
#include <vector>

#include "records/ScreenshotItem.h"

namespace quillmere {

/// The list file is {"version":1,"items":[…]}, compact UTF-8 JSON in one line, records newest first.
inline constexpr std::string_view kListHead = R"({"version":1,"items":[)";
inline constexpr std::string_view kListTail = "]}";
inline constexpr int64_t kListVersion = 1;

/// Appends one record as a JSON object: keys in the order of the fields, empty ones left out, "/" escaped, numbers in
/// the shortest decimal form that reads back as the same double, dates as seconds since 2001.
void appendEncoded(std::string& out, const ScreenshotItem& item);

/// What could be read of a list.
struct DecodedList {
  std::vector<ScreenshotItem> items;
  size_t dropped = 0;   ///< records that could not be read
  int64_t version = 0;  ///< 0 for the oldest form, a bare array
};
/// Reads either form of the list, changing `bytes` on the way. None when it is neither.
std::optional<DecodedList> decodeList(std::string& bytes);
/// The same of bytes with `kRoomBehindList` more behind them, which are changed, too.
inline constexpr size_t kRoomBehindList = 16;
std::optional<DecodedList> decodeList(char* bytes, size_t size);

}  // namespace quillmere
