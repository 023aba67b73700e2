/// detect-windows IMAGE: prints as one JSON object which windows the picture shows.
///
///   --scale S          the picture's pixels per point, instead of what its file says
///   --no-rectangles    as if the library's rectangle detector saw nothing
///   --rectangles FILE  what it saw instead, as lines of "x y width height"
///   --time N           the median milliseconds of N runs of each stage
///   --states FILE      also which windows are known, by the window system's states in the file (see window-states)
///   --only-known       nothing but those
///
/// Reads PNG, JPEG, HEIC and 8-bit binary PGM. The bytes of a PGM are the gray picture as they stand.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "detection/CapturedWindows.h"
#include "detection/EdgeMaps.h"
#include "detection/ShadowFallOff.h"
#include "detection/VisionRectangles.h"
#include "detection/WindowScan.h"
#include "detection/WindowShadow.h"
#include "formats/ImageOperations.h"
#include "formats/ImageScale.h"
#include "foundation/FileStatus.h"
#include "platform/linux/passing/PassedWindowStates.h"

using namespace quillmere;

namespace {

struct Arguments {
  FileURL image;
  std::optional<double> scale;
  std::optional<std::vector<QRectF>> rectangles;  ///< instead of the library's
  int runs = 0;
  std::string states;  ///< a file
  bool isOnlyKnown = false;
};

/// The picture in the form that its file has: a PGM is gray already.
struct Input {
  std::optional<QImage> picture;
  std::optional<GrayImage> gray;
  int64_t width = 0;
  int64_t height = 0;
};

[[noreturn]] void stop(const std::string& reason) {
  std::fprintf(stderr, "detect-windows: %s\n", reason.c_str());
  std::exit(1);
}

std::vector<QRectF> readRectangles(const std::string& path) {
  std::ifstream file(path);
  if (!file) stop("cannot read " + path);
  std::vector<QRectF> rectangles;
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  while (file >> x >> y >> width >> height) rectangles.emplace_back(x, y, width, height);
  if (!file.eof()) stop("each line of " + path + " must be: x y width height");
  return rectangles;
}

Arguments parse(int argc, char** argv) {
  Arguments arguments;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const auto next = [&]() -> std::string {
      if (i + 1 >= argc) stop(argument + " needs a value");
      return argv[++i];
    };
    const auto number = [&](double least) {
      const std::string text = next();
      char* end = nullptr;
      const double value = std::strtod(text.c_str(), &end);
      if (text.empty() || *end != '\0' || !(value >= least)) stop(argument + " cannot be " + text);
      return value;
    };
    if (argument == "--scale") {
      arguments.scale = number(0);
    } else if (argument == "--time") {
      arguments.runs = static_cast<int>(number(1));
    } else if (argument == "--states") {
      arguments.states = next();
    } else if (argument == "--only-known") {
      arguments.isOnlyKnown = true;
    } else if (argument == "--no-rectangles") {
      arguments.rectangles.emplace();
    } else if (argument == "--rectangles") {
      arguments.rectangles = readRectangles(next());
    } else if (arguments.image.isEmpty() && !argument.starts_with("--")) {
      arguments.image = FileURL::fromPath(std::filesystem::weakly_canonical(argument).string());
    } else {
      stop("what is " + argument + "?");
    }
  }
  if (arguments.image.isEmpty()) {
    stop("IMAGE [--scale S] [--no-rectangles | --rectangles FILE] [--time N] [--states FILE]");
  }
  return arguments;
}

/// The next number of a PGM's head, past blanks and comments.
std::optional<int64_t> headNumber(const std::string& bytes, size_t& at) {
  while (at < bytes.size() && (std::isspace(static_cast<unsigned char>(bytes[at])) != 0 || bytes[at] == '#')) {
    if (bytes[at] == '#') {
      while (at < bytes.size() && bytes[at] != '\n') ++at;
    } else {
      ++at;
    }
  }
  const size_t begin = at;
  int64_t number = 0;
  while (at < bytes.size() && bytes[at] >= '0' && bytes[at] <= '9' && at - begin < 9) {
    number = 10 * number + (bytes[at++] - '0');
  }
  return at > begin ? std::optional(number) : std::nullopt;
}

