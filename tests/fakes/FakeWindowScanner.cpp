#include "fakes/FakeWindowScanner.h"

namespace quillmere::testing {

Task<FakeWindowScanner::Outcome> FakeWindowScanner::scan(FileURL url, std::optional<KnownWindows> known) {
  auto call = std::make_shared<Call>(Call{url, known, std::nullopt, nullptr});
  calls.push_back(call);
  Open open{call};
  co_await open;
  co_return *call->outcome;
}

void FakeWindowScanner::answer(size_t index, Outcome outcome) {
  calls[index]->outcome = std::move(outcome);
  if (const auto waiter = std::exchange(calls[index]->waiter, nullptr)) waiter->resume();
}

void FakeWindowScanner::answer(size_t index, const QImage& image, std::optional<QRectF> window) {
  ImageOperations::WindowScan scan{image, {}};
  if (window) {
    scan.windows.emplace_back();
    scan.windows.back().frame = *window;
  }
  answer(index, Outcome(scan));
}

}  // namespace quillmere::testing
