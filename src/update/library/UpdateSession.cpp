#include "update/library/UpdateSession.h"

namespace quillmere {

UpdateSession::UpdateSession(Program program, World world) : program_(std::move(program)), world_(std::move(world)) {}

UpdateSession::~UpdateSession() {
  transfer_.reset();
  if (isShown_) world_.windows.close();
}

void UpdateSession::enter(State state) {
  if (std::exchange(state_, state) != state && changed) changed(state);
}

void UpdateSession::show(const UpdateNotice& notice, void (UpdateSession::*onAction)(),
                         void (UpdateSession::*onSafe)()) {
  if (!std::exchange(isShown_, true)) world_.willShow();
  world_.windows.show(notice, [this, onAction, onSafe](UpdateWindows::Answer answer) {
    const auto next = answer == UpdateWindows::Answer::action ? onAction : onSafe;
    if (next) (this->*next)();
  });
}

void UpdateSession::finish() {
  transfer_.reset();
  package_.reset();
  feed_.reset();
  bytes_.clear();
  if (std::exchange(isShown_, false)) {
    world_.windows.close();
    world_.willFinish();
  }
  enter(State::idle);
}

void UpdateSession::fail(UpdateFailure failure) {
  transfer_.reset();
  package_.reset();
  // What the person did not ask for and has not seen fails in silence, and is tried again.
  if (by_ == By::schedule && !isShown_) return finish();
  show(UpdateNotice::failed(failure), nullptr, &UpdateSession::finish);
}

void UpdateSession::check(By by) {
  if (state_ != State::idle) {
    if (by == By::person && isShown_) return world_.windows.bringForward();
    if (by == By::person && state_ == State::checking) {
      by_ = by;
      show(UpdateNotice::checking(), nullptr, &UpdateSession::finish);
    }
    return;
  }
  by_ = by;
  enter(State::checking);
  if (by == By::person) show(UpdateNotice::checking(), nullptr, &UpdateSession::finish);
  transfer_ = world_.transport.begin({.url = program_.feed,
                                      .mostBytes = UpdateFeed::kMostBytes,
                                      .longest = kLongestFeed,
                                      .take =
                                          [this](const QByteArray& bytes) {
                                            bytes_ += bytes;
                                            return true;
                                          },
                                      .ended = [this](auto failure) { takeFeed(failure); }});
}

void UpdateSession::takeFeed(std::optional<UpdateFailure> failure) {
  transfer_.reset();
  if (failure) return fail(*failure);
  const auto feed = UpdateFeed::read(bytes_, program_.maker);
  bytes_.clear();
  if (!feed) return fail(feed.reason());
  if (feed->expires <= world_.now()) return fail(UpdateFailure::expired);
  // An older one is none: whoever can answer for the server could bring back mended mistakes.
  if (feed->version <= program_.version) {
    if (by_ == By::schedule) return finish();
    return show(UpdateNotice::upToDate(program_.version), nullptr, &UpdateSession::finish);
  }
  if (feed->minimumVersion > program_.version) return fail(UpdateFailure::programTooOld);
  if (const auto obstacle = world_.installer.obstacle()) return fail(*obstacle);
  feed_ = *feed;
  enter(State::found);
  show(UpdateNotice::found(*feed_, program_.version), &UpdateSession::download, &UpdateSession::finish);
}

void UpdateSession::download() {
  enter(State::downloading);
  show(UpdateNotice::downloading(*feed_), nullptr, &UpdateSession::finish);
  PackageFile::removeLeftovers(program_.packages);
  const QString name = packageName(feed_->package.path(), feed_->version.display());
  package_ = PackageFile::make(program_.packages, name, {program_.maker, feed_->signature, feed_->size});
  if (!package_) return fail(UpdateFailure::notStored);
  received_ = 0;
  transfer_ = world_.transport.begin({.url = feed_->package,
                                      .mostBytes = feed_->size,
                                      .longest = kLongestPackage,
                                      .take = [this](const QByteArray& bytes) { return takePackage(bytes); },
                                      .ended = [this](auto failure) { checkPackage(failure); }});
}

bool UpdateSession::takePackage(const QByteArray& bytes) {
  received_ += bytes.size();
  world_.windows.setProgress(received_, feed_->size);
  return package_->append(bytes);
}

void UpdateSession::checkPackage(std::optional<UpdateFailure> failure) {
  transfer_.reset();
  if (failure) return fail(*failure);
  if (received_ != feed_->size) return fail(UpdateFailure::cutShort);
  auto isGenuine = std::make_shared<bool>(false);
  world_.executor.runInBackground([package = package_, isGenuine] { *isGenuine = package->isWholeAndGenuine(); },
                                  [weak = lifetime_.weak(this), package = package_, isGenuine] {
                                    // Cancelled meanwhile, and another one may be on its way.
                                    if (!weak || weak->package_ != package) return;
                                    *isGenuine ? weak->offerPackage() : weak->fail(UpdateFailure::packageNotSigned);
                                  });
}

void UpdateSession::offerPackage() {
  enter(State::ready);
  show(UpdateNotice::ready(*feed_), &UpdateSession::install, &UpdateSession::finish);
}

void UpdateSession::install() {
  enter(State::installing);
  show(UpdateNotice::installing(*feed_), nullptr, nullptr);
  world_.installer.install(package_, [weak = lifetime_.weak(this)](auto failure) {
    if (weak) weak->relaunch(failure);
  });
}

void UpdateSession::relaunch(std::optional<UpdateFailure> failure) {
  if (failure) return fail(*failure);
  package_.reset();
  world_.setInstalling(true);
  if (world_.relaunch(world_.installer.programToStart())) return;
  world_.setInstalling(false);
  // It is installed all the same, and runs from the next start on.
  finish();
}

}  // namespace quillmere
