#include "inbox/DeletionQuestion.h"

#include "foundation/Localized.h"

namespace quillmere {
namespace {

AlertContent question(bool isDeleting, const QString& heading, const QString& message) {
  return {.symbol = isDeleting ? QStringLiteral("trash.slash") : QStringLiteral("trash"),
          .ink = Ink::danger,
          .heading = heading,
          .message = message,
          .safe = localized("Cancel"),
          .action = isDeleting ? localized("Delete") : localized("Move to Trash"),
          .isDestructive = true};
}

AlertContent aboutOne(bool isDeleting, const QString& name) {
  if (isDeleting) {
    return question(
        true, localized("Delete Screenshot?"),
        localized("“%@” will be deleted from its folder and removed from Quillmere. This can’t be undone.", {name}));
  }
  return question(
      false, localized("Move Screenshot to Trash?"),
      localized("“%@” will be removed from its folder and from Quillmere. You can recover it from Trash.", {name}));
}

AlertContent aboutSeveral(bool isDeleting, qsizetype count) {
  if (isDeleting) {
    return question(true, localized("Delete Screenshots?"),
                    localized("%lld screenshots will be deleted from their folders and removed from Quillmere. This "
                              "can’t be undone.",
                              {count}));
  }
  return question(false, localized("Move Screenshots to Trash?"),
                  localized("%lld screenshots will be removed from their folders and from Quillmere. You can recover "
                            "them from Trash.",
                            {count}));
}

}  // namespace

std::optional<AlertContent> deletionQuestion(const InboxPresentation& presentation) {
  const bool isDeleting = presentation.isDeletingForGood();
  if (const auto& one = *presentation.deletionCandidate) return aboutOne(isDeleting, one->url.displayName());
  if (const auto& several = *presentation.batchDeletion) {
    return aboutSeveral(isDeleting, static_cast<qsizetype>(several->items.size()));
  }
  return std::nullopt;
}

}  // namespace quillmere
