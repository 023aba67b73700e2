#pragma once

#include "controls/Alert.h"
#include "inbox/InboxPresentation.h"

namespace quillmere {

/// What the presentation's request to delete asks; nothing without one.
std::optional<AlertContent> deletionQuestion(const InboxPresentation& presentation);

}  // namespace quillmere
