#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace quillmere {

/// What the program and its reader of pictures say to each other: one packet a message, of one build's own layout. What
/// is longer than these numbers stands in a sealed memory that comes with the packet.
namespace ReaderMessages {

inline constexpr uint32_t kMagic = 0x516D5244;
/// Another one is another language.
inline constexpr uint32_t kVersion = 5;

/// The descriptors that a reader starts with.
inline constexpr int kSocket = 3;
inline constexpr int kSignals = 4;

/// What the reader was told to be, as its one argument.
inline constexpr const char* kPictures = "pictures";
inline constexpr const char* kTexts = "texts";

/// The first word, once the reader has locked itself in.
struct Greeting {
  uint32_t magic;
  uint32_t version;
  uint32_t missing;  ///< of `Protections`, what this kernel has not
};

/// A page that both see: only a wish is in it, which neither has to trust.
struct Signals {
  std::atomic<bool> isStopped;
};

enum class Work : uint32_t {
  head = 1,
  wholeness,
  picture,
  thumbnail,
  windows,
  text,
  encoding,
  wholenesses,
  knownWindows
};

/// A picture as numbers. Its rows stand at the beginning of the memory, then its colour table, then its colour profile.
struct PictureShape {
  int32_t width = 0;
  int32_t height = 0;
  int32_t format = 0;  ///< QImage's; 0 where there is no picture
  int32_t dotsPerMeterX = 0;
  int32_t dotsPerMeterY = 0;
  uint32_t colours = 0;
  uint32_t profileBytes = 0;
  uint64_t bytesPerLine = 0;
};

/// How many files may come with the request to tell which of them are whole pictures, and the bytes that each may take
/// while that is found out.
inline constexpr size_t kMostFiles = 32;
inline constexpr int64_t kMemoryOfEach = int64_t{64} << 20;

/// With a file of the program's choice, or the memory of the picture that is to be encoded. Behind the file of windows
/// to find may come a memory of those that are known of it, as a record keeps them, and behind that of windows to know
/// one of what the window system told (`PassedWindowStates`).
struct Request {
  uint32_t work = 0;
  int32_t number = 0;  ///< the most pixels of a thumbnail's side, or the format to encode in
  PictureShape shape{};
  uint64_t besideBytes = 0;  ///< of the memory behind the file; 0 where there is none
};

enum class Step : uint32_t {
  begun = 1,  ///< the file is read; once there is the memory that it takes, the time counts
  done,
};

struct Answer {
  uint32_t step = 0;
  uint32_t isDone = 0;  ///< 0 where the work failed
  uint32_t reason = 0;  ///< why it failed, a `PictureError`
  uint32_t format = 0;  ///< of a head
  int32_t width = 0;    ///< of a head
  int32_t height = 0;
  PictureShape shape{};
  uint64_t extraBytes = 0;  ///< of windows, text, known windows or an encoded picture, behind the picture
  int64_t memory = 0;       ///< of a beginning: the bytes that decoding takes; above 0 the reader waits for its `Turn`
};

/// The only answer where many files came. One that was not judged is to be asked about alone: it takes more memory, or
/// the others took too long.
struct Verdict {
  uint32_t isJudged = 0;
  uint32_t isWhole = 0;
  uint32_t reason = 0;  ///< why it is not, a `PictureError`
};
struct Verdicts {
  uint32_t magic = kMagic;
  std::array<Verdict, kMostFiles> of{};  ///< in the order of the files
};

/// There is memory for it.
struct Turn {
  uint32_t magic = kMagic;
};

/// A window of a scan, as it stands in the memory.
struct Window {
  double x, y, width, height;
  double left, top, right, bottom;  ///< of its shadow
  uint32_t source;
  uint32_t marks;  ///< bits: title bar buttons, fully drawn, covered, enclosed, in front
};

}  // namespace ReaderMessages
}  // namespace quillmere
