#include "platform/linux/capture/LiveScreenshotOptions.h"

#include <glib.h>

#include "platform/linux/capture/CaptureTools.h"

namespace quillmere {
namespace {

void start(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  g_spawn_async(nullptr, arguments.data(), nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace

bool LiveScreenshotOptions::canOpen() const {
  return !optionsCommandInUse(environment_).empty();
}

void LiveScreenshotOptions::open() {
  executor_.runInBackground(
      [environment = environment_] {
        if (auto words = optionsCommandInUse(environment); !words.empty()) start(std::move(words));
      },
      [] {});
}

}  // namespace quillmere
