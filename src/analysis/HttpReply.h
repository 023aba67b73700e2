#pragma once

#include <QtCore/QByteArray>
#include <map>
#include <optional>

#include "foundation/Date.h"

namespace quillmere {

/// A whole answer of a server.
struct HttpReply {
  int status = 0;
  std::map<QByteArray, QByteArray> headers;  ///< names in lower case; the first of each name
  QByteArray body;

  bool isSuccess() const { return status >= 200 && status < 300; }
  bool isRedirect() const { return status >= 300 && status < 400; }
  QByteArray header(const QByteArray& lowercaseName) const;
  /// When the server wants to be asked again, told in seconds or as a date.
  std::optional<Date> retryAfter(Date now) const;
};

/// Puts an answer of HTTP/1.1 together from bytes as they come. What it takes is narrow: anything that readers may
/// understand differently makes the answer malformed. It never keeps more than its limits.
class HttpReplyParser {
 public:
  static constexpr qsizetype kMostHeadBytes = 64 * 1024;
  static constexpr qsizetype kMostBodyBytes = 4 * 1024 * 1024;

  enum class State { incomplete, whole, malformed, tooLarge };
  /// What comes after a whole answer is dropped.
  State add(QByteArrayView bytes);
  /// The server has closed the connection. Incomplete now means cut off.
  State end();

  State state() const { return state_; }
  /// Once whole.
  const HttpReply& reply() const { return reply_; }

 private:
  enum class Part { head, bodyOfLength, bodyToTheEnd, chunkSize, chunk, chunkEnd, trailer };
  /// Reads one thing from the buffer; false when it needs more for that, or is done.
  bool step();
  bool readHead();
  bool readChunkSize();
  bool readChunkEnd();
  bool readTrailer();
  bool moveToBody();
  std::optional<QByteArray> takeLine();
  bool parseHead(const QByteArray& head);
  void beginBody();
  bool stop(State state);

  State state_ = State::incomplete;
  Part part_ = Part::head;
  HttpReply reply_;
  QByteArray buffer_;
  qsizetype headBytes_ = 0;  ///< of the final head and all interim ones
  qsizetype wanted_ = 0;     ///< of the body or the chunk
};

}  // namespace quillmere
