#include "formats/HeifFile.h"

#include <libheif/heif.h>
#include <QtCore/QtEndian>
#include <QtGui/QColorSpace>
#include <algorithm>
#include <exception>

#include "formats/HeifReferences.h"

namespace quillmere {
namespace {

/// As for every other format: what a picture may take decoded.
constexpr int64_t kMostBytes = int64_t{1} << 30;

bool isOk(const heif_error& error) {
  return error.code == heif_error_Ok;
}

/// Memory that ran out and threads that were refused come out of the library as exceptions.
template <typename Work>
bool succeeds(const Work& work) {
  try {
    return isOk(work());
  } catch (const std::exception&) {
    return false;
  }
}

template <typename T>
using Owned = std::unique_ptr<T, void (*)(T*)>;
using OwnedImage = std::unique_ptr<heif_image, void (*)(const heif_image*)>;

/// The colours that a display has; television's are left alone.
QColorSpace colorSpaceOf(const heif_color_profile_nclx& nclx) {
  if (nclx.transfer_characteristics != heif_transfer_characteristic_IEC_61966_2_1) return {};
  if (nclx.color_primaries == heif_color_primaries_ITU_R_BT_709_5) return QColorSpace::SRgb;
  if (nclx.color_primaries == heif_color_primaries_SMPTE_EG_432_1) return QColorSpace::DisplayP3;
  return {};
}

QColorSpace colorSpaceOf(const heif_image_handle* handle) {
  QByteArray profile(static_cast<qsizetype>(heif_image_handle_get_raw_color_profile_size(handle)), '\0');
  if (!profile.isEmpty() && isOk(heif_image_handle_get_raw_color_profile(handle, profile.data()))) {
    return QColorSpace::fromIccProfile(profile);
  }
  heif_color_profile_nclx* nclx = nullptr;
  if (!isOk(heif_image_handle_get_nclx_color_profile(handle, &nclx))) return {};
  const Owned<heif_color_profile_nclx> owned(nclx, &heif_nclx_color_profile_free);
  return colorSpaceOf(*nclx);
}

}  // namespace

bool HeifFile::isHeif(std::string_view head) {
  // Of fewer bytes the library says that they may become one.
  constexpr size_t kEnough = 12;
  if (head.size() < kEnough) return false;
  const auto verdict = heif_check_filetype(reinterpret_cast<const uint8_t*>(head.data()), kEnough);
  return verdict == heif_filetype_yes_supported || verdict == heif_filetype_maybe;
}

HeifFile::HeifFile(std::string_view bytes)
    : context_(heif_context_alloc(), &heif_context_free), handle_(nullptr, &heif_image_handle_release) {
  heif_image_handle* handle = nullptr;
  const auto read = [&] {
    return heif_context_read_from_memory_without_copy(context_.get(), bytes.data(), bytes.size(), nullptr);
  };
  const auto find = [&] { return heif_context_get_primary_image_handle(context_.get(), &handle); };
  if (heifReferences(bytes) == HeifReferences::sound && succeeds(read) && succeeds(find)) handle_.reset(handle);
}

std::optional<QSize> HeifFile::size() const {
  if (!handle_) return std::nullopt;
  const QSize size(heif_image_handle_get_width(handle_.get()), heif_image_handle_get_height(handle_.get()));
  return size.isEmpty() ? std::nullopt : std::optional(size);
}

QImage HeifFile::decoded() const {
  const auto announced = size();
  if (!announced || int64_t{4} * announced->width() * announced->height() > kMostBytes) return {};
  const Owned<heif_decoding_options> options(heif_decoding_options_alloc(), &heif_decoding_options_free);
  options->convert_hdr_to_8bit = 1;
  // What it is put together on may be of any size, too.
  const int longest =
      std::max(heif_image_handle_get_ispe_width(handle_.get()), heif_image_handle_get_ispe_height(handle_.get()));
  heif_context_set_maximum_image_size_limit(context_.get(), longest + 1);
  heif_image* decoded = nullptr;
  const auto decode = [&] {
    return heif_decode_image(handle_.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, options.get());
  };
  if (!succeeds(decode)) return {};
  const OwnedImage owned(decoded, &heif_image_release);
  int stride = 0;
  const uint8_t* pixels = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &stride);
  if (!pixels) return {};
  const bool hasAlpha = heif_image_handle_has_alpha_channel(handle_.get());
  const bool isPremultiplied = hasAlpha && heif_image_handle_is_premultiplied_alpha(handle_.get());
  const QImage view(pixels, heif_image_get_width(decoded, heif_channel_interleaved),
                    heif_image_get_height(decoded, heif_channel_interleaved), stride,
                    isPremultiplied ? QImage::Format_RGBA8888_Premultiplied : QImage::Format_RGBA8888);
  // What is coded may be of any size, whatever the header says.
  if (view.size() != *announced) return {};
  QImage image = view.convertToFormat(hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  image.setColorSpace(colorSpaceOf(handle_.get()));
  return image;
}

QByteArray HeifFile::exif() const {
  heif_item_id id = 0;
  if (!handle_ || heif_image_handle_get_list_of_metadata_block_IDs(handle_.get(), "Exif", &id, 1) != 1) return {};
  QByteArray block(static_cast<qsizetype>(heif_image_handle_get_metadata_size(handle_.get(), id)), '\0');
  // The TIFF stands as many bytes behind its length as that says.
  constexpr qsizetype kLength = 4;
  if (block.size() < kLength || !isOk(heif_image_handle_get_metadata(handle_.get(), id, block.data()))) return {};
  return block.mid(kLength + qFromBigEndian<uint32_t>(block.constData()));
}

std::optional<QByteArray> encodedHeic(const QImage& image, int quality) {
  const bool hasAlpha = image.hasAlphaChannel();
  const QImage source = image.convertToFormat(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
  const int channels = hasAlpha ? 4 : 3;
  const Owned<heif_context> context(heif_context_alloc(), &heif_context_free);

  heif_encoder* foundEncoder = nullptr;
  if (!isOk(heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &foundEncoder)))
    return std::nullopt;
  const Owned<heif_encoder> encoder(foundEncoder, &heif_encoder_release);
  heif_encoder_set_lossy_quality(encoder.get(), quality);

  heif_image* made = nullptr;
  if (!isOk(heif_image_create(source.width(), source.height(), heif_colorspace_RGB,
                              hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, &made))) {
    return std::nullopt;
  }
  const OwnedImage pixels(made, &heif_image_release);
  if (!isOk(heif_image_add_plane(made, heif_channel_interleaved, source.width(), source.height(), 8)))
    return std::nullopt;
  int stride = 0;
  uint8_t* plane = heif_image_get_plane(made, heif_channel_interleaved, &stride);
  for (int y = 0; y < source.height(); ++y) {
    std::copy_n(source.constScanLine(y), source.width() * channels, plane + static_cast<ptrdiff_t>(y) * stride);
  }
  const QByteArray profile = source.colorSpace().iccProfile();
  if (!profile.isEmpty()) {
    heif_image_set_raw_color_profile(made, "prof", profile.constData(), static_cast<size_t>(profile.size()));
  }

  const auto encode = [&] { return heif_context_encode_image(context.get(), made, encoder.get(), nullptr, nullptr); };
  if (!succeeds(encode)) return std::nullopt;
  QByteArray bytes;
  heif_writer writer{1, [](heif_context*, const void* data, size_t size, void* out) {
                       static_cast<QByteArray*>(out)->append(static_cast<const char*>(data),
                                                             static_cast<qsizetype>(size));
                       return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
                     }};
  if (!isOk(heif_context_write(context.get(), &writer, &bytes))) return std::nullopt;
  return bytes;
}

}  // namespace quillmere
