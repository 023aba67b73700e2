#include "platform/linux/reader/Reader.h"

#include <QtGui/QImage>
#include <chrono>
#include <new>
#include <string>
#include <vector>

#include "detection/CapturedWindows.h"
#include "detection/WindowScan.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageFile.h"
#include "platform/linux/passing/PassedPicture.h"
#include "platform/linux/passing/PassedWindowStates.h"
#include "platform/linux/passing/SealedMemory.h"
#include "platform/linux/passing/SharedPixels.h"
#include "platform/linux/reader/Confinement.h"
#include "reading/ScreenPicture.h"
#include "recognition/TextRecognizer.h"

namespace quillmere {
namespace {

using ReaderMessages::Answer;
using ReaderMessages::Request;
using ReaderMessages::Step;
using ReaderMessages::Verdict;
using ReaderMessages::Work;

/// Of computing, on all threads together. Whoever waits has given up long before; this ends what nobody waits for.
constexpr unsigned kMostSeconds = 300;
/// Beside twice what decoding takes by the picture's own word: stacks, copies on the way, windows; and for text.
constexpr int64_t kMemoryBeside = int64_t{512} << 20;
constexpr int64_t kMemoryForText = int64_t{3} << 30;

int64_t allowedMemory(const Request& request, int64_t said) {
  return 2 * said + (static_cast<Work>(request.work) == Work::text ? kMemoryForText : kMemoryBeside);
}

/// For the picture of an answer.
class PixelsToPass final : public PixelMemory {
 public:
  uint8_t* take(size_t bytes) override { return shared_.take(bytes); }
  /// `parts` begin with the picture, if there is one; only a picture that was made elsewhere is copied.
  std::optional<Descriptor> sealed(const QImage& picture, std::vector<std::string_view> parts) {
    if (!shared_.hold(picture)) return SealedMemory::of(parts);
    const size_t bytes = parts.front().size();
    parts.erase(parts.begin());
    return shared_.sealed(bytes, parts);
  }

