#include "acquisition/string_columns.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

constexpr int16_t kString = 6;

ColumnDef Column(int16_t reg, int16_t type, int32_t width) {
  ColumnDef c;
  c.Defined = -1;
  c.RegisterIndex = reg;
  c.FieldType = type;
  c.Width = width;
  return c;
}

TEST(StringColumns, ShortWidthsTakeTheLengthFromTheHeaderTable) {
  TraceDescription d;
  d.RecordLength = 2;
  d.StringIndex = "12";
  d.Columns[5] = Column(0, kString, 2);  // length table entry 2
  d.Columns[6] = Column(1, kString, 0);  // length table entry 0
  std::vector<int32_t> header(16, 0);
  header[12] = 0x00060104;  // entries 0..3: 4, 1, 6, 0
  ResolveStringColumns(d, header);
  EXPECT_EQ(d.Columns[5].StringLength, 6);
  EXPECT_EQ(d.Columns[5].ExtraRegisters, 1);
  EXPECT_EQ(d.Columns[6].StringLength, 4);
  EXPECT_EQ(d.Columns[6].ExtraRegisters, 0);
  EXPECT_EQ(d.Columns[6].RegisterIndex, 2);
  EXPECT_EQ(d.RecordLength, 3);
}

TEST(StringColumns, WithoutStringIndexShortStringsHaveNoLength) {
  TraceDescription d;
  d.RecordLength = 1;
  d.Columns[1] = Column(0, kString, 3);
  ResolveStringColumns(d, std::vector<int32_t>(16, 0x01010101));
  EXPECT_EQ(d.Columns[1].StringLength, 0);
  EXPECT_EQ(d.RecordLength, 1);
}

}  // namespace
}  // namespace vantrel
