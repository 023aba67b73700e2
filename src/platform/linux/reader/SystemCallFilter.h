#pragma once

namespace quillmere {

/// Leaves every thread of this process, for good, the system calls that computing and answering need; all others fail
/// with EPERM. No file can be opened, no connection made, no program or process started, no other process touched, and
/// no memory made executable. False where the kernel has no filters.
bool installSystemCallFilter();

}  // namespace quillmere
