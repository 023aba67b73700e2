#pragma once

#include <memory>
#include <vector>

#include "platform/linux/passing/PacketSocket.h"
#include "platform/linux/passing/ReaderMessages.h"

namespace quillmere {
class TextRecognizer;

/// Answers one request after the other. All that it needs from files is loaded before the first.
class Reader {
 public:
  /// `recognizer` is null in one that reads no text.
  Reader(PacketSocket& socket, const ReaderMessages::Signals& signals, TextRecognizer* recognizer);

  /// Has what decodes pictures load the rest of itself.
  static void warmUp();

  /// Until the program is gone, or says what is no request.
  void run();

 private:
  void answer(const ReaderMessages::Request& request, std::vector<Descriptor> files);
  void judge(std::vector<Descriptor> files);

  PacketSocket& socket_;
  const ReaderMessages::Signals& signals_;
  TextRecognizer* recognizer_;
};

}  // namespace quillmere
