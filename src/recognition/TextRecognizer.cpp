#include "recognition/TextRecognizer.h"

#include <dlfcn.h>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>
#include <QtCore/QStringList>
#include <QtGui/QPainter>
#include <algorithm>

#include "recognition/LineText.h"
#include "recognition/TextPreparation.h"

namespace quillmere {
namespace {

/// Pictures are looked through in bands, so that memory does not grow with them. Neighbours share twice the margin,
/// which is higher than a line; each line belongs to the band in whose inner part its middle is.
constexpr int kBandPixels = 2'000'000;
constexpr int kBandMargin = 120;
constexpr int kLowestBand = 4 * kBandMargin;
/// Wider pictures are reduced.
constexpr int kWidest = 32767;

/// A line read with less confidence is read once more in the other way, which also looks for the words' places. Most
/// lines are read best as they are.
constexpr int kDoubtful = 75;
/// Of one or two characters below this, none is there: corners and icons.
constexpr int kUnbelievable = 65;
/// Fewer dashes alone are no text.
constexpr size_t kFewestMarks = 6;
/// What is printed; the engine's own guess at it from so small a picture costs time and is wrong.
constexpr int kDotsPerInch = 200;

/// The engine starts four threads for each line unless its runtime is told not to, and these wait for each other in
/// busy loops. The runtime keeps this setting for each thread; a limit on the number of threads would not do, since the
/// engine asks for four by name.
void keepToThisThread() {
  using SetLevels = void (*)(int);
  static const auto setLevels = reinterpret_cast<SetLevels>(::dlsym(RTLD_DEFAULT, "omp_set_max_active_levels"));
  if (setLevels) setLevels(0);
}

/// Pixels of 0xffRRGGBB; what shows through counts as white.
QImage band(const QImage& image, int top, int height) {
  const QImage part = image.copy(0, top, image.width(), height);
  if (!part.hasAlphaChannel()) return part.convertToFormat(QImage::Format_RGB32);
  QImage plain(part.size(), QImage::Format_RGB32);
  plain.fill(Qt::white);
  QPainter(&plain).drawImage(0, 0, part);
  return plain;
}

}  // namespace

class TextRecognizer::Engine {
 public:
  /// False when there is no data of any of the languages.
  bool load(const QLocale& locale) {
    api_.SetVariable("debug_file", "/dev/null");
    if (api_.Init(nullptr, recognitionLanguages(locale).toLatin1().constData(), tesseract::OEM_LSTM_ONLY) != 0)
      return false;
    // Lines are dark on white already; no doubtful one is to be tried the other way round.
    return api_.SetVariable("tessedit_do_invert", "0");
  }

  /// Empty when nothing is there or when it was cancelled.
  std::vector<ReadSymbol> read(const PreparedPart& part, const std::atomic<bool>& isCancelled) {
    Reading best = read(part, tesseract::PSM_RAW_LINE, isCancelled);
    if (best.confidence < kDoubtful && !isCancelled) {
      Reading other = read(part, tesseract::PSM_SINGLE_LINE, isCancelled);
      if (other.confidence > best.confidence) best = std::move(other);
    }
    if (best.symbols.size() <= 2 && best.confidence < kUnbelievable) best.symbols.clear();
    return best.symbols;
  }

 private:
  struct Reading {
    std::vector<ReadSymbol> symbols;
    int confidence = 0;
  };

