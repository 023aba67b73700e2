#include "records/ScreenshotItem.h"

#include <array>
#include <utility>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

template <typename Enum, size_t N>
using CodeTable = std::array<std::pair<Enum, std::string_view>, N>;

constexpr CodeTable<ScreenshotItem::State, 3> kStates{{
    {ScreenshotItem::State::pending, "pending"},
    {ScreenshotItem::State::temporary, "temporary"},
    {ScreenshotItem::State::permanent, "permanent"},
}};

constexpr CodeTable<CaptureKind, 3> kCaptureKinds{{
    {CaptureKind::display, "display"},
    {CaptureKind::window, "window"},
    {CaptureKind::selection, "selection"},
}};

constexpr CodeTable<AnalysisFailureCode, 9> kFailures{{
    {AnalysisFailureCode::appleIntelligenceNotEnabled, "appleIntelligenceNotEnabled"},
    {AnalysisFailureCode::modelNotReady, "modelNotReady"},
    {AnalysisFailureCode::deviceNotEligible, "deviceNotEligible"},
    {AnalysisFailureCode::contentBlocked, "contentBlocked"},
    {AnalysisFailureCode::busy, "busy"},
    {AnalysisFailureCode::tooMuchContent, "tooMuchContent"},
    {AnalysisFailureCode::unsupportedLanguage, "unsupportedLanguage"},
    {AnalysisFailureCode::invalidResponse, "invalidResponse"},
    {AnalysisFailureCode::other, "other"},
}};

template <typename Enum, size_t N>
std::string_view codeOf(const CodeTable<Enum, N>& table, Enum value) {
  for (const auto& [candidate, code] : table) {
    if (candidate == value) return code;
  }
  return {};
}

template <typename Enum, size_t N>
std::optional<Enum> valueOf(const CodeTable<Enum, N>& table, std::string_view coded) {
  for (const auto& [candidate, code] : table) {
    if (code == coded) return candidate;
  }
  return std::nullopt;
}

}  // namespace

QString label(CaptureKind kind) {
  switch (kind) {
    case CaptureKind::display:
      return localized("Entire screen");
    case CaptureKind::window:
      return localized("Window");
    case CaptureKind::selection:
      return localized("Selected portion");
  }
  return {};
}

std::string_view codedValue(CaptureKind kind) {
  return codeOf(kCaptureKinds, kind);
}
std::optional<CaptureKind> captureKind(std::string_view coded) {
  return valueOf(kCaptureKinds, coded);
}

std::string_view codedValue(AnalysisFailureCode code) {
  return codeOf(kFailures, code);
}
AnalysisFailureCode analysisFailureCode(std::string_view coded) {
  return valueOf(kFailures, coded).value_or(AnalysisFailureCode::other);
}

QString statusText(ScreenshotItem::State state) {
  switch (state) {
    case ScreenshotItem::State::pending:
      return localized("Pending decision");
    case ScreenshotItem::State::temporary:
      return localized("Temporary");
    case ScreenshotItem::State::permanent:
      return localized("Saved");
  }
  return {};
}

std::string_view codedValue(ScreenshotItem::State state) {
  return codeOf(kStates, state);
}
std::optional<ScreenshotItem::State> itemState(std::string_view coded) {
  return valueOf(kStates, coded);
}

}  // namespace quillmere
