#include "platform/linux/capture/CaptureMarks.h"

#include <fcntl.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>

#include "records/PictureFormat.h"

namespace quillmere::CaptureMarks {
namespace {

/// In a pattern "#" is one digit and "~" a run of one or more characters, none at the very end. Patterns cover the
/// whole stem and are compared in lower case.
struct NamePattern {
  std::string_view pattern;
  std::string_view tool;
};

constexpr std::array kNamePatterns{
    // Word, then date and time, of the desktops whose word is translated: only the shape of the date tells.
    NamePattern{"~ ####-##-## ##-##-##", "GNOME Shell, gnome-screenshot, mate-screenshot, niri"},
    NamePattern{"~ ####-##-## ##-##-##-+", "the same, on a collision"},
    NamePattern{"~ ####-##-## ##-##-## - +", "the same, on a collision"},
    NamePattern{"~ ####-##-## ##.##.##", "elementary, ChromeOS"},
    NamePattern{"~ ####-##-## ##.##.##@#x", "elementary, scaled"},
    NamePattern{"~ ####-##-## ##.##.## (+)", "elementary, on a collision"},
    NamePattern{"~_########_######", "Spectacle"},
    NamePattern{"~_########_######-+", "Spectacle, on a collision"},
    NamePattern{"~_####-##-##_##-##-##", "xfce4-screenshooter, COSMIC"},
    NamePattern{"~_####-##-##_##-##-##-+", "xfce4-screenshooter, on a collision"},
    NamePattern{"~_##############", "deepin"},
    NamePattern{"####-##-##_##-##", "Flameshot"},
    NamePattern{"####-##-##_##-##_+", "Flameshot, on a collision"},
    NamePattern{"####-##-##_##-##-##", "Flameshot, older"},
    // Words that the tools do not translate.
    NamePattern{"ksnip_########-######", "ksnip"},
    NamePattern{"ksnip_########-######-+", "ksnip, on a collision"},
    NamePattern{"####-##-##-######_~_scrot", "scrot"},
    NamePattern{"####-##-##-######_~_scrot_###", "scrot, on a collision"},
    NamePattern{"########_##h##m##s_grim", "grim"},
    NamePattern{"####-##-##t##:##:##,#########~", "grimshot"},
    NamePattern{"####-##-##-######_hyprshot", "hyprshot"},
    // Other systems' names, as they arrive by sync.
    NamePattern{"screenshot_########-######~", "Android"},
    NamePattern{"screenshot ####-##-## at +.##.##~", "by sync"},
    NamePattern{"screen shot ####-##-## at +.##.##~", "by sync, older"},
    NamePattern{"screenshot ####-##-## +.##.##~", "ChromeOS, 12 hours"},
    NamePattern{"screenshot (+)", "by sync"},
    NamePattern{"screenshot ####-##-## ######", "by sync"},
};

/// Beginnings of names that cameras, scanners and messengers give in the same shapes.
constexpr std::array<std::string_view, 7> kOtherBeginnings{"img_", "mvimg_", "pano_", "pxl_", "photo_", "dsc_", "scan"};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool matches(std::string_view pattern, std::string_view text) {
  while (!pattern.empty()) {
    if (pattern.front() == '~') {
      pattern.remove_prefix(1);
      for (size_t skipped = 1; skipped <= text.size(); ++skipped) {
        if (matches(pattern, text.substr(skipped))) return true;
      }
      return pattern.empty() && text.empty();
    }
    if (text.empty()) return false;
    const bool wantsDigit = pattern.front() == '#' || pattern.front() == '+';
    if (wantsDigit ? !isDigit(text.front()) : pattern.front() != text.front()) return false;
    const bool isRun = pattern.front() == '+';
    do {
      text.remove_prefix(1);
    } while (isRun && !text.empty() && isDigit(text.front()));
    pattern.remove_prefix(1);
  }
  return text.empty();
}

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
  return result;
}

std::string_view stemOf(std::string_view fileName) {
  return fileName.substr(0, fileName.rfind('.'));
}

uint32_t bigEndian(const unsigned char* bytes) {
  return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) | bytes[3];
}

