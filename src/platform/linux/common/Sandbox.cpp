#include "platform/linux/common/Sandbox.h"

#include <QtCore/QFile>

namespace quillmere {

bool isSandboxed(const QString& flatpakMark) {
  return QFile::exists(flatpakMark) || !qEnvironmentVariableIsEmpty("SNAP");
}

}  // namespace quillmere
