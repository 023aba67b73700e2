#include "platform/linux/thumbnails/LiveSharedThumbnails.h"

#include <sys/stat.h>
#include <QtCore/QCryptographicHash>
#include <algorithm>
#include <cmath>

#include "pixels/Downscaler.h"
#include "platform/linux/thumbnails/OwnFiles.h"
#include "png/PlainPng.h"
#include "png/PngTexts.h"

namespace quillmere {
namespace {

constexpr const char* kURI = "Thumb::URI";
constexpr const char* kModified = "Thumb::MTime";
constexpr const char* kBytes = "Thumb::Size";
constexpr const char* kMimeType = "Thumb::Mimetype";
constexpr const char* kWidth = "Thumb::Image::Width";
constexpr const char* kHeight = "Thumb::Image::Height";
constexpr const char* kSoftware = "Software";
constexpr const char* kOurs = "Quillmere";

/// As GLib writes it, of which other programs take the sum.
std::string uriOf(const FileURL& url) {
  return url.standardized().coded();
}

std::string textOf(const PngTexts& texts, std::string_view keyword) {
  const auto found = texts.find(keyword);
  return found == texts.end() ? std::string() : found->second;
}

/// Within what any program would write there, whole, and no larger than such a file can be.
std::optional<PngHeader> headerOfThumbnail(std::string_view file, int side) {
  const auto header = PngHeader::of(file);
  const auto most = static_cast<uint32_t>(2 * side);
  const bool isFit = header && header->width > 0 && header->height > 0 && header->width <= most &&
                     header->height <= most && file.ends_with(traits(PictureFormat::png).endMark);
  return isFit ? header : std::nullopt;
}

int64_t mostBytes(int side) {
  constexpr int64_t kBytesAPixel = 8;
  constexpr int64_t kTextsAndColours = 256 * 1024;
  const int64_t most = 2 * int64_t{side};
  return most * most * kBytesAPixel + kTextsAndColours;
}

bool isSame(const FileStatus& one, const FileStatus& other) {
  return one.isRegular() && other.isRegular() && one.inode == other.inode && one.size == other.size &&
         one.modified == other.modified && one.deviceMajor == other.deviceMajor && one.deviceMinor == other.deviceMinor;
}

}  // namespace

struct LiveSharedThumbnails::Size {
  const char* name;
  int side;
};

const std::array<LiveSharedThumbnails::Size, 4> LiveSharedThumbnails::kSizes{
    {{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}}};

/// What a thumbnail must say to be one of this file as it is now.
struct LiveSharedThumbnails::Original {
  /// None unless a regular file stands there.
  static std::optional<Original> at(const FileURL& url) {
    struct stat status {};
    if (::lstat(url.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    std::string fraction = std::to_string(status.st_mtim.tv_nsec);
    fraction.insert(0, kNanosecondDigits - fraction.size(), '0');
    return Original{uriOf(url), std::to_string(status.st_mtim.tv_sec), fraction, std::to_string(status.st_size)};
  }

  bool isIn(const PngTexts& texts) const {
    const std::string size = textOf(texts, kBytes);
    return textOf(texts, kURI) == uri && isModified(textOf(texts, kModified)) && (size.empty() || size == bytes);
  }

  static constexpr size_t kNanosecondDigits = 9;
  std::string uri;
  std::string modified;  ///< in whole seconds
  std::string fraction;  ///< digits of a second
  std::string bytes;

 private:
  /// In whole seconds by the standard. Xfce's service writes a fraction, too, which is that of the date or, where it
  /// knows none, zero.
  bool isModified(std::string_view text) const {
    if (!text.starts_with(modified)) return false;
    text.remove_prefix(modified.size());
    if (text.empty()) return true;
    const bool hasDigits = text.front() == '.' && text.size() > 1;
    const std::string_view digits = text.substr(1);
    const bool isNone = digits.find_first_not_of('0') == std::string_view::npos;
    return hasDigits && (isNone || fraction.starts_with(digits));
  }
};

std::optional<int> LiveSharedThumbnails::side(int pixels) const {
  for (const Size& size : kSizes) {
    if (size.side >= pixels) return size.side;
  }
  return std::nullopt;
}

std::optional<QImage> LiveSharedThumbnails::find(const FileURL& url, int pixels) const {
  const auto original = Original::at(url);
  if (!original || isInside(url)) return std::nullopt;
  for (const Size& size : kSizes) {
    const auto file = OwnFiles::read(place(size, original->uri), mostBytes(size.side));
    const auto header = file ? headerOfThumbnail(*file, size.side) : std::nullopt;
    if (!header) continue;
    const PngTexts texts = readPngTexts(*file);
    const bool isWhole = textOf(texts, kWidth) == std::to_string(header->width) &&
                         textOf(texts, kHeight) == std::to_string(header->height);
    const bool isLargeEnough = std::max(header->width, header->height) >= static_cast<uint32_t>(pixels) || isWhole;
    if (!isLargeEnough || !original->isIn(texts)) continue;
    auto thumbnail = pictures_->thumbnail(*file, pixels);
    if (thumbnail) return *std::move(thumbnail);
  }
  return std::nullopt;
}

void LiveSharedThumbnails::keep(const FileURL& url, const FileStatus& seen, const QImage& thumbnail) {
  // Written again within its second the file would have another picture and the same date.
  if (std::abs(now_() - seen.modified) < 1 || isInside(url)) return;
  const auto original = Original::at(url);
  const auto head = original ? pictures_->head(url) : std::nullopt;
  const Size* size = head ? sizeOf(thumbnail, head->size) : nullptr;
  if (!size || has(*original, *size)) return;
  const auto picture = pictures_->encoded(thumbnail, PictureFormat::png);
  if (!picture) return;
  const std::string file = withPngTexts({picture->constData(), static_cast<size_t>(picture->size())},
                                        {{kURI, original->uri},
                                         {kModified, original->modified},
                                         {kBytes, original->bytes},
                                         {kMimeType, traits(head->format).contentType},
                                         {kWidth, std::to_string(head->size.width())},
                                         {kHeight, std::to_string(head->size.height())},
                                         {kSoftware, kOurs}});
  const std::lock_guard lock(writing_);
  const auto present = fileStatus(url);
  if (!present || !isSame(*present, seen)) return;
  makeFolders(*size);
  OwnFiles::write(place(*size, original->uri), file);
}

void LiveSharedThumbnails::forget(const FileURL& url) {
  const std::string uri = uriOf(url);
  const std::lock_guard lock(writing_);
  // Another file may have taken the name, and have a thumbnail already.
  const auto present = Original::at(url);
  for (const Size& size : kSizes) {
    const FileURL thumbnail = place(size, uri);
    OwnFiles::removeUnfinished(thumbnail);
    const auto file = OwnFiles::read(thumbnail, mostBytes(size.side));
    if (!file) continue;
    const PngTexts texts = readPngTexts(*file);
    const bool isOurs = textOf(texts, kSoftware) == kOurs && textOf(texts, kURI) == uri;
    if (isOurs && !(present && present->isIn(texts))) OwnFiles::remove(thumbnail);
  }
}

/// Of the smallest size that has it; null where none has exactly that.
const LiveSharedThumbnails::Size* LiveSharedThumbnails::sizeOf(const QImage& thumbnail, QSize full) {
  const auto size = std::find_if(kSizes.begin(), kSizes.end(), [&](const Size& one) {
    return Downscaler::fitting(full, one.side) == thumbnail.size();
  });
  return size == kSizes.end() ? nullptr : &*size;
}

FileURL LiveSharedThumbnails::place(const Size& size, const std::string& uri) const {
  const QByteArray sum = QCryptographicHash::hash(QByteArray::fromStdString(uri), QCryptographicHash::Md5);
  return folder_.appending(size.name).appending(sum.toHex().toStdString() + ".png");
}

/// Thumbnails have none themselves.
bool LiveSharedThumbnails::isInside(const FileURL& url) const {
  const auto isBelow = [](const FileURL& file, const FileURL& folder) {
    return file.path().starts_with(folder.path() + "/");
  };
  const FileURL real = url.resolvingSymlinks().value_or(url);
  return isBelow(url.standardized(), folder_.standardized()) ||
         isBelow(real, folder_.resolvingSymlinks().value_or(folder_));
}

/// Of this size or a larger one.
bool LiveSharedThumbnails::has(const Original& original, const Size& least) const {
  return std::any_of(kSizes.begin(), kSizes.end(), [&](const Size& size) {
    if (size.side < least.side) return false;
    const auto file = OwnFiles::read(place(size, original.uri), mostBytes(size.side));
    return file && headerOfThumbnail(*file, size.side) && original.isIn(readPngTexts(*file));
  });
}

void LiveSharedThumbnails::makeFolders(const Size& size) const {
  for (const FileURL& folder : {folder_.parent(), folder_, folder_.appending(size.name)}) OwnFiles::makeFolder(folder);
}

}  // namespace quillmere
