#include <benchmark/benchmark.h>
#include <malloc.h>
#include <QtGui/QGuiApplication>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <opencv2/imgproc.hpp>

#include "Limits.h"
#include "PaintedDesktop.h"
#include "detection/EdgeMaps.h"
#include "detection/VisionRectangles.h"
#include "detection/WindowDetector.h"
#include "detection/WindowScan.h"
#include "detection/WindowShadow.h"
#include "formats/ImageOperations.h"

using namespace quillmere;

namespace {

constexpr int kThreshold = 16;

const QImage& picture(int64_t width) {
  static const QImage small = paintedDesktop(QSize(2560, 1440), 1);
  static const QImage large = paintedDesktop(QSize(5120, 2880), 1);
  return width == 2560 ? small : large;
}
const GrayImage& gray(int64_t width) {
  static const GrayImage small = *grayImage(picture(2560));
  static const GrayImage large = *grayImage(picture(5120));
  return width == 2560 ? small : large;
}
cv::Mat grayMatrix(int64_t width) {
  const GrayImage& image = gray(width);
  return {static_cast<int>(image.height()), static_cast<int>(image.width()), CV_8UC1,
          const_cast<uint8_t*>(image.row(0))};
}

/// The picture as the file that a capture tool leaves.
const FileURL& file(int64_t width) {
  static const auto write = [](const QImage& image, const char* name) {
    const FileURL url = FileURL::fromPath((std::filesystem::temp_directory_path() / name).string());
    if (!image.save(url.displayPath())) std::abort();
    return url;
  };
  static const FileURL small = write(picture(2560), "quillmere-bench-2560.png");
  static const FileURL large = write(picture(5120), "quillmere-bench-5120.png");
  return width == 2560 ? small : large;
}

/// Ten frames all over the picture, as a full desktop has windows.
std::vector<QRectF> tenFrames(int64_t width) {
  const double unit = static_cast<double>(width) / 2560;
  std::vector<QRectF> frames;
  for (int i = 0; i < 10; ++i) {
    frames.emplace_back(unit * (120 + 180 * i), unit * (90 + 60 * i), unit * 700, unit * 500);
  }
  return frames;
}

void Canny(benchmark::State& state) {
  cv::setNumThreads(1);
  const cv::Mat matrix = grayMatrix(state.range(0));
  for (auto _ : state) {
    cv::Mat edges;
    cv::Canny(matrix, edges, 50, 150);
    benchmark::DoNotOptimize(edges.data);
  }
}
BENCHMARK(Canny)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

void CannyAndContours(benchmark::State& state) {
  cv::setNumThreads(1);
  const cv::Mat matrix = grayMatrix(state.range(0));
  for (auto _ : state) {
    cv::Mat edges;
    cv::Canny(matrix, edges, 50, 150);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(edges, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
    for (const auto& contour : contours) {
      std::vector<cv::Point> polygon;
      cv::approxPolyDP(contour, polygon, 0.02 * cv::arcLength(contour, true), true);
      benchmark::DoNotOptimize(polygon.data());
    }
  }
}
BENCHMARK(CannyAndContours)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

void Detect(benchmark::State& state) {
  const QImage& image = picture(state.range(0));
  for (auto _ : state) {
    const auto windows = WindowDetector::detect(image);
    if (windows.empty()) state.SkipWithError("no window");
    state.counters["windows"] = static_cast<double>(windows.size());
  }
}
BENCHMARK(Detect)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

void ShadowsOfTenWindows(benchmark::State& state) {
  const QImage& image = picture(state.range(0));
  const auto frames = tenFrames(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(WindowShadow::margins(frames, image, std::nullopt));
}
BENCHMARK(ShadowsOfTenWindows)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

void GrayCopy(benchmark::State& state) {
  const QImage& image = picture(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(grayImage(image));
}
BENCHMARK(GrayCopy)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

/// The floor of the edge maps: copying the gray picture to fresh memory.
void CopyOfGray(benchmark::State& state) {
  const GrayImage& image = gray(state.range(0));
  const auto size = static_cast<size_t>(image.width() * image.height());
  for (auto _ : state) {
    const auto copy = std::make_unique_for_overwrite<uint8_t[]>(size);
    std::memcpy(copy.get(), image.row(0), size);
    benchmark::DoNotOptimize(copy.get());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(CopyOfGray)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

void EdgeMapsOfOneThreshold(benchmark::State& state) {
  const GrayImage& image = gray(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(WindowDetector::edgeMaps(image, kThreshold));
}
BENCHMARK(EdgeMapsOfOneThreshold)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

void RectanglesOfTheLibrary(benchmark::State& state) {
  const GrayImage& image = gray(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(WindowDetector::visionRectangles(image));
}
BENCHMARK(RectanglesOfTheLibrary)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

void LoadImage(benchmark::State& state) {
  const FileURL& url = file(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(ImageOperations::loadImage(url));
}
BENCHMARK(LoadImage)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

/// The picture and its windows with their shadows, from the file.
void ScanWindows(benchmark::State& state) {
  const FileURL& url = file(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(ImageOperations::scanWindowsNow(url));
}
BENCHMARK(ScanWindows)->Arg(2560)->Arg(5120)->Unit(benchmark::kMillisecond);

/// Resident kilobytes: the most since it was last reset, or now.
int64_t residentKilobytes(const char* field) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    if (word != field) continue;
    int64_t kilobytes = 0;
    status >> kilobytes;
    return kilobytes;
  }
  return 0;
}

/// What the search for windows takes beside the picture itself.
void printMemory(int64_t width) {
  const QImage& image = picture(width);
  ::malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;
  const int64_t before = residentKilobytes("VmRSS:");
  benchmark::DoNotOptimize(ImageOperations::detectWindows(image, std::nullopt));
  const double bytes = 1024.0 * static_cast<double>(residentKilobytes("VmHWM:") - before);
  const double perPixel = bytes / (static_cast<double>(image.width()) * image.height());
  std::printf("Memory/%d = %.2f bytes a pixel beside the picture, limit 3.20: %s\n", image.width(), perPixel,
              perPixel <= 3.2 ? "kept" : "MISSED");
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  std::vector<RatioLimit> limits;
  for (const std::string size : {"/2560", "/5120"}) {
    limits.push_back({"Detect" + size, "Canny" + size, 0.5});
    limits.push_back({"EdgeMapsOfOneThreshold" + size, "CopyOfGray" + size, 4});
    limits.push_back({"ShadowsOfTenWindows" + size, "Detect" + size, 1});
    limits.push_back({"ScanWindows" + size, "LoadImage" + size, 1.5});
  }
  const int result = runWithLimits(argc, argv, limits, {});
  for (const int64_t width : {2560, 5120}) printMemory(width);
  return result;
}
