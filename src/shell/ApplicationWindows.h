#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <vector>

#include "foundation/Signal.h"

class QWidget;

namespace quillmere {

/// Whether the program has a place among those that the person works with.
enum class ActivationPolicy {
  accessory,  ///< nothing of it stands in the task bar or the window list; it lives in the tray, or unseen
  regular,    ///< a window of its own stands there, or a question that no such window is behind
};

/// The table of the program's own windows. The popup, questions and sheets are none of them: they come and go without
/// the program having been opened. A window counts as shown while it is visible or minimized.
class ApplicationWindows final : public QObject {
 public:
  Signal<> policyChanged;
  Signal<> closed;  ///< one of them; it may still be in the middle of it

  /// Once is enough. The window may go at any time.
  void add(QWidget& window);
  /// Opens the window or brings it forward, with the sheet or question that holds it up.
  void open(QWidget& window);

  bool isAnyShown() const { return front() != nullptr; }
  /// The one that had the keyboard last, those that are minimized behind all others; null when none is shown.
  QWidget* front() const;
  /// Where a question belongs that the program asks by itself: over the front one, or over the sheet that holds it up;
  /// null where it has to stand alone, since what belongs to a minimized window is minimized with it.
  QWidget* placeForQuestion() const;
  /// Closes the one in front as its own button would. The program runs on.
  void closeFront();

  ActivationPolicy policy() const { return policy_; }
  void setPolicy(ActivationPolicy policy);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void moveToFront(QObject* window);
  void didClose();

  std::vector<QPointer<QWidget>> windows_;  ///< the last used first
  ActivationPolicy policy_ = ActivationPolicy::accessory;
};

/// What shows something to a program without a window lends it the regular policy for as long. Both may be called again
/// and again.
class ActivationPolicyLoan {
 public:
  explicit ActivationPolicyLoan(ApplicationWindows& windows) : windows_(windows) {}
  ~ActivationPolicyLoan() { repay(); }
  ActivationPolicyLoan(const ActivationPolicyLoan&) = delete;
  ActivationPolicyLoan& operator=(const ActivationPolicyLoan&) = delete;

  void borrow();
  void repay();

 private:
  ApplicationWindows& windows_;
  bool isRaised_ = false;
};

}  // namespace quillmere
