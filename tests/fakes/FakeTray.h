#pragma once

#include "settings/DesktopTray.h"

namespace quillmere::testing {

class FakeTray final : public DesktopTray {
 public:
  bool isThere() const override { return isThere_; }
  void set(bool isThere) {
    isThere_ = isThere;
    changed();
  }

 private:
  bool isThere_ = false;
};

}  // namespace quillmere::testing
