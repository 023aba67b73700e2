#pragma once

#include <gtest/gtest.h>
#include <ostream>
#include <string>

#include "analysis/LocalHttpClient.h"
#include "analysis/ModelServer.h"
#include "description/ModelQuestion.h"
#include "foundation/Interruptible.h"
#include "foundation/ManualExecutor.h"
#include "support/EventLoop.h"
#include "support/FakeModelServer.h"
#include "support/Files.h"
#include "support/Images.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

inline const ModelAnswerFields kLoginPage{QStringLiteral("A login page"), QStringLiteral("login page")};

inline ModelFailure failureOf(ModelError::Kind kind) {
  return ModelError{kind};
}

/// A reply as the client would hand it on.
inline HttpReply received(const FakeReply& reply) {
  HttpReplyParser parser;
  parser.add(reply.bytes);
  EXPECT_EQ(parser.end(), HttpReplyParser::State::whole);
  return parser.reply();
}

/// What a server makes of a reply, for comparing.
using ModelAnswer = std::variant<ModelAnswerFields, ModelFailure>;
inline ModelAnswer answerOf(const ModelResponse& response) {
  return response ? ModelAnswer(*response) : ModelAnswer(response.reason());
}

/// A fake server behind real sockets, and time that moves only when the test says so.
class ModelServerFixture : public ::testing::Test {
 protected:
  static constexpr Date kNow{800000000};

  template <typename T>
  static Task<> keep(Task<T> task, std::optional<T>& result) {
    auto waiting = interruptible(task);
    result.emplace(co_await waiting);
  }
  bool isThere(const std::function<bool()>& condition) {
    return runLoopUntil([&] {
      executor.drain();
      return condition();
    });
  }
  template <typename T>
  T finish(Task<T> task) {
    std::optional<T> result;
    const auto keeping = keep(std::move(task), result);
    EXPECT_TRUE(isThere([&] { return result.has_value(); }));
    return *result;
  }
  /// In a word: "none", "silent", "loading", "blind" or the model's name.
  static std::string told(const ModelServerLook& look) {
    if (const auto* none = std::get_if<NoModelServer>(&look)) return none->isSilent ? "silent" : "none";
    if (std::holds_alternative<LoadingModelServer>(look)) return "loading";
    if (std::holds_alternative<BlindModelServer>(look)) return "blind";
    return std::get<FoundModel>(look).name.toStdString();
  }
  FileURL writePicture() {
    writeFile(folder.file("shot.png"), smallPNG());
    return folder.file("shot.png");
  }
  static QByteArray smallPicture() { return QByteArray::fromStdString(smallPNG()); }

  TemporaryFolder folder;
  ManualExecutor executor;
  LocalHttpClient client{executor};
  FakeModelServer server;
};

}  // namespace quillmere::testing
