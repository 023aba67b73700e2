#pragma once

#include <vector>

#include "model/AppModel.h"

namespace quillmere {

/// While it lives the files of these records stay where they are, and a popup about one does not time out.
class Protection {
 public:
  Protection(AppModel& model, std::vector<UUID> ids) : model_(model), ids_(std::move(ids)) {
    for (const UUID& id : ids_) model_.protect(id);
  }
  ~Protection() {
    for (const UUID& id : ids_) model_.unprotect(id);
  }
  Protection(const Protection&) = delete;
  Protection& operator=(const Protection&) = delete;

 private:
  AppModel& model_;
  std::vector<UUID> ids_;
};

}  // namespace quillmere
