#pragma once

// The X keyboard extension's protocol. Its header is C's and names a member "explicit".
#define explicit explicit_  // NOLINT(clang-diagnostic-keyword-macro): there is no other way to read it
#include <xcb/xkb.h>
#undef explicit