std::pair<std::string, std::string> splitText(std::string_view data) {
  const auto end = data.find('\0');
  if (end == std::string_view::npos) return {};
  return {std::string(data.substr(0, end)), std::string(data.substr(end + 1))};
}

/// iTXt: key, NUL, compression flag, method, language, NUL, translated key, NUL, UTF-8 text.
std::pair<std::string, std::string> splitInternationalText(std::string_view data) {
  const auto end = data.find('\0');
  if (end == std::string_view::npos || end + 3 > data.size() || data[end + 1] != 0) return {};
  std::string_view rest = data.substr(end + 3);
  for (int field = 0; field < 2; ++field) {
    const auto stop = rest.find('\0');
    if (stop == std::string_view::npos) return {};
    rest.remove_prefix(stop + 1);
  }
  return {std::string(data.substr(0, end)), std::string(rest)};
}

bool readAt(int descriptor, int64_t offset, void* into, size_t count) {
  ssize_t got = 0;
  do {
    got = ::pread(descriptor, into, count, offset);
  } while (got < 0 && errno == EINTR);
  return got == static_cast<ssize_t>(count);
}

TextChunks readChunks(int descriptor) {
  const std::string_view wanted = traits(PictureFormat::png).signature.bytes;
  constexpr int64_t kLimit = 1 << 20;
  TextChunks chunks;
  std::array<char, 8> signature{};
  if (!readAt(descriptor, 0, signature.data(), signature.size()) ||
      std::string_view(signature.data(), signature.size()) != wanted) {
    return chunks;
  }
  int64_t offset = 8;
  while (offset < kLimit) {
    std::array<unsigned char, 8> head{};
    if (!readAt(descriptor, offset, head.data(), head.size())) break;
    const uint32_t length = bigEndian(head.data());
    const std::string_view type(reinterpret_cast<const char*>(head.data()) + 4, 4);
    if (type == "IDAT" || type == "IEND" || offset + length > kLimit) break;
    if (type == "tEXt" || type == "iTXt") {
      std::string data(length, '\0');
      if (!readAt(descriptor, offset + 8, data.data(), length)) break;
      auto chunk = type == "tEXt" ? splitText(data) : splitInternationalText(data);
      if (!chunk.first.empty()) chunks.push_back(std::move(chunk));
    }
    offset += 12 + int64_t{length};
  }
  return chunks;
}

}  // namespace

bool isCaptureText(const TextChunks& chunks) {
  return std::any_of(chunks.begin(), chunks.end(), [](const auto& chunk) {
    const auto& [key, value] = chunk;
    if (key == "Software") return value == "gnome-screenshot" || value == "mate-screenshot";
    // Spectacle's, written by way of Qt under their own names.
    if (key == "windowTitle" || key == "screen" || key == "logicalX" || key == "subGeometryList") return true;
    return key == "XML:com.adobe.xmp" &&
           value.find("<exif:UserComment>Screenshot</exif:UserComment>") != std::string::npos;
  });
}

bool isCaptureName(std::string_view fileName) {
  const std::string stem = lowerCase(stemOf(fileName));
  const auto begins = [&](std::string_view beginning) { return stem.starts_with(beginning); };
  if (std::any_of(kOtherBeginnings.begin(), kOtherBeginnings.end(), begins)) return false;
  return std::any_of(kNamePatterns.begin(), kNamePatterns.end(),
                     [&](const NamePattern& candidate) { return matches(candidate.pattern, stem); });
}

TextChunks readTextChunks(const FileURL& url) {
  const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return {};
  TextChunks chunks = readChunks(descriptor);
  ::close(descriptor);
  return chunks;
}

bool marksCapture(const FileURL& url) {
  return isCaptureName(url.lastPathComponent()) || isCaptureText(readTextChunks(url));
}

}  // namespace quillmere::CaptureMarks
