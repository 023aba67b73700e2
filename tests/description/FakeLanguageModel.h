#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "description/LanguageModel.h"

namespace quillmere::testing {

/// Answers at once as it was told, in turn; or leaves every call open until the test answers or cancels it.
class FakeLanguageModel final : public LanguageModel {
 public:
  using Answer = Result<ModelAnswerFields, ModelFailure>;

  Task<std::optional<AnalysisError::Unavailability>> availability() override {
    ++looks;
    Open open{*this};
    if (holdsLooks) co_await open;
    co_return unavailability;
  }
  Task<Answer> respond(ModelRequest request) override {
    requests.push_back(request);
    Open open{*this};
    if (holdsAnswers) co_await open;
    if (co_await isCancelled) co_return ModelFailure(AnalysisCancelled());
    Answer next = answers.front();
    answers.pop_front();
    co_return next;
  }
  /// Lets the open call go on.
  void goOn() {
    if (const auto waiter = std::exchange(waiter_, nullptr)) waiter->resume();
  }

  std::optional<AnalysisError::Unavailability> unavailability;
  std::deque<Answer> answers;
  bool holdsLooks = false;
  bool holdsAnswers = false;
  int looks = 0;
  std::vector<ModelRequest> requests;

 private:
  struct Open {
    FakeLanguageModel& model;
    bool await_ready() const { return false; }
    template <typename Promise>
    void await_suspend(std::coroutine_handle<Promise> task) {
      model.waiter_ = std::make_shared<Continuation>(task);
      task.promise().state->onCancel = [&fake = model] { fake.goOn(); };
    }
    void await_resume() const {}
  };
  std::shared_ptr<Continuation> waiter_;
};

}  // namespace quillmere::testing