  Reading read(const PreparedPart& part, tesseract::PageSegMode mode, const std::atomic<bool>& isCancelled) {
    tesseract::ETEXT_DESC monitor;
    monitor.cancel_this = const_cast<std::atomic<bool>*>(&isCancelled);
    monitor.cancel = [](void* flag, int) { return static_cast<std::atomic<bool>*>(flag)->load(); };
    const QImage& image = part.image;
    api_.SetPageSegMode(mode);
    api_.SetImage(image.constBits(), image.width(), image.height(), 1, static_cast<int>(image.bytesPerLine()));
    api_.SetSourceResolution(kDotsPerInch);
    if (api_.Recognize(&monitor) != 0) return {};
    Reading reading{{}, api_.MeanTextConf()};
    const std::unique_ptr<tesseract::ResultIterator> found(api_.GetIterator());
    constexpr auto kSymbol = tesseract::RIL_SYMBOL;
    if (found) {
      do {
        const std::unique_ptr<char[]> text(found->GetUTF8Text(kSymbol));
        int left = 0, top = 0, right = 0, bottom = 0;
        if (!text || !found->BoundingBox(kSymbol, &left, &top, &right, &bottom)) continue;
        const auto place = [&](int x) { return part.left + x / part.scale; };
        const QString symbol = QString::fromUtf8(text.get()).simplified();
        if (symbol.isEmpty()) continue;
        reading.symbols.push_back({symbol, place(left), place(right), found->IsAtBeginningOf(tesseract::RIL_WORD)});
      } while (found->Next(kSymbol));
    }
    api_.Clear();
    return reading;
  }

  tesseract::TessBaseAPI api_;
};

QString recognitionLanguages(const QLocale& locale) {
  const auto name = [&]() -> QString {
    switch (locale.language()) {
      case QLocale::Chinese:
        return locale.script() == QLocale::TraditionalHanScript ? "chi_tra" : "chi_sim";
      case QLocale::NorwegianBokmal:
      case QLocale::NorwegianNynorsk:
        return "nor";
      case QLocale::AnyLanguage:
      case QLocale::C:
        return "eng";
      default:
        return QLocale::languageToCode(locale.language(), QLocale::ISO639Part2T);
    }
  }();
  return name.isEmpty() || name == "eng" ? QString("eng") : name + "+eng";
}

TextRecognizer::TextRecognizer(const QLocale& locale) : locale_(locale) {}
TextRecognizer::~TextRecognizer() = default;

bool TextRecognizer::load() {
  keepToThisThread();
  if (engine_) return true;
  auto engine = std::make_unique<Engine>();
  if (!engine->load(locale_)) return false;
  engine_ = std::move(engine);
  return true;
}

std::optional<QString> TextRecognizer::recognizeText(const QImage& image, const std::atomic<bool>& isCancelled) {
  if (isCancelled) return std::nullopt;
  if (image.isNull()) return QString();
  if (image.width() > kWidest) return recognizeText(image.scaledToWidth(kWidest), isCancelled);
  if (!load()) return std::nullopt;
  QStringList texts;
  const int highest = std::max(kBandPixels / image.width(), kLowestBand);
  for (int top = 0, bottom = 0; bottom < image.height(); top = bottom - 2 * kBandMargin) {
    bottom = std::min(top + highest, image.height());
    const int first = top ? kBandMargin : 0;
    const int last = bottom - top - (bottom < image.height() ? kBandMargin : 0);
    const QImage plain = band(image, top, bottom - top);
    if (isCancelled) return std::nullopt;
    const TextGrounds grounds(plain);
    if (isCancelled) return std::nullopt;
    for (const TextLine& line : textLines(plain, grounds)) {
      const int middle = line.box.center().y();
      if (middle < first || middle >= last) continue;
      const auto marks = textMarks(line);
      std::vector<ReadSymbol> symbols;
      for (const TextLine& piece : withoutLongRows(line, marks)) {
        for (const PreparedPart& part : preparedLine(plain, grounds, piece)) {
          const auto found = engine_->read(part, isCancelled);
          if (isCancelled) return std::nullopt;
          symbols.insert(symbols.end(), found.begin(), found.end());
        }
      }
      if (symbols.empty() && marks.size() < kFewestMarks) continue;
      texts += lineText(line, marks, std::move(symbols)).text;
    }
  }
  return texts.join('\n');
}

}  // namespace quillmere
