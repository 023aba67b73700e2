#include "shell/AboutInformation.h"

#include "foundation/Localized.h"

namespace quillmere {

QString AboutInformation::versionLine() const {
  return build.isEmpty() ? localized("Version %@", {version}) : localized("Version %@ (Build %@)", {version, build});
}

QString AboutInformation::copyright() {
  return localized("Copyright © 2026 The Quillmere developers");
}

}  // namespace quillmere