std::optional<GrayImage> readPgm(const std::string& bytes) {
  size_t at = 2;
  const auto width = headNumber(bytes, at);
  const auto height = headNumber(bytes, at);
  const auto most = headNumber(bytes, at);
  ++at;  // one blank before the pixels
  if (!width || !height || !most || *width < 1 || *height < 1 || *most < 1 || *most > 255) return std::nullopt;
  const auto count = static_cast<size_t>(*width * *height);
  if (bytes.size() < at || bytes.size() - at < count) return std::nullopt;
  GrayImage gray(*width, *height);
  std::memcpy(gray.row(0), bytes.data() + at, count);
  return gray;
}

Input read(const FileURL& url) {
  std::string head(2, '\0');
  std::ifstream(url.path(), std::ios::binary).read(head.data(), 2);
  Input input;
  if (head == "P5") {
    const auto bytes = readFile(url);
    input.gray = bytes ? readPgm(*bytes) : std::nullopt;
    if (!input.gray) stop("this is no 8-bit binary PGM");
    input.width = input.gray->width();
    input.height = input.gray->height();
    return input;
  }
  auto picture = ImageOperations::loadImage(url);
  if (!picture) stop(ImageOperations::description(picture.reason()).toStdString());
  input.picture = *std::move(picture);
  input.width = input.picture->width();
  input.height = input.picture->height();
  input.gray = grayImage(*input.picture);
  return input;
}

// --- What was found ---

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void writeWhole(Writer& out, const char* key, double value) {
  out.Key(key);
  out.Int64(static_cast<int64_t>(value));
}
void writeFlag(Writer& out, const char* key, bool value) {
  out.Key(key);
  out.Bool(value);
}
void writeText(Writer& out, const char* key, const char* value) {
  out.Key(key);
  out.String(value);
}

const char* nameOf(WindowShadowMargin::Source source) {
  switch (source) {
    case WindowShadowMargin::Source::measured:
      return "measured";
    case WindowShadowMargin::Source::estimated:
      return "estimated";
    case WindowShadowMargin::Source::none:
      return "none";
  }
  return "";
}
const char* nameOf(WindowShadow::SideReading::Kind kind) {
  switch (kind) {
    case WindowShadow::SideReading::Kind::shadow:
      return "shadow";
    case WindowShadow::SideReading::Kind::clear:
      return "clear";
    case WindowShadow::SideReading::Kind::unreadable:
      return "unreadable";
  }
  return "";
}

void writeWindow(Writer& out, const ImageOperations::DetectedWindow& window,
                 const WindowShadow::Measurement& measurement) {
  out.StartObject();
  writeWhole(out, "x", window.frame.x());
  writeWhole(out, "y", window.frame.y());
  writeWhole(out, "width", window.frame.width());
  writeWhole(out, "height", window.frame.height());
  writeFlag(out, "hasTitleBarButtons", window.hasTitleBarButtons);
  writeFlag(out, "isFullyDrawn", window.isFullyDrawn);
  writeFlag(out, "isCovered", window.isCovered);
  writeFlag(out, "isEnclosed", window.isEnclosed);
  out.Key("shadow");
  out.StartObject();
  writeWhole(out, "left", window.shadow.left);
  writeWhole(out, "top", window.shadow.top);
  writeWhole(out, "right", window.shadow.right);
  writeWhole(out, "bottom", window.shadow.bottom);
  writeText(out, "source", nameOf(window.shadow.source));
  out.EndObject();
  out.Key("sides");
  out.StartArray();
  for (const WindowShadow::SideReading& side : measurement.sides) {
    out.StartObject();
    writeText(out, "kind", nameOf(side.kind));
    writeWhole(out, "extent", static_cast<double>(side.extent));
    writeFlag(out, "clipped", side.isClipped);
    out.EndObject();
  }
  out.EndArray();
  out.EndObject();
}

