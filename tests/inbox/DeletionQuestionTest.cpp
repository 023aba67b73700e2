#include "inbox/DeletionQuestion.h"

#include "inbox/DetailFixture.h"

namespace quillmere {
namespace {

using Reason = AppModel::DisposalReason;

class DeletionQuestionTest : public testing::DetailFixture {
 protected:
  AlertContent asked(int count, Reason reason) {
    while (static_cast<int>(model->items().size()) < count) arrive(std::to_string(model->items().size()) + ".png");
    std::vector<ScreenshotItem> items{item(id)};
    for (size_t i = 0; static_cast<int>(items.size()) < count; ++i) {
      if (model->items()[i].id != id) items.push_back(model->items()[i]);
    }
    presentation->requestDeletion(items, reason);
    const auto content = deletionQuestion(*presentation);
    EXPECT_TRUE(content);
    presentation->cancelDeletion();
    return content.value_or(AlertContent());
  }
};

TEST_F(DeletionQuestionTest, WithoutARequestThereIsNone) {
  EXPECT_FALSE(deletionQuestion(*presentation));
}

TEST_F(DeletionQuestionTest, SaysWhatGoesAndWhetherItComesBack) {
  struct Row {
    int count;
    Reason reason;
    bool deletesChosen;
    const char* heading;
    const char* message;
    const char* action;
  };
  const Row rows[] = {
      {1, Reason::chosen, false, "Move Screenshot to Trash?",
       "“Shot.png” will be removed from its folder and from Quillmere. You can recover it from Trash.",
       "Move to Trash"},
      {1, Reason::deleteImmediately, false, "Delete Screenshot?",
       "“Shot.png” will be deleted from its folder and removed from Quillmere. This can’t be undone.", "Delete"},
      {1, Reason::chosen, true, "Delete Screenshot?",
       "“Shot.png” will be deleted from its folder and removed from Quillmere. This can’t be undone.", "Delete"},
      {3, Reason::chosen, false, "Move Screenshots to Trash?",
       "3 screenshots will be removed from their folders and from Quillmere. You can recover them from Trash.",
       "Move to Trash"},
      {3, Reason::deleteImmediately, false, "Delete Screenshots?",
       "3 screenshots will be deleted from their folders and removed from Quillmere. This can’t be undone.", "Delete"},
  };
  for (const Row& row : rows) {
    model->setDeletesChosenImmediately(row.deletesChosen);
    const AlertContent content = asked(row.count, row.reason);
    EXPECT_EQ(content.heading, QString::fromUtf8(row.heading));
    EXPECT_EQ(content.message, QString::fromUtf8(row.message));
    EXPECT_EQ(content.action, QString::fromUtf8(row.action));
    EXPECT_EQ(content.safe, QStringLiteral("Cancel"));
    EXPECT_TRUE(content.isDestructive);
  }
}

}  // namespace
}  // namespace quillmere
