#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Executor.h"
#include "platform/linux/passing/SealedMemory.h"
#include "platform/linux/reading/BadPictures.h"
#include "platform/linux/reading/ReaderLane.h"
#include "reading/PictureReading.h"

namespace quillmere {

/// Has pictures read by processes that can do nothing else: a few for pictures, and others, which give way, for the
/// text in them. Each is started on first need and ends when none of them has had anything to do for a while. It hands
/// over open files and believes nothing that comes back.
///
/// Each reader decodes one picture at a time, and only when there is memory for it: all together take at most
/// `kMemory`, and what waits for its turn is a small file's bytes. A picture that ended its reader twice, or kept it
/// busy too long twice, is too costly until it changes; before that it is only unreadable, for another time it may be
/// read.
class ReaderPool final : public PictureReading, public std::enable_shared_from_this<ReaderPool> {
 public:
  struct Size {
    int pictures = 3;
    int texts = 2;
  };
  static constexpr Duration kWarm = std::chrono::minutes(2);
  static constexpr int64_t kMemory = int64_t{3} << 29;
  /// The bytes of a file that is larger than a capture; such ones are read alone.
  static constexpr int64_t kLargeFile = int64_t{64} << 20;

  /// `program` is the reader. The executor may go first.
  ReaderPool(Executor& executor, const std::string& program, Size size, ReaderProcess::Patience patience);
  ReaderPool(Executor& executor, const std::string& program) : ReaderPool(executor, program, Size(), {}) {}
  ~ReaderPool() override;
  /// Of the program in that folder, installed or built.
  static std::string programBesides(const FileURL& folder);

  std::optional<PictureHead> head(const FileURL& url) override;
  std::optional<PictureError> failureOf(const FileURL& url) override;
  /// The same of many, in their order. Small files go to a reader many at a time; where that gives no answer, each is
  /// asked about alone, so that the one that is to blame is found.
  std::vector<std::optional<PictureError>> failuresOf(const std::vector<FileURL>& urls);
  Picture picture(const FileURL& url, const Stop& isStopped) override;
  Picture thumbnail(const FileURL& url, int maxPixels, const Stop& isStopped) override;
  Picture thumbnail(std::string_view bytes, int maxPixels) override;
  Result<ImageOperations::WindowScan, ImageOperations::OperationError> windows(const FileURL& url,
                                                                               const std::optional<KnownWindows>& known,
                                                                               const Stop& isStopped) override;
  std::optional<KnownWindows> knownWindows(const FileURL& url, const std::vector<WindowStack>& states, Date closedAt,
                                           const Stop& isStopped) override;
  std::optional<QString> text(const FileURL& url, const Stop& isStopped) override;
  Result<QByteArray, ImageOperations::OperationError> encoded(const QImage& image, PictureFormat format) override;

  /// Nothing is read any more; whoever waits hears so at once.
  void end();
  /// How many readers there are.
  size_t running() const { return pictures_.running() + texts_.running(); }

 private:
  /// An answer whose memory fits it.
  struct Reply {
    ReaderMessages::Answer answer;
    std::shared_ptr<const SealedMemory> memory;
    QImage image;            ///< null where none came
    std::string_view extra;  ///< in the memory
  };
  using Request = ReaderMessages::Request;
  using Asked = Result<Reply, PictureError>;
  using Failure = std::optional<PictureError>;
  /// A file's failure, or none where it was not judged.
  std::vector<std::optional<Failure>> judged(const FileURL* urls, size_t count);
  std::shared_ptr<ReaderProcess> taken(ReaderLane& lane);
  /// `beside` goes with the file, if it is not empty.
  Asked ask(Request request, const FileURL& url, const Stop& isStopped, std::string_view beside = {});
  Asked ask(const Request& request, const Descriptor& file, const Stop& isStopped, const Descriptor& beside = {});
  static Picture pictureIn(Asked reply, int maxPixels);
  static std::optional<Reply> checked(const Request& request, const ReaderMessages::Answer& answer,
                                      const Descriptor& memory);
  void wasUsed();
  void armEnd();
  void tellOnce(const std::string& line);

  Executor& executor_;
  BadPictures bad_;
  PictureMemory memory_{kMemory};
  ReaderLane pictures_;
  ReaderLane texts_;
  std::atomic<bool> isUsePosted_ = false;
  std::atomic<bool> isTold_ = false;
  std::atomic<bool> isEnded_ = false;
  std::optional<Executor::DelayID> idle_;  ///< main thread
};

}  // namespace quillmere
