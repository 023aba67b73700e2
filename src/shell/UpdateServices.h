#pragma once

#include "shell/ApplicationWindows.h"
#include "update/UpdateLibrary.h"

namespace quillmere {

/// What the updater has of the program: a place for its windows, lent by `loan`, and the way to end it.
UpdateLibrary::Services updateServices(ActivationPolicyLoan& loan, std::function<bool()> quit);

}  // namespace quillmere
