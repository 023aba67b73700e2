#include "platform/linux/passing/Protections.h"

namespace quillmere {

std::string Protections::names(uint32_t protections) {
  std::string all;
  const auto add = [&](uint32_t one, const char* name) {
    if ((protections & one) == 0) return;
    if (!all.empty()) all += ", ";
    all += name;
  };
  add(namespaces, "namespaces");
  add(emptyRoot, "an empty root");
  add(landlock, "landlock");
  return all;
}

}  // namespace quillmere
