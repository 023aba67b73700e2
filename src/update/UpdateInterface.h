#pragma once

#include <cstdint>

// What the program and its update library know of each other, in C: both have their own copy of every class, and either
// may be older than the other. Main thread.
extern "C" {

/// Another number is another interface, which is not used.
inline constexpr uint32_t kQuillmereUpdateInterface = 1;

/// What the program does for the library. Every function is there; the texts live as long as the call.
struct QuillmereUpdateHost {
  void* context;
  void (*setCanCheck)(void* context, bool can);
  void (*setChecksAutomatically)(void* context, bool checks);
  void (*setInstalling)(void* context, bool isInstalling);
  void (*borrowActivation)(void* context);  ///< a window is about to show
  void (*repayActivation)(void* context);   ///< the last one has gone
  bool (*quit)(void* context);              ///< false when the program goes on after all
  bool (*storedChecksAutomatically)(void* context);
  void (*storeChecksAutomatically)(void* context, bool checks);
  double (*storedLastCheck)(void* context);  ///< seconds since 2001; negative for none
  void (*storeLastCheck)(void* context, double seconds);
};

struct QuillmereUpdateConfiguration {
  const char* feed;          ///< its address
  const unsigned char* key;  ///< the maker's public Ed25519 key, 32 bytes
  const char* authority;     ///< file of the only certificate authority that counts; null for the system's
  const char* version;       ///< the running program's
  const char* program;       ///< its file, with the whole path
  bool isSingleFile;         ///< the program is one file, which is replaced; else its package is installed
};

struct QuillmereUpdater;

struct QuillmereUpdateFunctions {
  uint32_t interfaceNumber;
  /// Null where nothing can be updated this way. The host lives until `stop`.
  QuillmereUpdater* (*start)(const QuillmereUpdateHost* host, const QuillmereUpdateConfiguration* configuration);
  void (*check)(QuillmereUpdater* updater);
  void (*setChecksAutomatically)(QuillmereUpdater* updater, bool checks);
  void (*stop)(QuillmereUpdater* updater);
};

/// The type of the library's one symbol, "quillmereUpdate". Null for another interface's number.
using QuillmereUpdateEntry = const QuillmereUpdateFunctions* (*)(uint32_t interfaceNumber);
}