/// Which windows the window system's states and the picture tell of together.
void writeKnown(Writer& out, const QImage& picture, const std::string& path) {
  const auto bytes = readFile(FileURL::fromPath(std::filesystem::weakly_canonical(path).string()));
  const auto question = bytes ? PassedWindowStates::decoded(*bytes) : std::nullopt;
  if (!question) stop(path + " has no states");
  out.Key("known");
  const auto known = CapturedWindows::resolve(picture, question->states, question->closedAt);
  if (!known) {
    out.Null();
    return;
  }
  out.StartObject();
  const auto kind = std::string(codedValue(known->kind));
  writeText(out, "kind", kind.c_str());
  out.Key("windows");
  out.StartArray();
  for (const auto& window : known->windows) {
    out.StartObject();
    writeWhole(out, "x", window.frame.x());
    writeWhole(out, "y", window.frame.y());
    writeWhole(out, "width", window.frame.width());
    writeWhole(out, "height", window.frame.height());
    writeFlag(out, "isCovered", window.isCovered);
    out.EndObject();
  }
  out.EndArray();
  out.Key("front");
  known->front ? out.Uint64(*known->front) : out.Null();
  out.EndObject();
}

double medianMilliseconds(int runs, const std::function<void()>& stage) {
  std::vector<double> times;
  for (int run = 0; run < runs; ++run) {
    const auto begin = std::chrono::steady_clock::now();
    stage();
    times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
  }
  return *WindowShadow::median(times);
}

void writeTimes(Writer& out, const Arguments& arguments, const Input& input,
                const WindowDetector::RectangleFinder& rectangles, std::optional<double> scale) {
  const auto write = [&](const char* key, const std::function<void()>& stage) {
    out.Key(key);
    out.Double(medianMilliseconds(arguments.runs, stage));
  };
  out.Key("milliseconds");
  out.StartObject();
  if (input.picture) {
    write("load", [&] { (void)ImageOperations::loadImage(arguments.image); });
    write("gray", [&] { (void)grayImage(*input.picture); });
  }
  if (input.gray) {
    write("edges", [&] { (void)WindowDetector::edgeMaps(*input.gray, 16); });
    write("detect", [&] { (void)WindowDetector::find(*input.gray, rectangles); });
    write("detectWithShadows", [&] { (void)ImageOperations::detectWindows(*input.gray, scale, rectangles); });
  }
  out.EndObject();
}

}  // namespace

int main(int argc, char** argv) {
  const Arguments arguments = parse(argc, argv);
  const Input input = read(arguments.image);
  WindowDetector::RectangleFinder rectangles = &WindowDetector::visionRectangles;
  if (arguments.rectangles) rectangles = [&](const GrayImage&) { return *arguments.rectangles; };
  // A gray picture that is too small for the detector is one in which nothing is found.
  const bool isReadable = !arguments.isOnlyKnown && input.gray && input.width >= 9 && input.height >= 9;
  const auto scale = arguments.scale ? arguments.scale
                     : input.picture ? ImageOperations::imageScale(arguments.image)
                                     : std::nullopt;

  const auto findings = isReadable ? WindowDetector::find(*input.gray, rectangles) : WindowDetector::Findings();
  const auto windows = isReadable ? ImageOperations::detectWindows(*input.gray, scale, rectangles)
                                  : std::vector<ImageOperations::DetectedWindow>();
  rapidjson::StringBuffer buffer;
  Writer out(buffer);
  out.StartObject();
  writeWhole(out, "width", static_cast<double>(input.width));
  writeWhole(out, "height", static_cast<double>(input.height));
  out.Key("threshold");
  if (findings.threshold) {
    out.Int(*findings.threshold);
  } else {
    out.Null();
  }
  writeWhole(out, "candidates", static_cast<double>(findings.candidateCount));
  out.Key("windows");
  out.StartArray();
  for (const auto& window : windows) {
    writeWindow(out, window, WindowShadow::measure(*input.gray, window.frame, scale));
  }
  out.EndArray();
  out.Key("primary");
  const auto primary = ImageOperations::primaryWindow(windows);
  const auto found = primary ? std::find(windows.begin(), windows.end(), *primary) : windows.end();
  if (found != windows.end()) {
    out.Int64(found - windows.begin());
  } else {
    out.Null();
  }
  if (!arguments.states.empty() && input.picture) writeKnown(out, *input.picture, arguments.states);
  if (arguments.runs > 0) writeTimes(out, arguments, input, rectangles, scale);
  out.EndObject();
  std::puts(buffer.GetString());
}
