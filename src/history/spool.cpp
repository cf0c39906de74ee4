#include "spool.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vantrel::history {
namespace {

class Writer {
 public:
  void Byte(char c) { out_ += c; }
  void Int(int64_t v) { out_.append(reinterpret_cast<const char*>(&v), sizeof v); }
  void Text(std::string_view t) {
    Int(static_cast<int64_t>(t.size()));
    out_ += t;
  }
  std::string Take() { return std::move(out_); }

 private:
  std::string out_;
};

class Reader {
 public:
  explicit Reader(std::string_view in) : in_(in) {}
  bool Byte(char& c) {
    if (in_.empty()) return false;
    c = in_.front();
    in_.remove_prefix(1);
    return true;
  }
  bool Int(int64_t& v) {
    if (in_.size() < sizeof v) return false;
    std::memcpy(&v, in_.data(), sizeof v);
    in_.remove_prefix(sizeof v);
    return true;
  }
  template <typename T>
  bool Int(T& v) {
    int64_t wide = 0;
    if (!Int(wide)) return false;
    v = static_cast<T>(wide);
    return static_cast<int64_t>(v) == wide;
  }
  bool Text(std::string& t) {
    int64_t size = 0;
    if (!Int(size) || size < 0 || static_cast<uint64_t>(size) > in_.size()) return false;
    t.assign(in_.substr(0, static_cast<size_t>(size)));
    in_.remove_prefix(static_cast<size_t>(size));
    return true;
  }
  bool AtEnd() const { return in_.empty(); }

 private:
  std::string_view in_;
};

bool WriteAll(int fd, std::string_view bytes, uint64_t offset) {
  while (!bytes.empty()) {
    const ssize_t n = ::pwrite(fd, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(n));
    offset += static_cast<uint64_t>(n);
  }
  return true;
}

bool ReadAll(int fd, char* into, size_t size, uint64_t offset) {
  while (size > 0) {
    const ssize_t n = ::pread(fd, into, size, static_cast<off_t>(offset));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    into += n;
    size -= static_cast<size_t>(n);
    offset += static_cast<uint64_t>(n);
  }
  return true;
}

}  // namespace

std::string SerializeItem(const HistoryItem& item) {
  Writer w;
  if (const auto* d = std::get_if<HistoryDescription>(&item)) {
    w.Byte('D');
    w.Text(d->key);
    w.Text(d->title);
    w.Int(d->version);
    w.Int(static_cast<int64_t>(d->columns.size()));
    for (const HistoryColumn& c : d->columns) {
      w.Text(c.caption);
      w.Int(c.registerIndex);
      w.Text(c.fieldType);
      w.Int(c.position);
      w.Text(c.displayCode);
      w.Int(c.widthTwips);
    }
  } else {
    const auto& r = std::get<EncodedRow>(item);
    w.Byte('R');
    w.Text(r.kind);
    w.Int(r.recordNumber);
    w.Text(r.PcTime());
    w.Text(r.Status());
    w.Byte(r.missed ? 1 : 0);
    w.Int(r.missed.value_or(0));
    w.Text(r.Display());
    w.Text(r.Raw());
    w.Text(r.Shown());
  }
  return w.Take();
}

bool DeserializeItem(std::string_view bytes, HistoryItem& item) {
  Reader r(bytes);
  char tag = 0;
  if (!r.Byte(tag)) return false;
  if (tag == 'D') {
    HistoryDescription d;
    int64_t columns = 0;
    if (!r.Text(d.key) || !r.Text(d.title) || !r.Int(d.version) || !r.Int(columns) || columns < 0 ||
        static_cast<uint64_t>(columns) > bytes.size()) {
      return false;
    }
    d.columns.resize(static_cast<size_t>(columns));
    for (HistoryColumn& c : d.columns) {
      if (!r.Text(c.caption) || !r.Int(c.registerIndex) || !r.Text(c.fieldType) ||
          !r.Int(c.position) || !r.Text(c.displayCode) || !r.Int(c.widthTwips)) {
        return false;
      }
    }
    item = std::move(d);
    return r.AtEnd();
  }
  if (tag != 'R') return false;
  EncodedRow row;
  std::string kind;
  std::string pcTime;
  std::string status;
  std::string display;
  std::string raw;
  std::string shown;
  char hasMissed = 0;
  int64_t missed = 0;
  if (!r.Text(kind) || !r.Int(row.recordNumber) || !r.Text(pcTime) || !r.Text(status) ||
      !r.Byte(hasMissed) || !r.Int(missed) || !r.Text(display) || !r.Text(raw) || !r.Text(shown)) {
    return false;
  }
  row.SetTexts(pcTime, status, display, raw, shown);
  row.kind = KnownKindText(kind);
  if (row.kind == nullptr) return false;
  if (hasMissed != 0) row.missed = missed;
  item = std::move(row);
  return r.AtEnd();
}

std::unique_ptr<Spool> Spool::Open(const std::string& directory, uint64_t limitBytes,
                                   std::string& error) {
  // O_TMPFILE gives a file that never had a name; where the file system lacks it, a unique
  // private name is unlinked as soon as it is made.
  int fd = ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (fd < 0) {
    std::string pattern = directory + "/vantrel-spool-XXXXXX";
    fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd >= 0) ::unlink(pattern.c_str());
  }
  if (fd < 0) {
    error = "cannot make a spool file in " + directory + ": " + std::strerror(errno);
    return nullptr;
  }
  return std::unique_ptr<Spool>(new Spool(fd, limitBytes));
}

Spool::~Spool() {
  ::close(fd_);
}

bool Spool::Compact() {
  // Moves the unread items to the start of the file, so that the bound counts what is held.
  const uint64_t held = end_ - begin_;
  std::string bytes(held, '\0');
  if (held > 0 && !ReadAll(fd_, bytes.data(), bytes.size(), begin_)) return false;
  if (!WriteAll(fd_, bytes, 0)) return false;
  begin_ = 0;
  end_ = held;
  return ::ftruncate(fd_, static_cast<off_t>(end_)) == 0;
}

bool Spool::Push(const HistoryItem& item, bool beyondLimit) {
  const std::string bytes = SerializeItem(item);
  if (!beyondLimit && Bytes() + bytes.size() > limit_) return false;
  if (end_ + bytes.size() > limit_ && begin_ > 0 && !Compact()) return false;
  if (!WriteAll(fd_, bytes, end_)) {
    // A partial item past end_ is harmless: end_ stays where it was.
    return false;
  }
  end_ += bytes.size();
  sizes_.push_back(static_cast<uint32_t>(bytes.size()));
  return true;
}

std::vector<HistoryItem> Spool::Front(size_t count) const {
  std::vector<HistoryItem> items;
  uint64_t offset = begin_;
  std::string bytes;
  for (size_t i = 0; i < count && i < sizes_.size(); ++i) {
    bytes.resize(sizes_[i]);
    HistoryItem item;
    // What this process wrote reads back; a failure here is a disk that lost data.
    if (!ReadAll(fd_, bytes.data(), bytes.size(), offset) || !DeserializeItem(bytes, item)) break;
    items.push_back(std::move(item));
    offset += sizes_[i];
  }
  return items;
}

void Spool::Pop(size_t count) {
  for (; count > 0 && !sizes_.empty(); --count) {
    begin_ += sizes_.front();
    sizes_.pop_front();
  }
  if (sizes_.empty()) {
    begin_ = end_ = 0;
    // Giving the space back is a courtesy: the next item is written at offset 0 anyway.
    const int released = ::ftruncate(fd_, 0);
    static_cast<void>(released);
  }
}

}  // namespace vantrel::history
