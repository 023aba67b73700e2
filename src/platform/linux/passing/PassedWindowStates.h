#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reading/WindowStack.h"

namespace quillmere::PassedWindowStates {

/// States of the window system, and when the picture's file was complete, as the program hands them to its reader.
struct Question {
  std::vector<WindowStack> states;
  Date closedAt;
};

std::string coded(const Question& question);
/// None where the bytes are no such list.
std::optional<Question> decoded(std::string_view bytes);

}  // namespace quillmere::PassedWindowStates
