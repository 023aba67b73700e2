#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <optional>
#include <string_view>

#include "foundation/Date.h"
#include "foundation/FileURL.h"
#include "records/FileIdentity.h"
#include "records/UUID.h"

namespace quillmere {

enum class CaptureKind { display, window, selection };
QString label(CaptureKind kind);
std::string_view codedValue(CaptureKind kind);
std::optional<CaptureKind> captureKind(std::string_view coded);

/// Why a record has no description. Nothing finer survives a restart.
enum class AnalysisFailureCode {
  appleIntelligenceNotEnabled,
  modelNotReady,
  deviceNotEligible,
  contentBlocked,
  busy,
  tooMuchContent,
  unsupportedLanguage,
  invalidResponse,
  other,
};
std::string_view codedValue(AnalysisFailureCode code);
/// An unknown text reads as `other`: a newer version's reason is still a reason.
AnalysisFailureCode analysisFailureCode(std::string_view coded);

/// The one persistent fact about a screenshot: where its file is, what was decided and what analysis found.
/// Texts are UTF-8: half the memory of a long list of recognised pages.
struct ScreenshotItem {
  enum class State { pending, temporary, permanent };

  UUID id;  ///< never changes
  FileURL url;
  Date createdAt;  ///< never changes
  State state = State::pending;
  std::optional<Date> expiresAt;
  std::optional<QByteArray> suggestedName;
  std::optional<QByteArray> recognizedText;
  std::optional<QByteArray> imageDescription;
  std::optional<AnalysisFailureCode> analysisFailure;
  std::optional<bool> analysisRetryable;
  std::optional<UUID> sourceItemID;
  std::optional<QByteArray> fileBookmark;
  std::optional<FileIdentity> fileIdentity;
  std::optional<bool> arrivedFromElsewhere;
  std::optional<CaptureKind> captureKind;
  std::optional<QByteArray> knownWindows;  ///< which its picture shows, where the window system told; `KnownWindows`
  std::optional<bool> hasMovedAway;        ///< the file was seen to be moved away, and has not been found since

  bool operator==(const ScreenshotItem&) const = default;
};

QString statusText(ScreenshotItem::State state);
std::string_view codedValue(ScreenshotItem::State state);
std::optional<ScreenshotItem::State> itemState(std::string_view coded);

}  // namespace quillmere
