#pragma once
// A bounded first-in first-out store on disk for history items that cannot be written yet
// (the database server is away). The file is private and has no name: it is created in the
// given directory, unlinked at once, and gone with the process. The bound counts the bytes
// the file holds; space that was read is reused before the bound is reached.

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "encoded_row.h"

namespace vantrel::history {

class Spool {
 public:
  // nullptr with `error` set when no file can be made in `directory`.
  static std::unique_ptr<Spool> Open(const std::string& directory, uint64_t limitBytes,
                                     std::string& error);
  ~Spool();
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;

  // Appends an item; false when it does not fit within the bound or the disk refuses it
  // (the spool is then unchanged). `beyondLimit` lets small items that must not be lost
  // (descriptions) pass the bound.
  bool Push(const HistoryItem& item, bool beyondLimit = false);
  // The oldest items, at most `count`, left in place.
  std::vector<HistoryItem> Front(size_t count) const;
  // Drops the `count` oldest items.
  void Pop(size_t count);

  size_t Items() const { return sizes_.size(); }
  bool Empty() const { return sizes_.empty(); }
  uint64_t Bytes() const { return end_ - begin_; }

 private:
  Spool(int fd, uint64_t limitBytes) : fd_(fd), limit_(limitBytes) {}
  bool Compact();

  int fd_ = -1;
  uint64_t limit_ = 0;
  uint64_t begin_ = 0;          // offset of the oldest item
  uint64_t end_ = 0;            // offset where the next item goes
  std::deque<uint32_t> sizes_;  // the items' sizes in the file, oldest first
};

// The item's bytes in the spool, and back (false for bytes that are not an item).
std::string SerializeItem(const HistoryItem& item);
bool DeserializeItem(std::string_view bytes, HistoryItem& item);

}  // namespace vantrel::history
