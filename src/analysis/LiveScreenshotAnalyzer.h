#pragma once

#include <functional>
#include <memory>

#include "analysis/RecognitionThreads.h"
#include "description/ImageAnalysisService.h"
#include "model/ScreenshotAnalyzing.h"
#include "reading/PictureReading.h"

namespace quillmere {

/// Text by who reads pictures, descriptions by a model server of this machine. An evicted
/// file is never read: that would bring its data here.
class LiveScreenshotAnalyzer final : public ScreenshotAnalyzing {
 public:
  /// All of them outlive this. `isDataless` is called on any thread.
  LiveScreenshotAnalyzer(Executor& executor, LanguageModel& model, std::shared_ptr<PictureReading> pictures,
                         std::function<bool(const FileURL&)> isDataless);

  Task<std::optional<AnalysisError::Unavailability>> availability() override { return service_.availability(); }
  Task<DescribeOutcome> describe(FileURL url, std::optional<QString> text) override;
  Task<std::optional<QString>> recognizeText(FileURL url) override;
  std::optional<ForeignModelServer> foreignServer() const override { return service_.foreignServer(); }

 private:
  Executor& executor_;
  ImageAnalysisService service_;
  std::shared_ptr<PictureReading> pictures_;
  std::function<bool(const FileURL&)> isDataless_;
  RecognitionThreads threads_;
};

}  // namespace quillmere
