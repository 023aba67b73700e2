#pragma once

#include <optional>
#include <vector>

#include "model/AppModelDependencies.h"
#include "model/Published.h"
#include "records/ScreenshotList.h"

namespace quillmere {

/// The model as the queue needs it.
class PromptStage {
 public:
  virtual ~PromptStage() = default;
  /// A popup is about to be shown: what was told about an earlier attempt is not told any more.
  virtual void promptIsComing() = 0;
  /// The popup goes on from its screenshot: what the person had begun with it is over.
  virtual void promptIsLeft() = 0;
  /// The popup shows the screenshot, and its time begins.
  virtual void showPrompt(const ScreenshotItem& item) = 0;
  /// The review shortcut in words, when one is set.
  virtual std::optional<QString> spokenReviewShortcut() const = 0;
};

/// Whether the person hears that the popup has got the keyboard.
enum class FocusNews { silent, announced };

/// The screenshots that wait for a decision, oldest first. The first one is in the popup. Main thread.
class PromptQueue {
 public:
  /// All of them outlive this.
  PromptQueue(const AppModelDependencies& dependencies, const ScreenshotList& items, PromptStage& stage,
              Signal<const ModelChange&>& changed);

  Published<std::vector<UUID>, PromptQueue> queue;
  Published<int, PromptQueue> focusRequest;       ///< how often the popup was given the keyboard
  Published<int, PromptQueue> contentGeneration;  ///< counts the screenshots that came up

  /// The screenshot whose turn it is.
  std::optional<UUID> front() const;

  /// Later arrivals wait behind the screenshot that the person is looking at.
  void enqueue(const UUID& id);
  /// Shows the first that is still undecided; what is not leaves the queue.
  void showNext();
  /// Takes ids out of the queue; only the front's leaving changes what is on screen.
  void resolve(const UUIDSet& ids);
  /// Gives the popup the keyboard, filling an empty queue with `pending` first.
  void review(const std::function<std::vector<UUID>()>& pending, FocusNews news);
  /// How new screenshots in the popup are announced from now on.
  void setPriority(AnnouncementPriority priority) { priority_ = priority; }

 private:
  void setVisible(const std::optional<UUID>& id);
  void announceFront() const;
  void announce(const QString& text, AnnouncementPriority priority) const;

  const AppModelDependencies& dependencies_;
  const ScreenshotList& items_;
  PromptStage& stage_;
  UUIDSet waiting_;  ///< what stands in the queue
  std::optional<UUID> visible_;
  AnnouncementPriority priority_ = AnnouncementPriority::high;
  bool hintsAtShortcut_ = true;
};

}  // namespace quillmere
