#include "imaging/TextRecognizer.h"

#include <dlfcn.h>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <QtCore/QStringList>

#include <cstdlib>

#include "imaging/TextPreparation.h"

namespace quillmere {

class TextRecognizer::Engine {
 public:
  tesseract::TessBaseAPI api;
};

TextRecognizer::TextRecognizer() = default;
TextRecognizer::~TextRecognizer() = default;

std::optional<QString> TextRecognizer::recognizeText(const QImage& image, std::optional<double> scale,
                                                     const std::atomic<bool>& isCancelled) {
  (void)scale;
  static const int mode = std::getenv("T_PSM") ? std::atoi(std::getenv("T_PSM")) : 7;
  static const int least = std::getenv("T_CONF") ? std::atoi(std::getenv("T_CONF")) : 0;
  if (!engine_) {
    if (const auto set = reinterpret_cast<void (*)(int)>(::dlsym(RTLD_DEFAULT, "omp_set_max_active_levels"))) set(0);
    engine_ = std::make_unique<Engine>();
    if (engine_->api.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY) != 0) return std::nullopt;
    engine_->api.SetVariable("debug_file", "/dev/null");
  }
  auto& api = engine_->api;
  api.SetPageSegMode(static_cast<tesseract::PageSegMode>(mode));
  const QImage plain = image.convertToFormat(QImage::Format_RGB32);
  QStringList texts;
  for (const TextLine& line : textLines(plain, TextGrounds(plain))) {
    if (isCancelled) return std::nullopt;
    const QImage prepared = preparedLine(plain, line);
    if (const char* dump = std::getenv("T_DUMP")) {
      prepared.save(QString("%1/%2.png").arg(dump).arg(texts.size(), 3, 10, QChar('0')));
    }
    api.SetImage(prepared.constBits(), prepared.width(), prepared.height(), 1,
                 static_cast<int>(prepared.bytesPerLine()));
    api.SetSourceResolution(200);
    if (api.Recognize(nullptr) != 0) continue;
    const std::unique_ptr<char[]> text(api.GetUTF8Text());
    const int confidence = api.MeanTextConf();
    const QString read = QString::fromUtf8(text.get()).simplified();
    if (std::getenv("T_DUMP")) {
      std::fprintf(stderr, "%3d conf %3d box %d,%d %dx%d %s\n", (int)texts.size(), confidence, line.box.x(),
                   line.box.y(), line.box.width(), line.box.height(), qPrintable(read));
      texts += read;
      continue;
    }
    if (!read.isEmpty() && confidence >= least) texts += read;
  }
  return texts.join('\n');
}

}  // namespace quillmere
