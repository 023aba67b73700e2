#include "update/library/LiveUpdateWindows.h"

namespace quillmere {

/// It may be in the middle of an event of its own.
void LiveUpdateWindows::Later::operator()(UpdateWindow* window) const {
  window->hide();
  window->deleteLater();
}

LiveUpdateWindows::~LiveUpdateWindows() {
  // No later turn comes for sure.
  delete window_.release();
}

void LiveUpdateWindows::show(const UpdateNotice& notice, std::function<void(Answer)> answered) {
  window_.reset(new UpdateWindow(notice, [this, answered = std::move(answered)](Answer answer) {
    executor_.post([weak = lifetime_.weak(this), answered, answer] {
      if (weak) answered(answer);
    });
  }));
  window_->show();
  bringForward();
}

void LiveUpdateWindows::setProgress(qint64 done, qint64 whole) {
  if (window_) window_->setProgress(done, whole);
}

void LiveUpdateWindows::bringForward() {
  if (!window_) return;
  window_->raise();
  window_->activateWindow();
}

void LiveUpdateWindows::close() {
  window_.reset();
}

}  // namespace quillmere
