// An update library of a later program, whose interface is another one.

#include "update/UpdateInterface.h"

namespace {
constexpr QuillmereUpdateFunctions kFunctions{.interfaceNumber = kQuillmereUpdateInterface + 1,
                                              .start = {},
                                              .check = {},
                                              .setChecksAutomatically = {},
                                              .stop = {}};
}

extern "C" __attribute__((visibility("default"))) const QuillmereUpdateFunctions* quillmereUpdate(uint32_t) {
  return &kFunctions;
}
