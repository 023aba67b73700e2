#include <benchmark/benchmark.h>
#include <vips/vips.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QImageReader>

#include "Limits.h"
#include "PaintedDesktop.h"
#include "formats/ImageFile.h"
#include "foundation/ManualExecutor.h"
#include "platform/linux/reading/ReaderPool.h"
#include "platform/linux/thumbnails/LiveSharedThumbnails.h"

using namespace quillmere;

namespace {

constexpr QSize kLarge(5120, 2880);
constexpr QSize kUsual(2560, 1440);
/// Of a row's picture.
constexpr int kRow = 128;
/// A capture of a part of the screen, whose sides no power of two divides.
constexpr QSize kPart(4999, 2811);

QImage withAlpha(const QImage& picture) {
  QImage result = picture.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < result.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(result.scanLine(y));
    // A window's shadow on both sides.
    for (int x = 0; x < 200; ++x) row[x] = row[result.width() - 1 - x] = qRgba(10, 10, 10, x / 2);
  }
  return result;
}

std::shared_ptr<PictureReading> readers(Executor& executor) {
  const FileURL folder = FileURL::fromPath(QCoreApplication::applicationDirPath());
  return std::make_shared<ReaderPool>(executor, ReaderPool::programBesides(folder));
}

struct Captures {
  explicit Captures(const QString& folder)
      : png(folder + QStringLiteral("/a.png")),
        clearPng(folder + QStringLiteral("/clear.png")),
        jpeg(folder + QStringLiteral("/a.jpg")),
        partJpeg(folder + QStringLiteral("/part.jpg")),
        usualPng(folder + QStringLiteral("/usual.png")),
        shared(FileURL::fromPath(folder + QStringLiteral("/cache/thumbnails")), readers(executor),
               [] { return Date(); }) {
    const QImage picture = paintedDesktop(kLarge, 1);
    picture.save(png);
    withAlpha(picture).save(clearPng);
    picture.save(jpeg, "JPEG", 90);
    paintedDesktop(kPart, 1).save(partJpeg, "JPEG", 90);
    paintedDesktop(kUsual, 1).save(usualPng);
    for (const QString& path : {png, usualPng}) {
      const FileURL url = FileURL::fromPath(path);
      shared.keep(url, *fileStatus(url), ImageFile::thumbnail(url, kRow));
    }
  }
  QString png;
  QString clearPng;
  QString jpeg;
  QString partJpeg;
  QString usualPng;
  ManualExecutor executor;
  LiveSharedThumbnails shared;
};
Captures* captures = nullptr;

void make(benchmark::State& state, const QString& path) {
  const FileURL url = FileURL::fromPath(path);
  for (auto _ : state) {
    if (ImageFile::thumbnail(url, static_cast<int>(state.range(0))).isNull()) state.SkipWithError("thumbnail");
  }
}

/// One thread, without its cache of operations.
void makeByVips(benchmark::State& state, const QString& path) {
  const QByteArray name = path.toUtf8();
  for (auto _ : state) {
    VipsImage* image = nullptr;
    const int side = static_cast<int>(state.range(0));
    size_t size = 0;
    void* pixels = nullptr;
    if (vips_thumbnail(name.constData(), &image, side, "height", side, nullptr) == 0) {
      pixels = vips_image_write_to_memory(image, &size);
    }
    if (!pixels) state.SkipWithError("thumbnail");
    g_free(pixels);
    g_clear_object(&image);
  }
}

void Png(benchmark::State& state) {
  make(state, captures->png);
}
void VipsPng(benchmark::State& state) {
  makeByVips(state, captures->png);
}
void ClearPng(benchmark::State& state) {
  make(state, captures->clearPng);
}
void VipsClearPng(benchmark::State& state) {
  makeByVips(state, captures->clearPng);
}
void Jpeg(benchmark::State& state) {
  make(state, captures->jpeg);
}
void VipsJpeg(benchmark::State& state) {
  makeByVips(state, captures->jpeg);
}
void PartJpeg(benchmark::State& state) {
  make(state, captures->partJpeg);
}
void VipsPartJpeg(benchmark::State& state) {
  makeByVips(state, captures->partJpeg);
}
/// Decoded at full size, to tell what making it smaller adds.
void DecodePng(benchmark::State& state) {
  const FileURL url = FileURL::fromPath(captures->png);
  for (auto _ : state) {
    if (ImageFile::picture(url).isNull()) state.SkipWithError("load");
  }
}
void RowPng(benchmark::State& state) {
  make(state, captures->png);
}
void RowUsualPng(benchmark::State& state) {
  make(state, captures->usualPng);
}
/// The same rows from the cache that programs share.
void find(benchmark::State& state, const QString& path) {
  const FileURL url = FileURL::fromPath(path);
  for (auto _ : state) {
    if (!captures->shared.find(url, kRow)) state.SkipWithError("no thumbnail");
  }
}
void SharedRowPng(benchmark::State& state) {
  find(state, captures->png);
}
void SharedRowUsualPng(benchmark::State& state) {
  find(state, captures->usualPng);
}
/// What a row costs another thread when it is kept. Each time anew.
void KeepRowPng(benchmark::State& state) {
  const FileURL url = FileURL::fromPath(captures->png);
  const FileStatus status = *fileStatus(url);
  const QImage thumbnail = ImageFile::thumbnail(url, kRow);
  const QTemporaryDir folder;
  const FileURL cache = FileURL::fromPath(folder.path());
  ManualExecutor executor;
  LiveSharedThumbnails shared(cache, readers(executor), [] { return Date(); });
  for (auto _ : state) {
    shared.keep(url, status, thumbnail);
    state.PauseTiming();
    QDir(folder.filePath(QStringLiteral("normal"))).removeRecursively();
    state.ResumeTiming();
  }
}
BENCHMARK(RowPng)->Arg(kRow)->UseRealTime();
BENCHMARK(RowUsualPng)->Arg(kRow)->UseRealTime();
BENCHMARK(SharedRowPng)->Arg(kRow)->UseRealTime();
BENCHMARK(SharedRowUsualPng)->Arg(kRow)->UseRealTime();
BENCHMARK(KeepRowPng)->Arg(kRow)->UseRealTime();
BENCHMARK(Png)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(VipsPng)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(ClearPng)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(VipsClearPng)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(Jpeg)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(VipsJpeg)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(PartJpeg)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(VipsPartJpeg)->Arg(408)->Arg(816)->UseRealTime();
BENCHMARK(DecodePng)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  if (VIPS_INIT(argv[0]) != 0) return 1;
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  const QTemporaryDir folder;
  Captures files(folder.path());
  captures = &files;
  return runWithLimits(argc, argv,
                       {{"Png/408", "VipsPng/408", 0.4},
                        {"Png/816", "VipsPng/816", 0.4},
                        {"ClearPng/408", "VipsClearPng/408", 0.4},
                        {"ClearPng/816", "VipsClearPng/816", 0.4},
                        {"Jpeg/408", "VipsJpeg/408", 1},
                        {"Jpeg/816", "VipsJpeg/816", 1},
                        {"PartJpeg/408", "VipsPartJpeg/408", 1},
                        {"PartJpeg/816", "VipsPartJpeg/816", 1},
                        {"SharedRowPng/128", "RowPng/128", 0.1},
                        {"SharedRowUsualPng/128", "RowUsualPng/128", 0.2}},
                       {});
}
