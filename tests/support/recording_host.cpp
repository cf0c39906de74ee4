#include "support/recording_host.h"

#include <utility>

namespace vantrel::testing {

namespace {

// `count` words from `first` on; a word never written reads 0.
std::vector<int32_t> Words(const std::map<int32_t, int32_t>& words, int32_t first, int32_t count) {
  std::vector<int32_t> out;
  for (int32_t i = first; i < first + count; ++i) {
    const auto it = words.find(i);
    out.push_back(it == words.end() ? 0 : it->second);
  }
  return out;
}

}  // namespace

std::vector<int32_t> RegisterImage::Read(int32_t first, int32_t count) const {
  return Words(registers, first, count);
}

std::vector<int32_t> RegisterImage::ReadDB(int32_t block, int32_t offset, int32_t count) const {
  static const std::map<int32_t, int32_t> kUnwritten;
  const auto db = dataBlocks.find(block);
  return Words(db == dataBlocks.end() ? kUnwritten : db->second, offset, count);
}

void RecordingHost::Deliver(std::vector<int32_t> block) {
  if (answer == Answer::Inside && control != nullptr) {
    control->SetDataBlock(block);
  } else if (answer == Answer::Later) {
    pending_.push_back(std::move(block));
  }
}

int RecordingHost::AnswerPending() {
  const auto blocks = std::exchange(pending_, {});
  for (const auto& block : blocks)
    control->SetDataBlock(block);
  return static_cast<int>(blocks.size());
}

std::vector<RecordedEvent> RecordingHost::Named(const std::string& name) const {
  std::vector<RecordedEvent> out;
  for (const auto& e : events) {
    if (e.name == name) out.push_back(e);
  }
  return out;
}

std::vector<int16_t> RecordingHost::Statuses() const {
  std::vector<int16_t> out;
  for (const auto& e : Named("Status"))
    out.push_back(static_cast<int16_t>(e.args[0]));
  return out;
}

std::vector<std::string> RecordingHost::Errors() const {
  std::vector<std::string> out;
  for (const auto& e : Named("ModulError"))
    out.push_back(std::to_string(e.args[0]) + ":" + e.text);
  return out;
}

void ControlFixture::Create(Container* container) {
  control.reset();
  host.events.clear();
  control.emplace(host, ControlServices{loop, loop.Clock(), prompts, container});
  host.control = &*control;
}

int32_t Packed(const char (&text)[5]) {
  uint32_t word = 0;
  for (int i = 0; i < 4; ++i)
    word = (word << 8) | static_cast<unsigned char>(text[i]);
  return static_cast<int32_t>(word);
}

}  // namespace vantrel::testing
