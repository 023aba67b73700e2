#include "analysis/HttpReply.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

using State = HttpReplyParser::State;

/// The answer to a text that came at once, in single bytes, and in halves: always the same.
struct Parsed {
  State state = State::incomplete;
  State stateAtEnd = State::incomplete;
  HttpReply reply;
};
Parsed parsedInPieces(const QByteArray& bytes, qsizetype piece) {
  HttpReplyParser parser;
  for (qsizetype at = 0; at < bytes.size(); at += piece) parser.add(bytes.mid(at, piece));
  Parsed parsed{parser.state(), State::incomplete, parser.reply()};
  parsed.stateAtEnd = parser.end();
  parsed.reply = parser.reply();
  return parsed;
}
Parsed parsed(const QByteArray& bytes) {
  const Parsed whole = parsedInPieces(bytes, bytes.size() + 1);
  for (const qsizetype piece : {qsizetype{1}, qsizetype{3}, bytes.size() / 2 + 1}) {
    const Parsed split = parsedInPieces(bytes, piece);
    EXPECT_EQ(split.state, whole.state) << "in pieces of " << piece;
    EXPECT_EQ(split.stateAtEnd, whole.stateAtEnd);
    EXPECT_TRUE(whole.stateAtEnd != State::whole || split.reply.body == whole.reply.body);
  }
  return whole;
}
State stateOf(const QByteArray& bytes) {
  return parsed(bytes).state;
}
const QByteArray kOk = "HTTP/1.1 200 OK\r\n";

TEST(HttpReplyParser, ABodyOfAKnownLengthIsWholeAtItsLastByte) {
  const Parsed done = parsed(kOk + "Content-Type: text/plain\r\nContent-Length: 5\r\n\r\nhello");
  EXPECT_EQ(done.state, State::whole);
  EXPECT_EQ(done.reply.status, 200);
  EXPECT_EQ(done.reply.body, "hello");
  EXPECT_EQ(done.reply.header("content-type"), "text/plain");
  EXPECT_EQ(stateOf(kOk + "Content-Length: 5\r\n\r\nhell"), State::incomplete);
  EXPECT_EQ(stateOf(kOk + "Content-Length: 0\r\n\r\n"), State::whole);
}

TEST(HttpReplyParser, WhatFollowsIsDropped) {
  EXPECT_EQ(parsed(kOk + "Content-Length: 2\r\n\r\nhello").reply.body, "he");
}

TEST(HttpReplyParser, ChunksArePutTogether) {
  const Parsed done = parsed(kOk + "Transfer-Encoding: Chunked\r\n\r\n5\r\nhello\r\n6;x=y\r\n world\r\n0\r\n\r\n");
  EXPECT_EQ(done.state, State::whole);
  EXPECT_EQ(done.reply.body, "hello world");
}

TEST(HttpReplyParser, TrailersAreReadOver) {
  EXPECT_EQ(parsed(kOk + "Transfer-Encoding: chunked\r\n\r\nA\r\n0123456789\r\n0\r\nX: y\r\n\r\n").reply.body,
            "0123456789");
}

TEST(HttpReplyParser, WithoutALengthTheBodyEndsWithTheConnection) {
  const Parsed done = parsed("HTTP/1.0 200\r\n\r\nhello");
  EXPECT_EQ(done.state, State::incomplete);
  EXPECT_EQ(done.stateAtEnd, State::whole);
  EXPECT_EQ(done.reply.body, "hello");
}

