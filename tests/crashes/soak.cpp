// Days of captures in minutes: the program without its windows over real files, in a time that is told to pass. Nothing
// may grow with what came and went: memory, open files, the list.
//
//   soak CAPTURES        with the home of the environment, which it fills and empties

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <random>

#include "crashes/CrashedProgram.h"
#include "formats/ImageEncoding.h"
#include "foundation/FileCopy.h"
#include "support/PrivateEnvironment.h"

namespace quillmere::testing {
namespace {

using State = ScreenshotItem::State;

/// What a person keeps before tidying up.
constexpr size_t kMostRecords = 500;

struct Sizes {
  double megabytes = 0;  ///< of resident memory
  std::ptrdiff_t openFiles = 0;
  size_t records = 0;
  uintmax_t listBytes = 0;
};

class Soak {
 public:
  explicit Soak(const FileURL& home) : home_(home), shots_(home.appending("shots")) {
    std::filesystem::create_directories(shots_.path());
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    picture_ = ImageOperations::encode(picture, PictureFormat::png)->toStdString();
    program_.start();
    program_.model->adoptWatchFolder(shots_, ErrorScope::settings);
    program_.settle();
  }

  void capture() {
    const FileURL staging = home_.appending("staging");
    const int file = ::open(staging.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    timespec date{};
    ::clock_gettime(CLOCK_REALTIME, &date);
    date.tv_sec += static_cast<time_t>(program_.advanced());
    const timespec dates[2] = {date, date};
    const FileURL place = shots_.appending("Screenshot " + std::to_string(++captures_) + ".png");
    const bool isWritten = writeAll(file, picture_.data(), picture_.size()) && ::futimens(file, dates) == 0 &&
                           ::close(file) == 0 && ::rename(staging.c_str(), place.c_str()) == 0;
    if (!isWritten) std::abort();
    program_.settle();
    decide();
    if (captures_ % 20 == 0) program_.letTimePass();
    if (program_.model->items().size() > kMostRecords) tidyUp();
    program_.forgetCalls();
  }

  /// The person empties the folder and the Trash with a file manager.
  void tidyUp() {
    for (const auto& entry : std::filesystem::directory_iterator(shots_.path())) std::filesystem::remove(entry.path());
    for (const char* trash : {"home/data/Trash/files", "home/data/Trash/info"}) {
      std::error_code ignored;
      for (const auto& entry : std::filesystem::directory_iterator(home_.appending(trash).path(), ignored)) {
        std::filesystem::remove(entry.path());
      }
    }
    program_.settle();
    program_.letTimePass();
  }

  Sizes sizes() const {
    Sizes now;
    long pages = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
      if (std::fscanf(file, "%*d %ld", &pages) != 1) pages = 0;
      std::fclose(file);
    }
    now.megabytes = static_cast<double>(pages) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / (1 << 20);
    now.openFiles = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    now.records = program_.model->items().size();
    now.listBytes = std::filesystem::file_size(ApplicationPaths::standard().recordList.path());
    return now;
  }
  double hours() const { return program_.advanced() / 3600; }
  bool isWatching() const { return *program_.model->watcherStatus == WatcherStatus::watching; }

 private:
  void decide() {
    const auto id = program_.presenter.visible;
    if (!id) return;
    switch (dice_() % 8) {
      case 0:
      case 1:
      case 2:
        program_.model->markTemporary(*id, TemporaryDuration::oneMinute, {}).detach();
        break;
      case 3:
      case 4:
        program_.model->keepPrompt(*id, QStringLiteral("Kept %1").arg(captures_)).detach();
        break;
      case 5:
      case 6:
        program_.model->disposeChosen(*id, ErrorScope::popup).detach();
        break;
      default:
        break;  // stays in the queue until the next tidying up
    }
    program_.executor.drain();
  }

  const FileURL home_;
  const FileURL shots_;
  std::string picture_;
  CrashedProgram program_;
  std::mt19937 dice_{1};
  int captures_ = 0;
};

void print(int captures, double hours, const Sizes& sizes) {
  std::printf("%7d captures %6.1f h  %6.1f MB  %3td open files  %4zu records  %7ju bytes of list\n", captures, hours,
              sizes.megabytes, sizes.openFiles, sizes.records, sizes.listBytes);
  std::fflush(stdout);
}

}  // namespace
}  // namespace quillmere::testing

int main(int argc, char** argv) {
  using namespace quillmere;
  using namespace quillmere::testing;
  const PrivateEnvironment environment;
  const QCoreApplication application(argc, argv);
  const int captures = argc > 1 ? std::atoi(argv[1]) : 100'000;
  const int tenth = std::max(captures / 10, 1);
  Soak soak(FileURL::fromPath(std::string_view(std::getenv("HOME"))).parent());

  std::optional<Sizes> first;
  uintmax_t longestList = 0;
  size_t mostRecords = 0;
  for (int count = 1; count <= captures; ++count) {
    soak.capture();
    if (count % tenth != 0) continue;
    const Sizes full = soak.sizes();
    longestList = std::max(longestList, full.listBytes);
    mostRecords = std::max(mostRecords, full.records);
    soak.tidyUp();
    const Sizes now = soak.sizes();
    // By then every table has been as large as it gets.
    if (!first) first = now;
    print(count, soak.hours(), now);
  }
  const Sizes last = soak.sizes();
  constexpr double kMostGrowth = 4;
  const bool isFlat = last.megabytes - first->megabytes < kMostGrowth && last.openFiles <= first->openFiles + 2 &&
                      mostRecords <= kMostRecords && longestList < (uintmax_t{1} << 20) && soak.isWatching();
  std::printf("%s\n", isFlat ? "nothing grew" : "something grew");
  return isFlat ? 0 : 1;
}
