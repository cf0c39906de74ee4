// The spool on disk: items come back as they went in, oldest first; the bound is kept and
// space that was read is used again; bytes that are not an item are refused.

#include "history/spool.h"

#include <gtest/gtest.h>

#include "history/history_scenarios.h"
#include "support/temp_dir.h"

namespace vantrel::history {
namespace {

// Even numbers are records, odd ones Miss rows; texts with a tab and a zero byte.
EncodedRow Item(int64_t number) {
  EncodedRow row;
  row.kind = KindText(number % 2 == 0 ? HistoryRowKind::Record : HistoryRowKind::Miss);
  row.recordNumber = number;
  if (number % 2 != 0) row.missed = number * 1000;
  row.SetTexts("2026-11-23 09:00:00.250", "Miss 3", "[\"a\\tb\", 1.5]", "[3, 15]",
               std::string_view("a\tb\0c", 5));
  return row;
}

TEST(Spool, ItemsComeBackUnchangedOldestFirstWithinItsBound) {
  testing::TempDir dir;
  std::string error;
  auto spool = Spool::Open(dir.Path().string(), SerializeItem(Item(2)).size() * 10, error);
  ASSERT_TRUE(spool) << error;
  for (int n = 0; n < 10; ++n)
    ASSERT_TRUE(spool->Push(Item(2 * n)));
  EXPECT_FALSE(spool->Push(Item(100))) << "an eleventh item passed the bound";
  // The file has no name: nothing is left in the directory.
  EXPECT_TRUE(std::filesystem::is_empty(dir.Path()));
  EXPECT_EQ(spool->Front(6).size(), 6u);
  spool->Pop(6);
  // Six items were read: their space takes six new ones, and the order holds.
  for (int n = 10; n < 16; ++n)
    EXPECT_TRUE(spool->Push(Item(2 * n))) << n;
  EXPECT_FALSE(spool->Push(Item(100)));
  // A description may pass the bound: losing one would put later rows under the wrong one.
  HistoryDescription description = Pumps(true);
  description.version = -7;
  description.columns.push_back({"", -3, "Strg", 32767, "", -1});
  EXPECT_TRUE(spool->Push(description, true));
  const auto items = spool->Front(20);
  ASSERT_EQ(items.size(), 11u);
  for (int i = 0; i < 10; ++i)
    EXPECT_EQ(std::get<EncodedRow>(items[static_cast<size_t>(i)]), Item(12 + 2 * i)) << i;
  EXPECT_EQ(DescriptionText(std::get<HistoryDescription>(items[10])), DescriptionText(description));
  spool->Pop(20);
  EXPECT_TRUE(spool->Empty());
  EXPECT_EQ(spool->Bytes(), 0u);
}

// A Miss row and its missed count come back; bytes that are not an item (cut short, one byte
// too many, a kind that is none) are refused.
TEST(Spool, BytesThatAreNotAnItemAreRefused) {
  HistoryItem item;
  const std::string row = SerializeItem(Item(3));
  ASSERT_TRUE(DeserializeItem(row, item));
  EXPECT_EQ(std::get<EncodedRow>(item), Item(3));
  std::vector<std::string> bad = {row + "x", row};
  bad[1][1 + 8] = 'X';  // the first letter of "miss"
  for (size_t cut = 0; cut < row.size(); cut += 7)
    bad.push_back(row.substr(0, cut));
  for (const std::string& bytes : bad)
    EXPECT_FALSE(DeserializeItem(bytes, item)) << bytes.size() << " bytes";
}

}  // namespace
}  // namespace vantrel::history
