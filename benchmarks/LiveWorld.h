#pragma once

#include <memory>
#include <vector>

#include "model/AppModel.h"
#include "platform/linux/LiveServices.h"

/// A model over the live services and folders of its own, which go with it.
class LiveWorld {
 public:
  LiveWorld();
  ~LiveWorld();

  const quillmere::FileURL& home() const { return home_; }
  /// The folder that is watched.
  quillmere::FileURL shots() const { return home_.appending("shots"); }
  /// The file of the record with this number, as a capture tool names it.
  quillmere::FileURL shot(int number) const;

  /// Makes the model of these records, newest first. It is not started. Without an executor it has the live one.
  void makeModel(std::vector<quillmere::ScreenshotItem> items, quillmere::Executor* executor = nullptr);
  quillmere::AppModel& model() { return *model_; }
  std::shared_ptr<quillmere::PictureReading> pictures() const { return services_.pictures; }
  /// The model's.
  quillmere::Executor& executor() { return *executor_; }

 private:
  class NoPopup final : public quillmere::CapturePromptPresenting {
   public:
    void present(const quillmere::ScreenshotItem&, quillmere::AppModel&) override {}
    void hide() override {}
    void expect(const quillmere::FileURL&, quillmere::AppModel&) override {}
    void focusForReview() override {}
    bool isPointerEngaged() const override { return false; }
  };
  quillmere::ApplicationPaths paths() const;

  quillmere::FileURL home_;
  quillmere::LiveServices services_;
  NoPopup popup_;
  quillmere::Executor* executor_ = nullptr;
  std::unique_ptr<quillmere::AppModel> model_;
};
