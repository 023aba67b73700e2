#pragma once

#include <QtCore/QTranslator>

namespace quillmere {

/// The names of keys in menus and texts that Qt writes, as people here call them.
class KeyNames final : public QTranslator {
 public:
  bool isEmpty() const override { return false; }
  QString translate(const char* context, const char* source, const char* disambiguation, int count) const override;
};

}  // namespace quillmere
