#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "formats/HeifFile.h"
#include "formats/Pictures.h"
#include "support/Images.h"

/// What HEIFs are put together of, right or wrong (ISO 23008-12).
namespace quillmere::testing::heif {

inline std::string short16(size_t number) {
  return {static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
}
inline std::string number32(size_t number) {
  return bigEndian32(static_cast<uint32_t>(number));
}
inline std::string box(std::string_view type, const std::string& content) {
  return number32(content.size() + 8) + std::string(type) + content;
}
inline std::string fullBox(std::string_view type, const std::string& content, char version = 0, char flags = 0) {
  return box(type, std::string{version, '\0', '\0', flags} + content);
}

/// A picture as the encoder leaves it: its settings, and its data.
struct Coded {
  std::string settings;  ///< the box "hvcC"
  std::string data;
};
inline Coded coded(int width, int height, bool isPlain = false) {
  QImage image = redAndBlue(isPlain ? 1 : width, isPlain ? 1 : height);
  if (isPlain) {
    image = QImage(width, height, QImage::Format_RGB32);
    image.fill(Qt::gray);
  }
  const std::string file = encodedHeic(image, 50).value_or(QByteArray()).toStdString();
  const size_t settings = file.find("hvcC") - 4;
  const auto size = static_cast<size_t>(static_cast<uint8_t>(file[settings + 2]) << 8) +
                    static_cast<size_t>(static_cast<uint8_t>(file[settings + 3]));
  return {file.substr(settings, size), file.substr(file.find("mdat") + 4)};
}

inline std::string said(size_t width, size_t height) {
  return fullBox("ispe", number32(width) + number32(height));
}
inline std::string turned(char quarters) {
  return box("irot", std::string(1, quarters));
}

struct Item {
  std::string type = "hvc1";
  std::vector<int> properties = {};  ///< counted from one
  std::string data = {};
  size_t repeated = 1;  ///< so many items of this kind, of the same data
};

/// What stands in the file: items are numbered from one, in their order.
struct Parts {
  std::vector<Item> items;
  std::vector<std::string> properties;
  std::string references = {};
  size_t primary = 1;
  bool isLong = false;  ///< more than 65,535 items
};

inline std::string idOf(const Parts& parts, size_t id) {
  return parts.isLong ? number32(id) : short16(id);
}

inline std::string fileOf(const Parts& parts) {
  const char version = parts.isLong ? 1 : 0;
  size_t count = 0;
  std::string infos;
  std::string uses;
  std::string data;
  std::vector<std::pair<size_t, size_t>> places;  // of each item in the data
  for (const Item& item : parts.items) {
    for (size_t i = 0; i < item.repeated; ++i) {
      ++count;
      infos += fullBox("infe", idOf(parts, count) + short16(0) + item.type + '\0', parts.isLong ? 3 : 2);
      uses += idOf(parts, count) + static_cast<char>(item.properties.size());
      for (const int property : item.properties) uses += static_cast<char>(0x80 | property);
      places.emplace_back(data.size(), item.data.size());
    }
    data += item.data;
  }
  std::string properties;
  for (const std::string& property : parts.properties) properties += property;
  const std::string type = box("ftyp", "heic" + std::string(4, '\0') + "mif1heic");
  const auto meta = [&](size_t from) {
    std::string found = std::string("\x44\0", 2) + idOf(parts, count);
    for (size_t id = 1; id <= count; ++id) {
      found += idOf(parts, id) + short16(0) + short16(1) + number32(from + places[id - 1].first) +
               number32(places[id - 1].second);
    }
    // Without ways of construction its version has short numbers; with long ones they come first.
    if (parts.isLong) {
      found = std::string("\x44\0", 2) + number32(count);
      for (size_t id = 1; id <= count; ++id) {
        found += number32(id) + short16(0) + short16(0) + short16(1) + number32(from + places[id - 1].first) +
                 number32(places[id - 1].second);
      }
    }
    return fullBox("meta", fullBox("hdlr", std::string(4, '\0') + "pict" + std::string(13, '\0')) +
                               fullBox("pitm", idOf(parts, parts.primary), version) +
                               fullBox("iloc", found, parts.isLong ? 2 : 0) +
                               fullBox("iinf", idOf(parts, count) + infos, version) +
                               (parts.references.empty() ? "" : fullBox("iref", parts.references, version)) +
                               box("iprp", box("ipco", properties) + fullBox("ipma", number32(count) + uses, version)));
  };
  const size_t before = type.size() + meta(0).size() + 8;
  return type + meta(before) + box("mdat", data);
}

/// A derived picture's parts.
inline std::string reference(std::string_view type, size_t from, size_t firstTo, size_t count, size_t step = 1) {
  std::string content = short16(from) + short16(count);
  for (size_t i = 0; i < count; ++i) content += short16(firstTo + i * step);
  return box(type, content);
}
inline std::string grid(int rows, int columns, size_t width, size_t height) {
  return std::string("\0\1", 2) + static_cast<char>(rows - 1) + static_cast<char>(columns - 1) + number32(width) +
         number32(height);
}

}  // namespace quillmere::testing::heif
