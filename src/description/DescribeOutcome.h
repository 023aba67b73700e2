#pragma once

#include <variant>

#include "description/AnalysisError.h"
#include "description/ModelAnswer.h"

namespace quillmere {

struct AnalysisCancelled {
  bool operator==(const AnalysisCancelled&) const = default;
};
/// What one attempt to describe a screenshot gave.
using DescribeOutcome = std::variant<ScreenshotAnalysisResult, AnalysisError, AnalysisCancelled>;

}  // namespace quillmere
