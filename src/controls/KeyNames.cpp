#include "controls/KeyNames.h"

#include <cstring>

#include "foundation/Localized.h"

namespace quillmere {

QString KeyNames::translate(const char* context, const char* source, const char* /*disambiguation*/,
                            int /*count*/) const {
  const bool isNamed = context && source && std::strcmp(context, "QShortcut") == 0 && std::strcmp(source, "Meta") == 0;
  return isNamed ? localized("Command") : QString();
}

}  // namespace quillmere
