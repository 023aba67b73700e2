#include "platform/linux/capture/ScreenCaptureAttributes.h"

#include <plist/plist.h>
#include <sys/xattr.h>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/capture/CaptureMarks.h"

namespace quillmere {
namespace {

constexpr ssize_t kLargestValue = 65536;

using PropertyList = std::unique_ptr<void, decltype(&plist_free)>;

std::optional<std::string> readValue(const FileURL& url, const std::string& name) {
  const ssize_t length = ::lgetxattr(url.c_str(), name.c_str(), nullptr, 0);
  if (length < 1 || length > kLargestValue) return std::nullopt;
  std::string value(static_cast<size_t>(length), '\0');
  if (::lgetxattr(url.c_str(), name.c_str(), value.data(), value.size()) != length) return std::nullopt;
  return value;
}

/// File servers put the attribute under longer names that contain it.
std::optional<std::string> readRenamedValue(const FileURL& url, const std::string& key) {
  const ssize_t length = ::llistxattr(url.c_str(), nullptr, 0);
  if (length < 1 || length > kLargestValue) return std::nullopt;
  std::string names(static_cast<size_t>(length), '\0');
  if (::llistxattr(url.c_str(), names.data(), names.size()) != length) return std::nullopt;
  for (size_t at = 0; at < names.size();) {
    const std::string name(names.c_str() + at);
    if (name.find(key) != std::string::npos) return readValue(url, name);
    at += name.size() + 1;
  }
  return std::nullopt;
}

PropertyList parse(const std::string& value) {
  plist_t list = nullptr;
  const auto length = static_cast<uint32_t>(value.size());
  if (value.starts_with("bplist")) {
    plist_from_bin(value.data(), length, &list);
    // Some servers append one NUL, and a binary list is read from its end.
    if (!list && value.back() == '\0') plist_from_bin(value.data(), length - 1, &list);
  } else {
    plist_from_xml(value.data(), length, &list);
  }
  return PropertyList(list, &plist_free);
}

/// Certain: a file system that cannot list them says so instead.
bool hasNoAttributes(const FileURL& url) {
  return ::llistxattr(url.c_str(), nullptr, 0) == 0;
}

std::optional<std::string> readAttribute(const FileURL& url, const char* key) {
  // Nearly all of them.
  if (hasNoAttributes(url)) return std::nullopt;
  const std::string name = std::string("com.apple.metadata:") + key;
  auto value = readValue(url, "user." + name);
  if (!value) value = readValue(url, name);
  if (!value) value = readRenamedValue(url, key);
  return value;
}

std::optional<double> numberOf(plist_t node) {
  if (plist_get_node_type(node) == PLIST_REAL) {
    double value = 0;
    plist_get_real_val(node, &value);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
  }
  if (plist_get_node_type(node) == PLIST_UINT) {
    uint64_t value = 0;
    plist_get_uint_val(node, &value);
    return static_cast<double>(static_cast<int64_t>(value));  // negative ones come as huge unsigned values
  }
  return std::nullopt;
}

}  // namespace

bool ScreenCaptureValues::isScreenCapture(const std::string& value) {
  const PropertyList list = parse(value);
  if (!list) return false;
  if (plist_get_node_type(list.get()) == PLIST_BOOLEAN) {
    uint8_t boolean = 0;
    plist_get_bool_val(list.get(), &boolean);
    return boolean != 0;
  }
  return numberOf(list.get()).value_or(0) != 0;
}

std::optional<CaptureKind> ScreenCaptureValues::captureKind(const std::string& value) {
  const PropertyList list = parse(value);
  if (!list || plist_get_node_type(list.get()) != PLIST_STRING) return std::nullopt;
  // Not a copy: the library ends the process when a text with a NUL inside is to be copied.
  uint64_t length = 0;
  const char* text = plist_get_string_ptr(list.get(), &length);
  return text ? quillmere::captureKind(std::string_view(text, length)) : std::nullopt;
}

std::optional<QRectF> ScreenCaptureValues::globalRect(const std::string& value) {
  const PropertyList list = parse(value);
  if (!list || plist_get_node_type(list.get()) != PLIST_ARRAY || plist_array_get_size(list.get()) != 4) {
    return std::nullopt;
  }
  std::array<double, 4> numbers{};
  for (uint32_t i = 0; i < numbers.size(); ++i) {
    const auto number = numberOf(plist_array_get_item(list.get(), i));
    if (!number) return std::nullopt;
    numbers[i] = *number;
  }
  return QRectF(numbers[0], numbers[1], numbers[2], numbers[3]);
}

std::optional<bool> ScreenCaptureAttributes::isScreenCapture(const FileURL& url) {
  const auto value = readAttribute(url, "kMDItemIsScreenCapture");
  return value ? std::optional(ScreenCaptureValues::isScreenCapture(*value)) : std::nullopt;
}

std::optional<CaptureKind> ScreenCaptureAttributes::captureKind(const FileURL& url) {
  const auto value = readAttribute(url, "kMDItemScreenCaptureType");
  return value ? ScreenCaptureValues::captureKind(*value) : std::nullopt;
}

std::optional<QRectF> ScreenCaptureAttributes::globalRect(const FileURL& url) {
  const auto value = readAttribute(url, "kMDItemScreenCaptureGlobalRect");
  return value ? ScreenCaptureValues::globalRect(*value) : std::nullopt;
}

bool hasScreenCaptureTag(const FileURL& url) {
  const auto tag = ScreenCaptureAttributes::isScreenCapture(url);
  return tag ? *tag : CaptureMarks::marksCapture(url);
}

}  // namespace quillmere
