#include <benchmark/benchmark.h>
#include <vips/vips.h>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QImageReader>

#include "Limits.h"
#include "PaintedDesktop.h"
#include "formats/ImageFile.h"
#include "formats/ImageOperations.h"

using namespace quillmere;

namespace {

constexpr QSize kLarge(5120, 2880);
constexpr QSize kMiddle(2560, 1440);

/// Captures as files. Capture tools write with the filters that libpng chooses for each row; some choose one for all.
struct Captures {
  explicit Captures(const QString& folder)
      : large(folder + QStringLiteral("/large.png")),
        middle(folder + QStringLiteral("/middle.png")),
        paeth(folder + QStringLiteral("/paeth.png")) {
    paintedDesktop(kLarge, 1).save(large);
    paintedDesktop(kMiddle, 2).save(middle);
    VipsImage* image = vips_image_new_from_file(large.toUtf8().constData(), nullptr);
    vips_pngsave(image, paeth.toUtf8().constData(), "filter", VIPS_FOREIGN_PNG_FILTER_PAETH, nullptr);
    g_object_unref(image);
  }
  QString large;
  QString middle;
  QString paeth;
};
const Captures* captures = nullptr;

void load(benchmark::State& state, const QString& path) {
  const FileURL url = FileURL::fromPath(path);
  for (auto _ : state) {
    const auto image = ImageOperations::loadImage(url);
    if (!image) state.SkipWithError("load");
  }
}

/// One thread, without its cache of operations; asked for the pixels from top to bottom, which is its fastest.
void loadByVips(benchmark::State& state, const QString& path) {
  const QByteArray name = path.toUtf8();
  for (auto _ : state) {
    VipsImage* image = vips_image_new_from_file(name.constData(), "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    size_t size = 0;
    void* pixels = image ? vips_image_write_to_memory(image, &size) : nullptr;
    if (!pixels) state.SkipWithError("load");
    g_free(pixels);
    g_clear_object(&image);
  }
}

void Load5120(benchmark::State& state) {
  load(state, captures->large);
}
void Load2560(benchmark::State& state) {
  load(state, captures->middle);
}
void Load5120Paeth(benchmark::State& state) {
  load(state, captures->paeth);
}
void Vips5120(benchmark::State& state) {
  loadByVips(state, captures->large);
}
void Vips2560(benchmark::State& state) {
  loadByVips(state, captures->middle);
}
void Vips5120Paeth(benchmark::State& state) {
  loadByVips(state, captures->paeth);
}
void Qt5120(benchmark::State& state) {
  for (auto _ : state) {
    if (QImageReader(captures->large).read().isNull()) state.SkipWithError("load");
  }
}
/// What the folder's monitor asks of each new screenshot.
void IsWhole5120(benchmark::State& state) {
  const FileURL url = FileURL::fromPath(captures->large);
  for (auto _ : state) {
    if (!ImageFile::decodesCompletely(url)) state.SkipWithError("load");
  }
}
BENCHMARK(Load5120)->UseRealTime();
BENCHMARK(Load2560)->UseRealTime();
BENCHMARK(Load5120Paeth)->UseRealTime();
BENCHMARK(Vips5120)->UseRealTime();
BENCHMARK(Vips2560)->UseRealTime();
BENCHMARK(Vips5120Paeth)->UseRealTime();
BENCHMARK(Qt5120)->UseRealTime();
BENCHMARK(IsWhole5120)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  if (VIPS_INIT(argv[0]) != 0) return 1;
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  QImageReader::setAllocationLimit(1024);
  const QTemporaryDir folder;
  const Captures files(folder.path());
  captures = &files;
  return runWithLimits(
      argc, argv,
      {{"Load5120", "Vips5120", 0.33}, {"Load2560", "Vips2560", 0.33}, {"Load5120Paeth", "Vips5120Paeth", 0.33}}, {});
}
