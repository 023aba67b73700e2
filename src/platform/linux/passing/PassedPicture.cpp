#include "platform/linux/passing/PassedPicture.h"

#include <QtGui/QColorSpace>
#include <QtGui/QPixelFormat>
#include <cstring>

namespace quillmere {
namespace {

using ReaderMessages::PictureShape;

constexpr uint64_t kMostBytes = uint64_t{2} << 30;
constexpr uint32_t kMostColours = 256;
constexpr uint32_t kMostProfileBytes = 4 << 20;
constexpr uint64_t kRowUnit = 4;

bool isFormat(int32_t format) {
  return format > QImage::Format_Invalid && format < QImage::NImageFormats;
}

bool hasColourTable(QImage::Format format) {
  return format == QImage::Format_Mono || format == QImage::Format_MonoLSB || format == QImage::Format_Indexed8;
}

/// What each pixel's number stands for has to be there.
bool areColoursFit(const PictureShape& shape) {
  constexpr uint32_t kInkAndPaper = 2;
  const auto format = static_cast<QImage::Format>(shape.format);
  if (!hasColourTable(format)) return shape.colours == 0;
  return format == QImage::Format_Indexed8 ? shape.colours > 0 && shape.colours <= kMostColours
                                           : shape.colours == kInkAndPaper;
}

std::string_view view(const void* bytes, uint64_t size) {
  return {static_cast<const char*>(bytes), static_cast<size_t>(size)};
}

}  // namespace

PassedPicture::PassedPicture(const QImage& image) : image_(image) {
  if (image_.isNull()) return;
  if (hasColourTable(image_.format())) {
    colours_ = image_.colorTable();
    const qsizetype least = image_.format() == QImage::Format_Indexed8 ? 1 : 2;
    while (colours_.size() < least) colours_.append(0);
  }
  profile_ = image_.colorSpace().iccProfile();
  if (profile_.size() > kMostProfileBytes) profile_.clear();
  shape_ = {.width = image_.width(),
            .height = image_.height(),
            .format = image_.format(),
            .dotsPerMeterX = image_.dotsPerMeterX(),
            .dotsPerMeterY = image_.dotsPerMeterY(),
            .colours = static_cast<uint32_t>(colours_.size()),
            .profileBytes = static_cast<uint32_t>(profile_.size()),
            .bytesPerLine = static_cast<uint64_t>(image_.bytesPerLine())};
}

std::vector<std::string_view> PassedPicture::parts() const {
  if (image_.isNull()) return {};
  return {view(image_.constBits(), static_cast<uint64_t>(image_.sizeInBytes())),
          view(colours_.constData(), colours_.size() * sizeof(QRgb)), view(profile_.constData(), profile_.size())};
}

std::optional<uint64_t> PassedPicture::bytesOf(const PictureShape& shape) {
  if (shape.format == QImage::Format_Invalid) return 0;
  if (!isFormat(shape.format) || shape.width <= 0 || shape.height <= 0 || !areColoursFit(shape)) return std::nullopt;
  const uint64_t depth = QImage::toPixelFormat(static_cast<QImage::Format>(shape.format)).bitsPerPixel();
  // Below 2 to the 38th, and after the next line the product below 2 to the 63rd.
  const uint64_t least = (static_cast<uint64_t>(shape.width) * depth + 7) / 8;
  if (depth == 0 || shape.bytesPerLine < least || shape.bytesPerLine > kMostBytes) return std::nullopt;
  if (shape.bytesPerLine % kRowUnit != 0 || shape.profileBytes > kMostProfileBytes) return std::nullopt;
  const uint64_t rows = shape.bytesPerLine * static_cast<uint64_t>(shape.height);
  if (rows > kMostBytes) return std::nullopt;
  return rows + shape.colours * sizeof(QRgb) + shape.profileBytes;
}

QImage PassedPicture::in(const std::shared_ptr<const SealedMemory>& memory, const PictureShape& shape) {
  const auto wanted = bytesOf(shape);
  if (!memory || !wanted || *wanted == 0 || memory->bytes().size() < *wanted) return {};
  const auto* rows = reinterpret_cast<const uchar*>(memory->bytes().data());
  const uint64_t rowBytes = shape.bytesPerLine * static_cast<uint64_t>(shape.height);
  auto* owner = new std::shared_ptr<const SealedMemory>(memory);
  const auto release = [](void* held) { delete static_cast<std::shared_ptr<const SealedMemory>*>(held); };
  QImage image(rows, shape.width, shape.height, static_cast<qsizetype>(shape.bytesPerLine),
               static_cast<QImage::Format>(shape.format), release, owner);
  // Without a picture the memory was not taken over.
  if (image.isNull()) {
    delete owner;
    return {};
  }
  const char* behind = memory->bytes().data() + rowBytes;
  if (shape.colours > 0) {
    QList<QRgb> colours(shape.colours);
    std::memcpy(colours.data(), behind, shape.colours * sizeof(QRgb));
    image.setColorTable(colours);
  }
  if (shape.profileBytes > 0) {
    const QByteArray profile(behind + shape.colours * sizeof(QRgb), static_cast<qsizetype>(shape.profileBytes));
    image.setColorSpace(QColorSpace::fromIccProfile(profile));
  }
  image.setDotsPerMeterX(shape.dotsPerMeterX);
  image.setDotsPerMeterY(shape.dotsPerMeterY);
  return image;
}

}  // namespace quillmere
