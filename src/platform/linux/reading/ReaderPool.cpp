#include "platform/linux/reading/ReaderPool.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <QtCore/QtGlobal>
#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "foundation/FileStatus.h"
#include "platform/linux/passing/PassedPicture.h"
#include "platform/linux/passing/PassedWindowStates.h"
#include "platform/linux/passing/Protections.h"

namespace quillmere {
namespace {

using ImageOperations::DetectedWindow;
using ImageOperations::OperationError;
using ImageOperations::WindowScan;
using ReaderMessages::Answer;
using ReaderMessages::PictureShape;
using ReaderMessages::Request;
using ReaderMessages::Window;
using ReaderMessages::Work;
using End = ReaderProcess::End;

/// For work that nobody stops.
const std::atomic<bool> kNever = false;
/// Readers that end before they look at a picture are not its fault, but not all of them can.
constexpr int kMostAttempts = 8;
constexpr uint64_t kMostWindowBytes = uint64_t{100'000} * sizeof(Window);
constexpr uint64_t kMostTextBytes = uint64_t{16} << 20;
constexpr uint64_t kMostEncodedBytes = uint64_t{2} << 30;

Request request(Work work, int32_t number = 0, const PictureShape& shape = {}) {
  return {.work = static_cast<uint32_t>(work), .number = number, .shape = shape};
}

/// What may come back beside a picture.
uint64_t mostExtraBytes(const Request& request) {
  switch (static_cast<Work>(request.work)) {
    case Work::windows:
    case Work::knownWindows:
      return kMostWindowBytes;
    case Work::text:
      return kMostTextBytes;
    case Work::encoding:
      return kMostEncodedBytes;
    case Work::head:
    case Work::wholeness:
    case Work::picture:
    case Work::thumbnail:
    case Work::wholenesses:
      break;
  }
  return 0;
}

bool brings(const Request& request, Work work) {
  return request.work == static_cast<uint32_t>(work);
}

bool bringsPicture(const Request& request) {
  return brings(request, Work::picture) || brings(request, Work::thumbnail) || brings(request, Work::windows);
}

bool decodes(const Request& request) {
  return !brings(request, Work::head) && !brings(request, Work::encoding);
}

/// A link put in a picture's place would have another file read; a pipe in it would hold the reader.
Descriptor openPicture(const FileURL& url) {
  return Descriptor(::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
}

/// As what it is taken for decides about a person's file.
std::optional<DetectedWindow> windowOf(const Window& passed, const QSize& picture) {
  const QRectF frame(passed.x, passed.y, passed.width, passed.height);
  const bool isInside = passed.x >= 0 && passed.y >= 0 && passed.width >= 0 && passed.height >= 0 &&
                        passed.x + passed.width <= picture.width() && passed.y + passed.height <= picture.height();
  if (!isInside || passed.source > static_cast<uint32_t>(WindowShadowMargin::Source::none)) return std::nullopt;
  const double most = std::max(picture.width(), picture.height());
  for (const double margin : {passed.left, passed.top, passed.right, passed.bottom}) {
    if (!(margin >= 0 && margin <= most)) return std::nullopt;
  }
  const auto has = [&](int place) { return (passed.marks & (1u << place)) != 0; };
  return DetectedWindow{
      frame,
      {passed.left, passed.top, passed.right, passed.bottom, static_cast<WindowShadowMargin::Source>(passed.source)},
      has(0),
      has(1),
      has(2),
      has(3),
      has(4)};
}

std::optional<std::vector<DetectedWindow>> windowsIn(std::string_view bytes, const QSize& picture) {
  if (bytes.size() % sizeof(Window) != 0) return std::nullopt;
  std::vector<DetectedWindow> windows;
  for (; !bytes.empty(); bytes.remove_prefix(sizeof(Window))) {
    Window passed{};
    std::memcpy(&passed, bytes.data(), sizeof passed);
    const auto window = windowOf(passed, picture);
    if (!window) return std::nullopt;
    windows.push_back(*window);
  }
  return windows;
}

}  // namespace

ReaderPool::ReaderPool(Executor& executor, const std::string& program, Size size, ReaderProcess::Patience patience)
    : executor_(executor),
      pictures_(program, ReaderMessages::kPictures, size.pictures, patience),
      texts_(program, ReaderMessages::kTexts, size.texts, patience) {}

ReaderPool::~ReaderPool() {
  end();
}

std::string ReaderPool::programBesides(const FileURL& folder) {
  const auto below = [](const FileURL& place) {
    return place.appending("libexec").appending("quillmere").appending("reader");
  };
  const FileURL installed = below(folder.parent());
  return (fileExists(installed) ? installed : below(folder)).path();
}

void ReaderPool::end() {
  isEnded_ = true;
  pictures_.end();
  texts_.end();
}

std::optional<PictureHead> ReaderPool::head(const FileURL& url) {
  const auto reply = ask(request(Work::head), url, kNever);
  if (!reply) return std::nullopt;
  const Answer& answer = reply->answer;
  const bool isKnown = answer.format <= static_cast<uint32_t>(PictureFormat::heif);
  if (!isKnown || answer.width <= 0 || answer.height <= 0) return std::nullopt;
  return PictureHead{static_cast<PictureFormat>(answer.format), QSize(answer.width, answer.height)};
}

std::optional<PictureError> ReaderPool::failureOf(const FileURL& url) {
  const auto reply = ask(request(Work::wholeness), url, kNever);
  // Where nobody can read, a person is still asked about each screenshot, without its picture.
  if (reply || pictures_.isWithoutReader()) return std::nullopt;
  return reply.reason();
}

std::vector<std::optional<PictureError>> ReaderPool::failuresOf(const std::vector<FileURL>& urls) {
  std::vector<Failure> failures;
  failures.reserve(urls.size());
  while (failures.size() < urls.size()) {
    const FileURL* first = &urls[failures.size()];
    const auto answers = judged(first, std::min(ReaderMessages::kMostFiles, urls.size() - failures.size()));
    for (size_t i = 0; i < answers.size(); ++i) failures.push_back(answers[i] ? *answers[i] : failureOf(first[i]));
  }
  return failures;
}

std::vector<std::optional<ReaderPool::Failure>> ReaderPool::judged(const FileURL* urls, size_t count) {
  std::vector<std::optional<Failure>> answers(count);
  std::vector<Descriptor> files;
  std::vector<int> numbers;
  std::vector<size_t> places;
  for (size_t i = 0; i < count; ++i) {
    Descriptor file = openPicture(urls[i]);
    struct stat status {};
    const bool isFile = file && ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode);
    if (!isFile || status.st_size > ReaderMessages::kMemoryOfEach || bad_.isBad(BadPictures::fileOf(status))) continue;
    numbers.push_back(file.number());
    files.push_back(std::move(file));
    places.push_back(i);
  }
  if (files.size() < 2) return answers;
  const auto process = taken(pictures_);
  if (!process) return answers;
  const PictureMemory::Share share(memory_, ReaderMessages::kMemoryOfEach);
  const auto verdicts = process->judge(numbers);
  if (!verdicts) {
    pictures_.drop(process);
    return answers;
  }
  pictures_.giveBack(process);
  wasUsed();
  for (size_t i = 0; i < places.size(); ++i) {
    const ReaderMessages::Verdict& verdict = verdicts->of[i];
    const bool isKnown = verdict.isWhole <= 1 && verdict.reason <= static_cast<uint32_t>(PictureError::tooCostly);
    if (verdict.isJudged != 1 || !isKnown) continue;
    answers[places[i]] = verdict.isWhole ? Failure() : Failure(static_cast<PictureError>(verdict.reason));
  }
  return answers;
}

PictureReading::Picture ReaderPool::picture(const FileURL& url, const Stop& isStopped) {
  return pictureIn(ask(request(Work::picture), url, isStopped), std::numeric_limits<int>::max());
}

PictureReading::Picture ReaderPool::thumbnail(const FileURL& url, int maxPixels, const Stop& isStopped) {
  if (maxPixels <= 0) return PictureError::damaged;
  return pictureIn(ask(request(Work::thumbnail, maxPixels), url, isStopped), maxPixels);
}

PictureReading::Picture ReaderPool::thumbnail(std::string_view bytes, int maxPixels) {
  if (maxPixels <= 0 || bytes.empty()) return PictureError::damaged;
  const auto memory = SealedMemory::of({bytes});
  if (!memory) return PictureError::unreadable;
  return pictureIn(ask(request(Work::thumbnail, maxPixels), *memory, kNever), maxPixels);
}

PictureReading::Picture ReaderPool::pictureIn(Asked reply, int maxPixels) {
  if (!reply) return reply.reason();
  QImage image = std::move(reply.value().image);
  const bool isFit = !image.isNull() && image.width() <= maxPixels && image.height() <= maxPixels;
  return isFit ? Picture(std::move(image)) : Picture(PictureError::damaged);
}

Result<WindowScan, OperationError> ReaderPool::windows(const FileURL& url, const std::optional<KnownWindows>& known,
                                                       const Stop& isStopped) {
  const QByteArray beside = known ? known->coded() : QByteArray();
  auto reply = ask(request(Work::windows), url, isStopped, {beside.constData(), static_cast<size_t>(beside.size())});
  if (!reply) return ImageOperations::operationError(reply.reason());
  QImage image = std::move(reply.value().image);
  const auto windows = image.isNull() ? std::nullopt : windowsIn(reply->extra, image.size());
  if (!windows) return OperationError::unreadable;
  return WindowScan{std::move(image), *windows};
}

std::optional<KnownWindows> ReaderPool::knownWindows(const FileURL& url, const std::vector<WindowStack>& states,
                                                     Date closedAt, const Stop& isStopped) {
  const std::string question = PassedWindowStates::coded({states, closedAt});
  const auto reply = ask(request(Work::knownWindows), url, isStopped, question);
  if (!reply || isStopped) return std::nullopt;
  return KnownWindows::fromCoded({reply->extra.data(), static_cast<qsizetype>(reply->extra.size())});
}

std::optional<QString> ReaderPool::text(const FileURL& url, const Stop& isStopped) {
  const auto reply = ask(request(Work::text), url, isStopped);
  if (!reply || isStopped) return std::nullopt;
  return QString::fromUtf8(reply->extra.data(), static_cast<qsizetype>(reply->extra.size()));
}

Result<QByteArray, OperationError> ReaderPool::encoded(const QImage& image, PictureFormat format) {
  if (image.isNull()) return OperationError::encoding;
  const PassedPicture passed(image);
  const auto memory = SealedMemory::of(passed.parts());
  if (!memory) return OperationError::encoding;
  const auto reply = ask(request(Work::encoding, static_cast<int32_t>(format), passed.shape()), *memory, kNever);
  if (!reply || reply->extra.empty()) return OperationError::encoding;
  return QByteArray(reply->extra.data(), static_cast<qsizetype>(reply->extra.size()));
}

ReaderPool::Asked ReaderPool::ask(Request request, const FileURL& url, const Stop& isStopped, std::string_view beside) {
  const Descriptor file = openPicture(url);
  if (!file) return PictureError::unreadable;
  if (beside.empty()) return ask(request, file, isStopped);
  const auto memory = SealedMemory::of({beside});
  if (!memory) return PictureError::unreadable;
  request.besideBytes = beside.size();
  return ask(request, file, isStopped, *memory);
}

ReaderPool::Asked ReaderPool::ask(const Request& request, const Descriptor& file, const Stop& isStopped,
                                  const Descriptor& beside) {
  std::vector<int> files{file.number()};
  if (beside) files.push_back(beside.number());
  struct stat status {};
  if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return PictureError::unreadable;
  const auto identity = BadPictures::fileOf(status);
  ReaderLane& lane = request.work == static_cast<uint32_t>(Work::text) ? texts_ : pictures_;
  // One that dies may have been ended by something else than this picture.
  for (int attempt = 0; attempt < kMostAttempts && !bad_.isBad(identity) && !isStopped; ++attempt) {
    const auto process = taken(lane);
    if (!process) return PictureError::unreadable;
    // Of head and encoding no more is in memory than the program has anyhow.
    std::optional<PictureMemory::Share> all;
    if (status.st_size > kLargeFile && decodes(request)) all.emplace(memory_, kMemory);
    ReaderProcess::Outcome outcome = process->ask(request, files, all ? nullptr : &memory_, isStopped);
    auto reply = outcome.end == End::answered ? checked(request, outcome.answer, outcome.memory) : std::nullopt;
    if (reply) {
      lane.giveBack(process);
      wasUsed();
      if (!reply->answer.isDone) return static_cast<PictureError>(reply->answer.reason);
      return *std::move(reply);
    }
    lane.drop(process);
    if (outcome.end == End::stopped || isEnded_) return PictureError::unreadable;
    if (outcome.end == End::gone) continue;
    bad_.note(identity);
    if (outcome.end != End::died) break;
  }
  return bad_.isBad(identity) ? PictureError::tooCostly : PictureError::unreadable;
}

std::shared_ptr<ReaderProcess> ReaderPool::taken(ReaderLane& lane) {
  auto process = lane.take();
  if (!process && !isEnded_) tellOnce("No picture can be read: the reader does not start");
  if (const uint32_t missing = process ? process->missingProtections() : 0; missing != 0) {
    tellOnce("Pictures are read without " + Protections::names(missing) + ", which this system has not");
  }
  return process;
}

/// The memory has to be what the numbers say, to the byte.
std::optional<ReaderPool::Reply> ReaderPool::checked(const Request& request, const Answer& answer,
                                                     const Descriptor& memory) {
  const auto pictureBytes = PassedPicture::bytesOf(answer.shape);
  const bool isKnown = answer.isDone <= 1 && answer.reason <= static_cast<uint32_t>(PictureError::tooCostly);
  if (!pictureBytes || answer.extraBytes > mostExtraBytes(request) || !isKnown) return std::nullopt;
  if (*pictureBytes > 0 && !bringsPicture(request)) return std::nullopt;
  const uint64_t bytes = *pictureBytes + answer.extraBytes;
  Reply reply{.answer = answer, .memory = nullptr, .image = {}, .extra = {}};
  if (bytes == 0) return memory ? std::nullopt : std::optional(reply);
  reply.memory = SealedMemory::mapped(memory, bytes);
  if (!reply.memory) return std::nullopt;
  reply.image = PassedPicture::in(reply.memory, answer.shape);
  if (*pictureBytes > 0 && reply.image.isNull()) return std::nullopt;
  reply.extra = reply.memory->bytes().substr(*pictureBytes);
  return reply;
}

/// The last use counts; the main thread is told of many at once.
void ReaderPool::wasUsed() {
  if (isUsePosted_.exchange(true)) return;
  executor_.post([weak = weak_from_this()] {
    if (const auto pool = weak.lock()) pool->armEnd();
  });
}

void ReaderPool::armEnd() {
  isUsePosted_ = false;
  if (idle_) executor_.cancelDelay(*idle_);
  idle_ = executor_.startDelay(kWarm, [weak = weak_from_this()](bool) {
    const auto pool = weak.lock();
    if (!pool) return;
    pool->idle_.reset();
    pool->pictures_.endIdle();
    pool->texts_.endIdle();
  });
}

void ReaderPool::tellOnce(const std::string& line) {
  if (!isTold_.exchange(true)) qWarning("%s", line.c_str());
}

}  // namespace quillmere
