#include "shell/UpdateServices.h"

namespace quillmere {

UpdateLibrary::Services updateServices(ActivationPolicyLoan& loan, std::function<bool()> quit) {
  return {.borrowActivation = [&loan] { loan.borrow(); },
          .repayActivation = [&loan] { loan.repay(); },
          .quit = std::move(quit)};
}

}  // namespace quillmere
