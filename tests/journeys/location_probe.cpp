// Asks and changes where the capture tool in use saves, for the journey that compares this with the tools themselves.
//
//   location_probe folder | raw | set VALUE | set-folder FOLDER | unset
//
// Prints what was asked for. Ends with 1 when there is no such thing, or when the change was refused.

#include <cstdio>
#include <string>

#include "platform/linux/capture/LiveScreenshotLocationProvider.h"

namespace {

int print(const std::optional<std::string>& text) {
  if (!text) return 1;
  std::puts(text->c_str());
  return 0;
}

int usage() {
  std::fputs("location_probe folder | raw | set VALUE | set-folder FOLDER | unset\n", stderr);
  return 2;
}

}  // namespace

int main(int count, char** arguments) {
  quillmere::LiveScreenshotLocationProvider provider;
  const std::string command = count > 1 ? arguments[1] : "";
  const std::string argument = count > 2 ? arguments[2] : "";
  if (command == "folder") {
    const auto folder = provider.folder();
    return print(folder ? std::optional(folder->path()) : std::nullopt);
  }
  if (command == "raw") {
    const auto value = provider.rawValue();
    return print(value ? std::optional(value->toStdString()) : std::nullopt);
  }
  if (command == "set") return provider.tryToSetRawValue(QString::fromStdString(argument)) ? 0 : 1;
  if (command == "set-folder") {
    const auto folder = quillmere::FileURL::fromPath(std::string_view(argument));
    return provider.tryToSetRawValue(provider.rawValueOf(folder)) ? 0 : 1;
  }
  if (command == "unset") return provider.tryToSetRawValue(std::nullopt) ? 0 : 1;
  return usage();
}
