#pragma once

#include <functional>

#include "model/AppModel.h"

namespace quillmere {

/// Has the person choose the folder to watch, and the model adopt it. Tells whether it did, also when it is the same as
/// before; why it didn't is told in the Inbox.
bool chooseFolderToWatch(AppModel& model, FileChoosing& panels, const std::function<bool(const FileURL&)>& confirm);

}  // namespace quillmere
