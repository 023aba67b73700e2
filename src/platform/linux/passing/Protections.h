#pragma once

#include <cstdint>
#include <string>

namespace quillmere {

/// What the kernel takes from a reader, as far as it can, beside the limits and the filter of system calls that every
/// kernel has.
namespace Protections {

enum Protection : uint32_t {
  namespaces = 1,  ///< it has no network, mounts and shared memory but its own
  emptyRoot = 2,   ///< no path leads anywhere
  landlock = 4,    ///< it may open no file, whatever leads there
};

/// "namespaces, landlock"
std::string names(uint32_t protections);

}  // namespace Protections
}  // namespace quillmere
