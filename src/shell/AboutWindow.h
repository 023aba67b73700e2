#pragma once

#include <functional>

#include "shell/AboutInformation.h"
#include "shell/SmallWindow.h"

namespace quillmere {

class ActionButton;

/// What the program is, which version, whose, and what it is built from.
class AboutWindow final : public SmallWindow {
 public:
  /// The maker's pages, each in the default browser.
  struct Actions {
    std::function<void()> openWebsite;
    std::function<void()> openSupport;
    std::function<void()> openPrivacyPolicy;
  };
  AboutWindow(AboutInformation information, Actions actions);

  /// Opens the list of what the program is built from, beside its button.
  void showAcknowledgments();

 private:
  QWidget* makeVersion();
  QLayout* makeLinks();

  AboutInformation information_;
  Actions actions_;
  ActionButton* acknowledgments_ = nullptr;
};

}  // namespace quillmere
