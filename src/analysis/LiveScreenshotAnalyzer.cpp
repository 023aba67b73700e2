#include "analysis/LiveScreenshotAnalyzer.h"

#include <atomic>
#include <memory>
#include <utility>

#include "foundation/Interruptible.h"
#include "foundation/OnCancel.h"

namespace quillmere {
namespace {

using Text = std::optional<QString>;

/// Awaited, gives what the work returns on one of the threads, which outlive the wait.
class Recognition {
 public:
  Recognition(RecognitionThreads& threads, Executor& executor, std::function<Text()> work)
      : threads_(threads), executor_(executor), work_(std::move(work)) {}
  bool await_ready() const { return false; }
  void await_suspend(std::coroutine_handle<> task) {
    auto continuation = std::make_shared<Continuation>(task);
    // The text lives apart from the coroutine, which may be destroyed while the work still runs.
    threads_.run([text = text_, work = work_, continuation, executor = &executor_] {
      *text = work();
      executor->post([continuation] { continuation->resume(); });
    });
  }
  Text await_resume() { return std::move(*text_); }

 private:
  RecognitionThreads& threads_;
  Executor& executor_;
  std::function<Text()> work_;
  std::shared_ptr<Text> text_ = std::make_shared<Text>();
};

}  // namespace

LiveScreenshotAnalyzer::LiveScreenshotAnalyzer(Executor& executor, LanguageModel& model,
                                               std::shared_ptr<PictureReading> pictures,
                                               std::function<bool(const FileURL&)> isDataless)
    : executor_(executor),
      service_(model, executor),
      pictures_(std::move(pictures)),
      isDataless_(std::move(isDataless)) {}

Task<DescribeOutcome> LiveScreenshotAnalyzer::describe(FileURL url, std::optional<QString> text) {
  // Off the main thread: a share may be slow to answer.
  auto looking = executor_.background([isDataless = isDataless_, url] { return isDataless(url); });
  const bool isAway = co_await looking;
  if (co_await isCancelled) co_return AnalysisCancelled();
  if (isAway) co_return AnalysisError::other(true);
  auto describing = interruptible(service_.describe(url, text));
  DescribeOutcome outcome = co_await describing;
  co_return outcome;
}

Task<std::optional<QString>> LiveScreenshotAnalyzer::recognizeText(FileURL url) {
  const auto mayStop = std::make_shared<std::atomic<bool>>(false);
  OnCancel stopping([mayStop] { *mayStop = true; });
  co_await stopping;
  Recognition recognition(threads_, executor_, [pictures = pictures_, isDataless = isDataless_, url, mayStop] {
    return *mayStop || isDataless(url) ? Text() : pictures->text(url, *mayStop);
  });
  Text text = co_await recognition;
  co_return *mayStop ? std::nullopt : text;
}

}  // namespace quillmere
