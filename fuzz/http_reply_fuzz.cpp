#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "analysis/HttpReply.h"

using namespace quillmere;

namespace {

HttpReplyParser parsed(QByteArrayView bytes, qsizetype piece) {
  HttpReplyParser parser;
  for (qsizetype at = 0; at < bytes.size(); at += piece) {
    parser.add(bytes.sliced(at, std::min(piece, bytes.size() - at)));
  }
  parser.end();
  return parser;
}

}  // namespace

/// An answer is the same however it is split, is bounded, and is in one state for good.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArrayView bytes(data, static_cast<qsizetype>(size));
  HttpReplyParser whole = parsed(bytes, bytes.size() + 1);
  const HttpReply& reply = whole.reply();
  if (reply.body.size() > HttpReplyParser::kMostBodyBytes) std::abort();
  reply.retryAfter(Date{0});
  const auto state = whole.state();
  if (state != HttpReplyParser::State::incomplete && whole.add("more") != state) std::abort();
  if (state == HttpReplyParser::State::whole && (reply.status < 200 || reply.status > 599)) std::abort();

  for (const qsizetype piece : {1, 7}) {
    const HttpReplyParser split = parsed(bytes, piece);
    if (split.state() != state) std::abort();
    if (state != HttpReplyParser::State::whole) continue;
    if (split.reply().status != reply.status || split.reply().headers != reply.headers ||
        split.reply().body != reply.body) {
      std::abort();
    }
  }
  return 0;
}