 private:
  SharedPixels shared_;
};

/// What goes back: numbers, and what stands in the memory beside them.
struct Outcome {
  bool isDone = false;
  PictureError reason = PictureError::unreadable;
  std::optional<ImageFile::Head> head = std::nullopt;
  QImage image = {};
  std::string extra = {};
};

Outcome failed(PictureError reason) {
  return {.reason = reason};
}

Outcome pictured(ImageFile::Picture picture) {
  if (!picture) return failed(picture.reason());
  return {.isDone = true, .image = *std::move(picture)};
}

Outcome forScreen(ImageFile::Picture picture) {
  if (!picture) return failed(picture.reason());
  QImage image = pictureForScreen(*std::move(picture));
  if (image.isNull()) return failed(PictureError::tooCostly);
  return {.isDone = true, .image = std::move(image)};
}

Outcome judged(std::string_view bytes) {
  const auto failure = ImageFile::failureOf(bytes);
  return failure ? failed(*failure) : Outcome{.isDone = true};
}

std::string written(const std::vector<ImageOperations::DetectedWindow>& windows) {
  std::string bytes;
  for (const auto& window : windows) {
    const auto mark = [](bool isSet, int place) { return isSet ? 1u << place : 0u; };
    const ReaderMessages::Window one{.x = window.frame.x(),
                                     .y = window.frame.y(),
                                     .width = window.frame.width(),
                                     .height = window.frame.height(),
                                     .left = window.shadow.left,
                                     .top = window.shadow.top,
                                     .right = window.shadow.right,
                                     .bottom = window.shadow.bottom,
                                     .source = static_cast<uint32_t>(window.shadow.source),
                                     .marks = mark(window.hasTitleBarButtons, 0) | mark(window.isFullyDrawn, 1) |
                                              mark(window.isCovered, 2) | mark(window.isEnclosed, 3) |
                                              mark(window.isInFront, 4)};
    bytes.append(reinterpret_cast<const char*>(&one), sizeof one);
  }
  return bytes;
}

Outcome scanned(std::string bytes, std::string_view beside, const std::atomic<bool>& isStopped, PixelMemory& memory) {
  const auto known = KnownWindows::fromCoded(QByteArray(beside.data(), static_cast<qsizetype>(beside.size())));
  auto scan = ImageOperations::scanWindowsNow(
      std::move(bytes), [&] { return isStopped.load(); }, &memory, known);
  const bool isCostly = !scan && scan.reason() == ImageOperations::OperationError::tooCostly;
  if (!scan) return failed(isCostly ? PictureError::tooCostly : PictureError::unreadable);
  std::string windows = written(scan->windows);
  return {.isDone = true, .image = (*std::move(scan)).image, .extra = std::move(windows)};
}

Outcome known(std::string bytes, std::string_view beside) {
  const auto question = PassedWindowStates::decoded(beside);
  if (!question) return {};
  const auto picture = ImageFile::read(std::string_view(bytes));
  std::string().swap(bytes);
  if (!picture) return failed(picture.reason());
  const auto windows = CapturedWindows::resolve(*picture, question->states, question->closedAt);
  return {.isDone = true, .extra = windows ? windows->coded().toStdString() : std::string()};
}

Outcome recognized(TextRecognizer* recognizer, std::string bytes, const std::atomic<bool>& isStopped) {
  if (!recognizer) return {};
  const auto picture = ImageFile::read(std::string_view(bytes));
  std::string().swap(bytes);
  if (!picture) return failed(picture.reason());
  const auto text = recognizer->recognizeText(*picture, isStopped);
  return text ? Outcome{.isDone = true, .extra = text->toStdString()} : Outcome();
}

Outcome encoded(const QImage& image, int32_t format) {
  const bool isKnown = format >= 0 && format <= static_cast<int32_t>(PictureFormat::heif);
  if (image.isNull() || !isKnown) return {};
  const auto bytes = ImageOperations::encode(image, static_cast<PictureFormat>(format));
  return bytes ? Outcome{.isDone = true, .extra = bytes->toStdString()} : Outcome();
}

Outcome worked(const Request& request, std::string bytes, std::string_view beside, const std::atomic<bool>& isStopped,
               TextRecognizer* texts, PixelMemory& memory) {
  switch (static_cast<Work>(request.work)) {
    case Work::wholeness:
      return judged(bytes);
    case Work::picture:
      return pictured(ImageFile::read(std::string_view(bytes), {}, &memory));
    case Work::thumbnail:
      return forScreen(ImageFile::readSmall(std::string_view(bytes), request.number));
    case Work::windows:
      return scanned(std::move(bytes), beside, isStopped, memory);
    case Work::knownWindows:
      return known(std::move(bytes), beside);
    case Work::text:
      return recognized(texts, std::move(bytes), isStopped);
    case Work::head:
    case Work::encoding:
    case Work::wholenesses:
      break;
  }
  return {};
}

/// None for one that needs a turn of its own.
std::optional<Verdict> verdictOn(int file) {
  const auto bytes = ImageFile::bytesToDecode(file);
  const auto memory = bytes ? ImageFile::memoryFor(*bytes) : Result<int64_t, PictureError>(bytes.reason());
  if (memory && *memory > ReaderMessages::kMemoryOfEach) return std::nullopt;
  const auto failure = memory ? ImageFile::failureOf(std::string_view(*bytes)) : std::optional(memory.reason());
  return Verdict{.isJudged = 1, .isWhole = !failure, .reason = failure ? static_cast<uint32_t>(*failure) : 0};
}

/// The program's own picture, which it has no reason to lie about.
QImage pictureIn(const Request& request, const Descriptor& memory) {
  const auto bytes = PassedPicture::bytesOf(request.shape);
  return bytes ? PassedPicture::in(SealedMemory::mapped(memory, *bytes), request.shape) : QImage();
}

}  // namespace

Reader::Reader(PacketSocket& socket, const ReaderMessages::Signals& signals, TextRecognizer* recognizer)
    : socket_(socket), signals_(signals), recognizer_(recognizer) {}

void Reader::warmUp() {
  QImage pixel(16, 16, QImage::Format_RGB32);
  pixel.fill(Qt::white);
  for (const PictureFormat format : {PictureFormat::png, PictureFormat::jpeg}) {
    const auto bytes = ImageOperations::encode(pixel, format);
    if (bytes) ImageFile::picture(std::string_view(bytes->constData(), static_cast<size_t>(bytes->size())));
  }
}

void Reader::run() {
  std::vector<Descriptor> files;
  while (const auto request = socket_.receiveWith<Request>(files, ReaderMessages::kMostFiles)) {
    Confinement::allowSeconds(kMostSeconds);
    if (static_cast<Work>(request->work) == Work::wholenesses) {
      judge(std::move(files));
    } else {
      answer(*request, std::move(files));
    }
  }
}

/// Whoever asked waits no longer than pictures take that are soon judged.
void Reader::judge(std::vector<Descriptor> files) {
  using Clock = std::chrono::steady_clock;
  constexpr auto kLongest = std::chrono::seconds(1);
  ReaderMessages::Verdicts verdicts;
  const auto end = Clock::now() + kLongest;
  for (size_t i = 0; i < files.size() && Clock::now() < end; ++i) {
    try {
      verdicts.of[i] = verdictOn(files[i].number()).value_or(Verdict());
    } catch (const std::bad_alloc&) {
      verdicts.of[i] = Verdict();
    }
  }
  socket_.send(verdicts);
}

void Reader::answer(const Request& request, std::vector<Descriptor> files) {
  Descriptor file = files.empty() ? Descriptor() : std::move(files.front());
  const auto beside = files.size() > 1 ? SealedMemory::mapped(files[1], request.besideBytes) : nullptr;
  PixelsToPass pixels;
  Outcome outcome;
  try {
    if (static_cast<Work>(request.work) == Work::head) {
      socket_.send(Answer{.step = static_cast<uint32_t>(Step::begun)});
      outcome.head = ImageFile::head(file.number());
      outcome.isDone = outcome.head.has_value();
    } else if (static_cast<Work>(request.work) == Work::encoding) {
      socket_.send(Answer{.step = static_cast<uint32_t>(Step::begun)});
      outcome = encoded(pictureIn(request, file), request.number);
    } else if (auto bytes = ImageFile::bytesToDecode(file.number())) {
      file = Descriptor();
      if (const auto memory = ImageFile::memoryFor(*bytes)) {
        socket_.send(Answer{.step = static_cast<uint32_t>(Step::begun), .memory = *memory});
        if (!socket_.receive<ReaderMessages::Turn>()) return;
        const Confinement::MemoryAllowance allowance(allowedMemory(request, *memory));
        outcome = worked(request, *std::move(bytes), beside ? beside->bytes() : std::string_view(), signals_.isStopped,
                         recognizer_, pixels);
      } else {
        outcome = failed(memory.reason());
      }
    } else {
      outcome = failed(bytes.reason());
    }
  } catch (const std::bad_alloc&) {
    outcome = failed(PictureError::tooCostly);
  }
  Answer answer{.step = static_cast<uint32_t>(Step::done), .isDone = outcome.isDone};
  answer.reason = static_cast<uint32_t>(outcome.reason);
  if (outcome.head) {
    answer.format = static_cast<uint32_t>(outcome.head->format);
    answer.width = outcome.head->size.width();
    answer.height = outcome.head->size.height();
  }
  const PassedPicture picture(outcome.image);
  auto parts = picture.parts();
  if (!outcome.extra.empty()) parts.push_back(outcome.extra);
  const auto memory = parts.empty() ? std::nullopt : pixels.sealed(outcome.image, parts);
  if (memory) {
    answer.shape = picture.shape();
    answer.extraBytes = outcome.extra.size();
  } else if (!parts.empty()) {
    answer.isDone = 0;
  }
  socket_.send(answer, memory ? memory->number() : -1);
}

}  // namespace quillmere
