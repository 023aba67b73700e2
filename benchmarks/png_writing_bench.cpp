#include <malloc.h>
#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMargins>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QImageReader>
#include <QtGui/QImageWriter>
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"

// Crops of ten captures of real desktops, written as PNG by the program and by the general writer: median times of the
// processor, sizes, and how they stand to the limits. QUILLMERE_CAPTURES may name a folder with others; those of its
// own are taken first, which needs a minute and a half.

using namespace quillmere;

namespace {

constexpr int kRuns = 7;
constexpr double kMostTime = 0.5;
constexpr double kMostBytes = 1.1;

QByteArray byProgram(const QImage& image) {
  const auto bytes = ImageOperations::encode(image, PictureFormat::png);
  return bytes ? *bytes : QByteArray();
}

QByteArray byQt(const QImage& image) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QImageWriter(&buffer, "png").write(image);
  return bytes;
}

/// A tenth is cut off, as a person cuts off the edge of a desktop.
QImage cropOf(const QString& path) {
  const auto image = ImageOperations::loadImage(FileURL::fromPath(path));
  if (!image) return {};
  const QMargins edge(image->width() / 20, image->height() / 20, image->width() / 20, image->height() / 20);
  const auto crop = ImageOperations::crop(*image, image->rect().marginsRemoved(edge));
  return crop ? *crop : QImage();
}

/// A line of this process's state, in megabytes.
double megabytes(const QByteArray& name) {
  QFile file(QStringLiteral("/proc/self/status"));
  if (!file.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : file.readAll().split('\n')) {
    if (line.startsWith(name + ':')) return line.mid(name.size() + 1).trimmed().split(' ').front().toDouble() / 1024;
  }
  return 0;
}

double memoryNeeded(const QImage& image) {
  ::malloc_trim(0);
  QFile marks(QStringLiteral("/proc/self/clear_refs"));
  if (marks.open(QIODevice::WriteOnly)) marks.write("5");  // begins the highest mark anew
  marks.close();
  const double before = megabytes("VmRSS");
  byProgram(image);
  return megabytes("VmHWM") - before;
}

struct Measured {
  double milliseconds = 0;
  double bytes = 0;
};

struct Both {
  Measured ours;
  Measured qt;
};

/// One after the other, so that both find the machine alike; the processor's time, since neither uses a second thread
/// and other programs shall not count.
Both measure(const QImage& image) {
  std::array<std::vector<double>, 2> times;
  std::array<qsizetype, 2> sizes{};
  for (int run = 0; run < kRuns; ++run) {
    for (size_t i = 0; i < 2; ++i) {
      const std::clock_t start = std::clock();
      sizes[i] = (i == 0 ? byProgram(image) : byQt(image)).size();
      times[i].push_back(1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
  }
  for (auto& values : times) std::nth_element(values.begin(), values.begin() + kRuns / 2, values.end());
  return {{times[0][kRuns / 2], static_cast<double>(sizes[0])}, {times[1][kRuns / 2], static_cast<double>(sizes[1])}};
}

void print(const QString& name, const Both& both) {
  const double time = both.ours.milliseconds / both.qt.milliseconds;
  const double size = both.ours.bytes / both.qt.bytes;
  std::printf("%-38s %9.1f %9.1f %6.2f %9.0f %9.0f %6.2f  %s\n", qPrintable(name), both.ours.milliseconds,
              both.qt.milliseconds, time, both.ours.bytes / 1000, both.qt.bytes / 1000, size,
              time <= kMostTime && size <= kMostBytes ? "kept" : "MISSED");
}

bool takeCaptures(const QString& folder) {
  return QProcess::execute(QStringLiteral("/usr/bin/python3"),
                           {QStringLiteral("-B"), QStringLiteral(QUILLMERE_TAKE_CAPTURES), folder}) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  QImageReader::setAllocationLimit(1024);
  const QTemporaryDir own;
  QDir folder(qEnvironmentVariable("QUILLMERE_CAPTURES", own.path()));
  if (folder.path() == own.path() && !takeCaptures(own.path())) return 1;
  const QStringList names = folder.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
  if (names.isEmpty()) return 1;

  std::printf("%-38s %9s %9s %6s %9s %9s %6s\n", "", "ms", "Qt ms", "ratio", "kB", "Qt kB", "ratio");
  Both all;
  QImage largest;
  for (const QString& name : names) {
    const QImage crop = cropOf(folder.filePath(name));
    if (crop.isNull()) return 1;
    const Both both = measure(crop);
    print(name, both);
    for (const auto part : {&Both::ours, &Both::qt}) {
      (all.*part).milliseconds += (both.*part).milliseconds;
      (all.*part).bytes += (both.*part).bytes;
    }
    if (crop.sizeInBytes() >= largest.sizeInBytes()) largest = crop;
  }
  print(QStringLiteral("all"), all);
  std::printf("memory besides the picture of %d x %d: %.1f MB\n", largest.width(), largest.height(),
              memoryNeeded(largest));
  return 0;
}
