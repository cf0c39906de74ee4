// The spool on disk: items come back as they went in, oldest first; the bound is kept and
// space that was read is used again; bytes that are not an item are refused.

#include "history/spool.h"

#include <gtest/gtest.h>

#include "support/temp_dir.h"

namespace vantrel::history {
namespace {

EncodedRow Row(int64_t number) {
  EncodedRow row;
  row.kind = KindText(number % 2 == 0 ? HistoryRowKind::Record : HistoryRowKind::Miss);
  row.recordNumber = number;
  if (number % 2 != 0) row.missed = number * 1000;
  row.SetTexts("2026-11-23 09:00:00.250", "Miss 3", "[\"a\\tb\", 1.5]", "[3, 15]",
               std::string_view("a\tb\0c", 5));
  return row;
}

HistoryDescription Description() {
  HistoryDescription d;
  d.key = "PMP1";
  d.title = "Pump \xE9station";
  d.version = -7;
  d.columns = {{"Pump state", 0, "Byte", 1, "s", 900}, {"", -3, "Strg", 32767, "", -1}};
  return d;
}

// Every field of a description, to compare two.
std::string Fields(const HistoryDescription& d) {
  std::string text = d.key + "|" + d.title + "|" + std::to_string(d.version);
  for (const HistoryColumn& c : d.columns) {
    text += "|" + c.caption + " " + std::to_string(c.registerIndex) + " " + c.fieldType + " " +
            std::to_string(c.position) + " " + c.displayCode + " " + std::to_string(c.widthTwips);
  }
  return text;
}

TEST(Spool, ItemsComeBackUnchangedOldestFirstWithinItsBound) {
  testing::TempDir dir;
  std::string error;
  const uint64_t itemBytes = SerializeItem(Row(2)).size();
  auto spool = Spool::Open(dir.Path().string(), itemBytes * 10, error);
  ASSERT_TRUE(spool) << error;
  for (int n = 0; n < 10; ++n)
    ASSERT_TRUE(spool->Push(Row(2 * n)));
  EXPECT_FALSE(spool->Push(Row(100))) << "an eleventh item passed the bound";
  EXPECT_EQ(spool->Items(), 10u);
  // The file has no name: nothing is left in the directory.
  EXPECT_TRUE(std::filesystem::is_empty(dir.Path()));
  auto front = spool->Front(6);
  ASSERT_EQ(front.size(), 6u);
  EXPECT_EQ(std::get<EncodedRow>(front[0]), Row(0));
  EXPECT_EQ(std::get<EncodedRow>(front[5]), Row(10));
  spool->Pop(6);
  // Six items were read: their space takes six new ones, and the order holds.
  for (int n = 10; n < 16; ++n)
    EXPECT_TRUE(spool->Push(Row(2 * n))) << n;
  EXPECT_FALSE(spool->Push(Row(100)));
  // A description may pass the bound: losing one would put later rows under the wrong one.
  EXPECT_TRUE(spool->Push(Description(), true));
  const auto items = spool->Front(20);
  ASSERT_EQ(items.size(), 11u);
  for (int i = 0; i < 10; ++i)
    EXPECT_EQ(std::get<EncodedRow>(items[static_cast<size_t>(i)]), Row(12 + 2 * i)) << i;
  EXPECT_EQ(Fields(std::get<HistoryDescription>(items[10])), Fields(Description()));
  spool->Pop(20);
  EXPECT_TRUE(spool->Empty());
  EXPECT_EQ(spool->Bytes(), 0u);
}

TEST(Spool, BytesThatAreNotAnItemAreRefused) {
  HistoryItem item;
  const std::string row = SerializeItem(Row(3));
  for (size_t cut = 0; cut < row.size(); cut += 7)
    EXPECT_FALSE(DeserializeItem(std::string_view(row).substr(0, cut), item)) << cut;
  EXPECT_FALSE(DeserializeItem(row + "x", item));
  std::string unknownKind = row;
  unknownKind[1 + 8] = 'X';  // the first letter of "miss"
  EXPECT_FALSE(DeserializeItem(unknownKind, item));
  ASSERT_TRUE(DeserializeItem(row, item));
  const auto& back = std::get<EncodedRow>(item);
  EXPECT_EQ(back, Row(3));
  EXPECT_EQ(back.Display(), "[\"a\\tb\", 1.5]");
  EXPECT_EQ(back.Shown(), std::string_view("a\tb\0c", 5));
  std::string error;
  EXPECT_FALSE(Spool::Open("/nonexistent/spool", 100, error));
  EXPECT_NE(error.find("/nonexistent/spool"), std::string::npos);
}

}  // namespace
}  // namespace vantrel::history