TEST(HttpReplyParser, AnAnswerThatIsCutOffIsNeverWhole) {
  for (const QByteArray& cut :
       {QByteArray(), QByteArray("HTTP/1.1 2"), kOk, kOk + "Content-Length: 5\r\n\r\nhell",
        kOk + "Transfer-Encoding: chunked\r\n\r\n", kOk + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello",
        kOk + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n"}) {
    EXPECT_EQ(parsed(cut).stateAtEnd, State::incomplete) << cut.toStdString();
  }
}

TEST(HttpReplyParser, AnInterimAnswerIsReadOver) {
  const Parsed done = parsed("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 503 Busy\r\nContent-Length: 1\r\n\r\nx");
  EXPECT_EQ(done.reply.status, 503);
  EXPECT_EQ(done.reply.body, "x");
}

TEST(HttpReplyParser, AnAnswerThatHasNoBodyIsWholeAfterItsHead) {
  EXPECT_EQ(stateOf("HTTP/1.1 204 No Content\r\n\r\n"), State::whole);
  EXPECT_EQ(stateOf("HTTP/1.1 304 Not Modified\r\nContent-Length: 5\r\n\r\n"), State::whole);
}

class MalformedReply : public ::testing::TestWithParam<const char*> {};

TEST_P(MalformedReply, IsRefused) {
  EXPECT_EQ(stateOf(GetParam()), State::malformed);
}

INSTANTIATE_TEST_SUITE_P(Status, MalformedReply,
                         ::testing::Values("\r\n\r\n", "hello\r\n\r\n", "HTTP/2 200 OK\r\n\r\n",
                                           "HTTP/1.1 20 OK\r\n\r\n", "HTTP/1.1 2000 OK\r\n\r\n",
                                           "HTTP/1.1 099 OK\r\n\r\n", "HTTP/1.1 600 OK\r\n\r\n",
                                           "HTTP/1.1  200 OK\r\n\r\n", "HTTP/1.1 -20 OK\r\n\r\n",
                                           "HTTP/1.1 101 Switching\r\n\r\n", "ICY 200 OK\r\n\r\n",
                                           "SSH-2.0-OpenSSH\r\n\r\n"));
INSTANTIATE_TEST_SUITE_P(Headers, MalformedReply,
                         ::testing::Values("HTTP/1.1 200 OK\r\nno colon\r\n\r\n", "HTTP/1.1 200 OK\r\n: x\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nA : x\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nA: x\r\n folded\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nA: x\nB: y\r\n\r\n", "HTTP/1.1 200 OK\rA: x\r\n\r\n"));
INSTANTIATE_TEST_SUITE_P(Length, MalformedReply,
                         ::testing::Values("HTTP/1.1 200 OK\r\nContent-Length: x\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length: +1\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length:\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length: 1, 1\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length: 0x1\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nContent-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip, chunked\r\n\r\n",
                                           "HTTP/1.1 200 OK\r\nTransfer-Encoding: identity\r\n\r\n"));
INSTANTIATE_TEST_SUITE_P(
    Chunks, MalformedReply,
    ::testing::Values("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n\r\n",
                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nx\r\n",
                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n-1\r\n",
                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0x1\r\n",
                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nffffffffffffffffffff\r\n",
                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nab\r\n",
                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\na\r\n"));

TEST(HttpReplyParser, AHeadIsBounded) {
  const QByteArray most(HttpReplyParser::kMostHeadBytes, 'a');
  EXPECT_EQ(HttpReplyParser().add(kOk + "A: " + most), State::tooLarge);
  EXPECT_EQ(HttpReplyParser().add(kOk + "A: " + most + "\r\n\r\n"), State::tooLarge);
  EXPECT_EQ(HttpReplyParser().add(most + "a"), State::tooLarge);
  EXPECT_EQ(HttpReplyParser().add(QByteArray("HTTP/1.1 100 Continue\r\n\r\n").repeated(4000)), State::tooLarge);
}

TEST(HttpReplyParser, ABodyIsBounded) {
  const QByteArray most(HttpReplyParser::kMostBodyBytes, 'a');
  const QByteArray length = QByteArray::number(most.size());
  EXPECT_EQ(HttpReplyParser().add(kOk + "Content-Length: " + length + "\r\n\r\n" + most), State::whole);
  EXPECT_EQ(HttpReplyParser().add(kOk + "Content-Length: " + QByteArray::number(most.size() + 1) + "\r\n\r\n"),
            State::tooLarge)
      << "before any of it has come";
  EXPECT_EQ(HttpReplyParser().add(kOk + "\r\n" + most), State::incomplete);
  EXPECT_EQ(HttpReplyParser().add(kOk + "\r\n" + most + "a"), State::tooLarge);
}

TEST(HttpReplyParser, ChunksAreBoundedAloneAndTogether) {
  const QByteArray head = kOk + "Transfer-Encoding: chunked\r\n\r\n";
  EXPECT_EQ(HttpReplyParser().add(head + "400001\r\n"), State::tooLarge);
  const QByteArray half = "200000\r\n" + QByteArray(0x200000, 'a') + "\r\n";
  EXPECT_EQ(HttpReplyParser().add(head + half + half + "0\r\n\r\n"), State::whole);
  EXPECT_EQ(HttpReplyParser().add(head + half + half + "1\r\na"), State::tooLarge);
  EXPECT_EQ(HttpReplyParser().add(head + "1;" + QByteArray(HttpReplyParser::kMostHeadBytes, 'x')), State::tooLarge);
}

TEST(HttpReply, TellsWhenItWantsToBeAskedAgain) {
  const Date now{100};
  const auto retryAfter = [&](const char* value) {
    return HttpReply{429, {{"retry-after", value}}, {}}.retryAfter(now);
  };
  EXPECT_EQ(retryAfter("7"), Date{107});
  EXPECT_EQ(retryAfter("0"), now);
  EXPECT_EQ(retryAfter("Mon, 01 Jan 2001 00:02:00 GMT"), Date{120});
  for (const char* none : {"", "soon", "-1", "1.5", "99999999", "Mon, 01 Jan 2001 00:02:00 CET"}) {
    EXPECT_EQ(retryAfter(none), std::nullopt) << none;
  }
  EXPECT_EQ(HttpReply().retryAfter(now), std::nullopt);
}

}  // namespace
}  // namespace quillmere
