#include "fakes/FakeAnalyzer.h"

namespace quillmere::testing {

Task<std::optional<AnalysisError::Unavailability>> FakeAnalyzer::availability() {
  ++availabilityLooks;
  if (!holdsLooks) co_return unavailability;
  auto call = std::make_shared<Look>(Look{{}, std::nullopt, std::nullopt, nullptr, false});
  looks.push_back(call);
  Open<std::optional<AnalysisError::Unavailability>> open{call};
  co_await open;
  co_return *call->value;
}

Task<DescribeOutcome> FakeAnalyzer::describe(FileURL url, std::optional<QString> known) {
  if (!holdsDescriptions && immediateDescriptions.empty()) co_return DescribeOutcome(description);
  if (!holdsDescriptions) {
    DescribeOutcome next = immediateDescriptions.front();
    immediateDescriptions.erase(immediateDescriptions.begin());
    described.push_back({url, known});
    co_return next;
  }
  auto call = std::make_shared<Description>(Description{url, known, std::nullopt, nullptr, false});
  descriptions.push_back(call);
  ++describing;
  mostDescribing = std::max(mostDescribing, describing);
  Open<DescribeOutcome> open{call};
  co_await open;
  --describing;
  co_return call->isCancelled ? DescribeOutcome(AnalysisCancelled()) : *call->value;
}

Task<std::optional<QString>> FakeAnalyzer::recognizeText(FileURL url) {
  if (!holdsReadings) {
    read.push_back(url);
    co_return text;
  }
  auto call = std::make_shared<Reading>(Reading{url, std::nullopt, std::nullopt, nullptr, false});
  readings.push_back(call);
  ++reading;
  mostReading = std::max(mostReading, reading);
  Open<std::optional<QString>> open{call};
  co_await open;
  --reading;
  co_return call->isCancelled ? std::nullopt : *call->value;
}

}  // namespace quillmere::testing
