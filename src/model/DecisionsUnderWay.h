#pragma once

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "records/UUID.h"

namespace quillmere {

/// The model as decisions under way need it.
class DecidedRecords {
 public:
  virtual ~DecidedRecords() = default;
  virtual bool isInPopups(const UUID& id) const = 0;
  /// The decision takes long, and its popup waits no more.
  virtual void leavePopup(const UUID& id) = 0;
  struct Ended {
    bool hasLeftPopup = false;  ///< its popup went before it was over
    bool isKept = false;        ///< the person wants to keep it, if it still is there
  };
  virtual void decisionEnded(const UUID& id, Ended ended) = 0;
};

/// The records about which a decision is being carried out, and those about which none may be: whose file is open in
/// the program, and about which the person is being asked. Main thread.
class DecisionsUnderWay {
 public:
  /// Both outlive this.
  DecisionsUnderWay(Executor& executor, DecidedRecords& records) : executor_(executor), records_(records) {}

  /// Nothing else is decided about the record until as many calls of `end`, and its popup waits for it only so long.
  void begin(const UUID& id);
  void end(const UUID& id);
  bool contains(const UUID& id) const { return deciding_.contains(id); }
  /// If something is under way about the record, it is kept should nothing come of that.
  void keepAfterwards(const UUID& id);

  /// Begins with its making, and ends with it.
  class Guard {
   public:
    Guard(DecisionsUnderWay& decisions, const UUID& id) : decisions_(decisions.lifetime_.weak(&decisions)), id_(id) {
      decisions.begin(id);
    }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() {
      if (decisions_) decisions_->end(id_);
    }

   private:
    Weak<DecisionsUnderWay> decisions_;
    UUID id_;
  };

  /// False where the question is being asked already: the window that did not ask is still there to be clicked.
  bool beginQuestion(const UUID& id) { return inQuestion_.insert(id).second; }
  void endQuestion(const UUID& id) { inQuestion_.erase(id); }

  /// The record's file is open in the program until as many calls of `unprotect`.
  void protect(const UUID& id) { ++protected_[id]; }
  void unprotect(const UUID& id);
  bool isProtected(const UUID& id) const { return protected_.contains(id); }
  /// The record is gone, and with it what its file was open for.
  void dropProtection(const UUID& id) { protected_.erase(id); }

 private:
  struct Decision {
    int count = 0;
    Task<> leaving = {};  ///< until its popup has waited long enough
    DecidedRecords::Ended ended;
  };
  static Task<> leavePopupSoon(Weak<DecisionsUnderWay> self, UUID id);

  Executor& executor_;
  DecidedRecords& records_;
  UUIDMap<Decision> deciding_;
  UUIDSet inQuestion_;  ///< whether to delete them is being asked
  UUIDMap<int> protected_;
  Lifetime lifetime_;
};

}  // namespace quillmere
