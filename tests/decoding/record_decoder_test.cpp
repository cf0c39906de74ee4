// One record to its cells: every field type under every display code, the texts that carry
// over between columns, strings over several registers, value lists, value texts per
// application, symbol names, time stamps, what ends a record, and the typed values and
// readings each cell is made with.

#include "decoding/record_decoder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "acquisition/string_columns.h"
#include "decoding/cell_reading.h"
#include "support/recording_host.h"
#include "support/trace_table.h"
#include "vantrel/manual_clock.h"

namespace vantrel {
namespace {

using testing::Packed;

constexpr int16_t kBit = 1;
constexpr int16_t kNible = 2;
constexpr int16_t kByte = 3;
constexpr int16_t kWord = 4;
constexpr int16_t kLong = 5;
constexpr int16_t kStrg = 6;

struct DecoderFixture {
  TraceDescription description;
  cSymbol symbols;
  cValues valueTexts;
  ManualClock clock;
  char separator = '.';
  DecodingContext context;
  DecodedRecord record;

  ColumnDef& Define(int number, int16_t type, int16_t reg, int16_t position,
                    const std::string& caption, const std::string& code) {
    return testing::DefineColumn(description, number, type, reg, position, caption, code);
  }

  std::optional<RecordDecoder> decoder;  // one for every record, as the control keeps it

  bool Decode(const std::vector<int32_t>& registers, size_t first = 0) {
    if (!decoder)
      decoder.emplace(DecodingTables{description, symbols, valueTexts, clock, separator});
    return decoder->Decode(registers, first, context, record);
  }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (size_t i = 0; i < record.cells.Size(); ++i)
      texts.emplace_back(record.cells.Text(i));
    return texts;
  }
  std::vector<int64_t> Raw() const {
    std::vector<int64_t> raw;
    for (size_t i = 0; i < record.cells.Size(); ++i)
      raw.push_back(record.cells.Raw(i));
    return raw;
  }
  std::vector<std::string> Comments() const {
    std::vector<std::string> comments;
    for (size_t i = 0; i < record.cells.Size(); ++i)
      comments.emplace_back(record.cells.Comment(i));
    return comments;
  }
};

// Every field type under every display code: the text shown and the raw value kept.
TEST(DisplayCodes, EachTypeAndCodeGivesItsTextAndRawValue) {
  struct Case {
    int16_t type;
    int16_t position;
    const char* code;
    int32_t reg;
    const char* display;
    const char* raw;
  };
  const std::vector<Case> cases = {
      {kBit, 31, "d", INT32_MIN, "1", "1"},
      {kBit, 0, "d", 2, "0", "0"},
      {kBit, 30, "b", -1, "1", "1"},
      // A negative position (the loader only bounds it above) reads as set.
      {kBit, -2, "d", 0, "1", "1"},
      // Any code but the lookups shows the digit.
      {kBit, 5, "x", 0x20, "1", "1"},
      {kNible, 3, "d", 0xF000, " 15", "15"},
      {kNible, 3, "2d", 0xF000, "0.15", "15"},
      {kNible, 3, "sd", 0xF000, " 15", "15"},  // a nibble has no sign
      {kNible, 3, "h", 0xF000, "F", "15"},
      {kNible, 3, "a", 0xF000, "\x7F", "15"},
      {kNible, 0, "b", 0x5, "0101", "5"},
      {kNible, 3, "p", 0xF000, " ", "15"},
      {kNible, 0, "p", 0x7, "7", "7"},
      {kByte, 1, "d", 0xFE00, " 254", "254"},
      {kByte, 0, "sd", 128, "-128", "-128"},
      {kByte, 0, "Sd", 200, "-56", "-56"},  // the marker is found in any case
      {kByte, 0, "3d", 254, "0.254", "254"},
      {kByte, 0, "s2d", 254, "-2", "-2"},  // no leading number: no decimals
      {kByte, 0, "h", 7, "07", "7"},
      {kByte, 0, "a", 0x41, "A", "65"},
      {kByte, 1, "a", 0xFE00, "\xFE", "254"},
      {kByte, 0, "b", 7, "00000111", "7"},
      {kByte, 1, "p", 0xFE00, " +", "254"},
      {kByte, 0, "p", 0xCD, "W,", "205"},
      {kWord, 1, "d", -65536, " 65535", "65535"},
      {kWord, 0, "sd", 32768, "-32768", "-32768"},
      {kWord, 0, "2d", 1234, "12.34", "1234"},
      {kWord, 0, "2d", 5, "0.05", "5"},
      {kWord, 0, "2sd", 65535, "-0.01", "-1"},
      {kWord, 0, "h", 0xAB, "00AB", "171"},
      {kWord, 0, "a", 0x4142, "AB", "16706"},
      {kWord, 0, "b", 5, "00000000 00000101", "5"},
      {kWord, 0, "p", 0x1AB0, "1*#0", "6832"},
      {kWord, 0, "e", 0x0A05, "1/2/5", "2565"},
      {kWord, 1, "e", -1, "15/7/255", "65535"},
      // Longs are always signed under "d", with or without the marker.
      {kLong, 0, "d", -1, "-1", "-1"},
      {kLong, 0, "sd", -1, "-1", "-1"},
      {kLong, 0, "d", INT32_MAX, " 2147483647", "2147483647"},
      {kLong, 0, "2d", 0x00012345, "745.65", "74565"},
      {kLong, 0, "2d", -5, "-0.05", "-5"},
      // "h": eight digits; the raw text is word 1.
      {kLong, 0, "h", -1, "FFFFFFFF", "65535"},
      {kLong, 0, "h", 0x0ABC0001, "0ABC0001", "2748"},
      {kLong, 0, "a", 0x41420043,
       "AB\x7F"
       "C",
       "1094844483"},
      {kLong, 0, "2a", 0x41420043,
       "\x7F"
       "C",
       "1094844483"},
      {kLong, 0, "sa", -1, "\xFF\xFF\xFF\xFF", "-1"},
      // "b" and "p": the raw text is word 0, the last word read.
      {kLong, 0, "b", 0x00050003, "00000000 00000101 00000000 00000011", "3"},
      {kLong, 0, "p", 0x1AB0F00C, "1*#0 00W", "61452"},
      {kLong, 0, "p", 0x00120034, "00120034", "52"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string("type ") + std::to_string(c.type) + " code " + c.code + " position " +
                 std::to_string(c.position) + " register " + std::to_string(c.reg));
    DecoderFixture f;
    f.Define(0, c.type, 0, c.position, "C", c.code);
    ASSERT_TRUE(f.Decode({c.reg}));
    EXPECT_TRUE(f.record.readerErrors.empty());
    EXPECT_EQ(f.record.cells.Text(0), c.display);
    EXPECT_EQ(std::to_string(f.record.cells.Raw(0)), c.raw);
  }
}

TEST(DisplayCodes, DecimalsUseTheHostsDecimalSeparator) {
  DecoderFixture f;
  f.separator = ',';
  f.Define(0, kWord, 0, 0, "W", "2d");
  f.Define(1, kLong, 0, 0, "L", "2d");
  f.Define(2, kWord, 0, 0, "Plain", "d");
  ASSERT_TRUE(f.Decode({1234}));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"12,34", "12,34", " 1234"}));
  EXPECT_EQ(f.record.cells.Number(0), 12.34);
}

TEST(CarriedTexts, AnUnknownCodeRepeatsThePreviousColumnsText) {
  DecoderFixture f;
  f.Define(0, kWord, 0, 0, "A", "d");
  f.Define(1, kWord, 0, 1, "B", "x");
  f.Define(2, kNible, 0, 0, "C", "e");  // "e" is for words only
  f.Define(3, kByte, 0, 0, "D", "e");
  f.Define(4, kLong, 0, 0, "E", "gx");  // a "g" pair that is no symbol format
  f.Define(5, kStrg, 0, 0, "F", "d");   // only "a" reads a string
  ASSERT_TRUE(f.Decode({0x00020007}));
  EXPECT_EQ(f.Texts(), std::vector<std::string>(6, " 7"));
  // Each column sets its raw value; a string's is the last register it read.
  EXPECT_EQ(f.Raw(), (std::vector<int64_t>{7, 2, 7, 7, 131079, 131079}));
  EXPECT_EQ(f.Comments(), std::vector<std::string>(6, ""));
  // A repeated text is read again as what it shows.
  EXPECT_EQ(f.record.cells.Number(1), 7.0);
}

TEST(CarriedTexts, ColumnsGoInNumberOrderAndEveryRecordStartsEmpty) {
  DecoderFixture f;
  f.Define(0, kWord, 0, 0, "First", "x");
  f.Define(7, kWord, 0, 0, "Late", "x");
  f.Define(2, kWord, 1, 0, "Early", "d");
  ASSERT_TRUE(f.Decode({10, 20}));
  // Column 7 repeats column 2, which came before it although it was defined after.
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"", " 20", " 20"}));
  EXPECT_EQ(f.Raw(), (std::vector<int64_t>{10, 20, 10}));
  ASSERT_TRUE(f.Decode({11, 21}));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"", " 21", " 21"}));
  EXPECT_EQ(f.record.cells.Number(2), 21.0);  // the carried text is read anew
}

TEST(StringDisplay, TenCharactersMoveTheColumnsAfterThemByTwoRegisters) {
  DecoderFixture f;
  f.description.RecordLength = 3;
  f.Define(1, kWord, 0, 0, "N", "d");
  f.Define(2, kStrg, 1, 0, "Name", "a").Width = 10;
  f.Define(3, kWord, 2, 0, "After", "d");
  ResolveStringColumns(f.description, {});
  ASSERT_EQ(f.description.RecordLength, 5);
  const std::vector<int32_t> records = {
      7, Packed("ABCD"), Packed("EFGH"), Packed("IJKL"), 9,
      8, Packed("MNOP"), Packed("QRST"), Packed("UVWX"), 11,
  };
  ASSERT_TRUE(f.Decode(records, 0));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{" 7", "ABCDEFGHIJ", " 9"}));
  EXPECT_EQ(f.Raw(), (std::vector<int64_t>{7, Packed("IJKL"), 9}));
  ASSERT_TRUE(f.Decode(records, 5));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{" 8", "MNOPQRSTUV", " 11"}));
}

TEST(ValueLists, EveryFieldTypeLooksItsValueUp) {
  DecoderFixture f;
  const std::vector<int32_t> values = {1, 2, 2, -1, 254};
  const std::vector<std::string> texts = {"Off", "On", "Twice", "Minus", "Near top"};
  auto define = [&](int n, int16_t type, int16_t position, const std::string& code) {
    ColumnDef& c = f.Define(n, type, 0, position, "C" + std::to_string(n), code);
    c.Values = values;
    c.ValueTexts = texts;
  };
  define(0, kBit, 1, "s");    // bit 1: 1
  define(1, kNible, 0, "s");  // nibble 0: 2
  define(2, kByte, 1, "s");   // byte 1: 254, no sign step outside "d"
  define(3, kWord, 1, "S");   // word 1: 65535, no entry
  define(4, kLong, 0, "s");   // the marker makes the register signed
  define(5, kLong, 0, "x");   // carries the text before it
  define(6, kByte, 0, "S");   // byte 0: 2
  ASSERT_TRUE(f.Decode({static_cast<int32_t>(0xFFFFFE02u)}));
  EXPECT_EQ(f.Texts(),
            (std::vector<std::string>{"Off", "On", "Near top", "65535", "<-510>", "<-510>", "On"}));
  EXPECT_EQ(f.Raw(), (std::vector<int64_t>{1, 2, 254, 65535, -510, -510, 2}));
  ASSERT_TRUE(f.Decode({-1}));
  EXPECT_EQ(f.Texts(),
            (std::vector<std::string>{"Off", "<15>", "<255>", "65535", "Minus", "Minus", "255"}));
}

struct ValueTextFixture : DecoderFixture {
  ValueTextFixture() {
    valueTexts.Add("0", "Mode", 2, "Auto", "auto mode");
    valueTexts.Add("3", "Application", 0, "Pump 3", "main");
    valueTexts.Add("3", "Mode", 2, "Manual", "by hand");
  }
};

TEST(ApplicationTexts, AnApplicationColumnSelectsTheTextsOfLaterColumnsAndRecords) {
  ValueTextFixture f;
  f.Define(0, kByte, 0, 0, "Mode", "f");
  f.Define(1, kByte, 0, 1, "application", "f");
  f.Define(2, kByte, 0, 0, "Mode", "F");
  ASSERT_TRUE(f.Decode({0x0302}));
  // Column 0 still uses application 0; column 1 switches to 3 for column 2.
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"Auto", "Pump 3", "Manual"}));
  EXPECT_EQ(f.Comments(), (std::vector<std::string>{"auto mode", "main", "by hand"}));
  EXPECT_EQ(f.Raw(), (std::vector<int64_t>{2, 3, 2}));
  EXPECT_EQ(f.context.currentApplication, 3);
  ASSERT_TRUE(f.Decode({0x0402}));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"Manual", "<4>", "2"}));
  EXPECT_EQ(f.Comments(), (std::vector<std::string>{"by hand", "", ""}));
  EXPECT_EQ(f.context.currentApplication, 4);
  f.Define(2, kByte, 0, 0, "APPLICATION", "F");  // a renamed column looks other keys up
  ASSERT_TRUE(f.Decode({0x0302}));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"<2>", "Pump 3", "2"}));
  EXPECT_EQ(f.context.currentApplication, 2);
}

TEST(ApplicationTexts, LongsLookUpTheirValueUnsignedWithoutTheMarker) {
  ValueTextFixture f;
  f.Define(0, kLong, 0, 0, "Big", "f");
  f.Define(1, kLong, 0, 0, "Big", "F");
  ASSERT_TRUE(f.Decode({-1}));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"<4294967295>", "4294967295"}));
  EXPECT_EQ(f.Raw(), (std::vector<int64_t>{-1, -1}));
  // An application beyond 32 bits ends the record.
  f.Define(0, kLong, 0, 0, "Application", "f");
  EXPECT_FALSE(f.Decode({-1}));
  EXPECT_TRUE(f.record.failed);
  EXPECT_EQ(f.record.failureMessage, "Overflow");
}

struct SymbolFixture : DecoderFixture {
  SymbolFixture() {
    symbols.Add("R", "Motor1", " speed set point", 100);
    symbols.Add("O", "Pumps.V1", "", 33);
    Define(0, kLong, 0, 0, "Addr", "ga");
    Define(1, kLong, 0, 0, "Value", "gv");
    Define(2, kLong, 0, 0, "Name", "gs");
    Define(3, kLong, 0, 0, "Note", "gc");
  }
  std::vector<std::string> TextsOf(int32_t reg) {
    EXPECT_TRUE(Decode({reg}));
    return Texts();
  }
};

TEST(SymbolFormats, AnAddressAbove32767IsReportedAndTheRecordStays) {
  SymbolFixture f;
  EXPECT_EQ(f.TextsOf(0x00058000), (std::vector<std::string>{"", "", "<Not found>", "<No found>"}));
  EXPECT_EQ(f.record.readerErrors, std::vector<std::string>(4, "Error in ReadMedia function."));
  EXPECT_FALSE(f.record.failed);
}

TEST(SymbolFormats, ErrorsAfterASymbolColumnDoNotLoseTheRecord) {
  SymbolFixture f;
  f.Define(4, kWord, 9, 0, "Outside", "d");  // register 9 is not in the block
  f.Define(5, kWord, 0, 0, "Inside", "d");
  f.Define(6, kLong, 1, 0, "Application", "f");  // 4294967295 does not fit an application id
  f.Define(7, kWord, 1, 0, "Last", "d");
  ASSERT_TRUE(f.Decode({0x00050064, -1}));
  const std::vector<std::string> texts = f.Texts();
  EXPECT_EQ(texts.at(2), "Motor1");
  EXPECT_EQ(texts.at(5), " 100");
  EXPECT_EQ(texts.at(7), " 65535");
  EXPECT_EQ(f.context.currentApplication, 0);
  EXPECT_TRUE(f.record.passesOverFailures);
}

TEST(SymbolFormats, ErrorsBeforeTheFirstSymbolColumnStillEndTheRecord) {
  DecoderFixture f;
  f.Define(0, kWord, 9, 0, "Outside", "d");
  f.Define(1, kLong, 0, 0, "Name", "gs");
  EXPECT_FALSE(f.Decode({0x00050064}));
  EXPECT_EQ(f.record.failureMessage, "Subscript out of range");
}

TEST(RecordFailures, ReaderErrorsAreCollectedAndTheRecordIsDecoded) {
  DecoderFixture f;
  f.Define(0, kByte, 0, 5, "Bad", "d");  // byte 5 is outside the byte table
  f.Define(1, kWord, 0, 0, "Good", "d");
  ASSERT_TRUE(f.Decode({9}));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{" 0", " 9"}));
  EXPECT_EQ(f.record.readerErrors, std::vector<std::string>{"Error in ReadByte function."});
  // The next record starts without them, and follows the changed description.
  f.Define(0, kByte, 0, 0, "Fixed", "h");
  ASSERT_TRUE(f.Decode({9}));
  EXPECT_TRUE(f.record.readerErrors.empty());
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{"09", " 9"}));
}

TEST(RecordFailures, RecordsPastTheEndOfAShortBlockFailAlike) {
  DecoderFixture f;
  f.Define(0, kWord, 0, 0, "A", "d");
  f.Define(1, kWord, 1, 0, "B", "d");
  const std::vector<int32_t> block = {7, 8, 9};  // one record of two, and a part of the next
  ASSERT_TRUE(f.Decode(block, 0));
  EXPECT_EQ(f.Texts(), (std::vector<std::string>{" 7", " 8"}));
  for (const size_t first : {size_t{2}, size_t{4}}) {  // fails at its second column; past the end
    EXPECT_FALSE(f.Decode(block, first));
    EXPECT_EQ(f.record.failureNumber, 9);
    EXPECT_EQ(f.record.failureMessage, "Subscript out of range");
  }
  // So does a string reaching beyond the block.
  ColumnDef& c = f.Define(2, kStrg, 1, 0, "S", "a");
  c.StringLength = 8;
  c.ExtraRegisters = 1;
  EXPECT_FALSE(f.Decode({7, Packed("ABCD")}));
  EXPECT_EQ(f.record.failureMessage, "Subscript out of range");
}

// The typed value each rendering gives, and how the export and the graph read the cell.
// The text, the typed value each rendering gives, and how the export and the graph read it.
TEST(TypedCells, EachRenderingGivesItsValueAndReadings) {
  struct TypedCase {
    int16_t type;
    const char* code;
    int32_t reg;
    const char* text;
    ValueKind kind;
    int64_t integer;
    std::optional<double> number;
    double plot;
    std::optional<double> serial;
  };
  // 15 November 2026, 14:30:25 as a date serial; a time alone has no date part.
  const double time = (14 * 3600 + 30 * 60 + 25) / 86400.0;
  const double stamp = 46341.0 + time;
  const std::vector<TypedCase> cases = {
      {kWord, "d", 7, " 7", ValueKind::Integer, 7, 7.0, 7.0, std::nullopt},
      {kWord, "2d", 1234, "12.34", ValueKind::Decimal, 1234, 12.34, 12.34, std::nullopt},
      {kWord, "2sd", 65535, "-0.01", ValueKind::Decimal, -1, -0.01, -0.01, std::nullopt},
      {kBit, "d", 1, "1", ValueKind::Integer, 1, 1.0, 1.0, std::nullopt},
      // A hexadecimal text of digits reads as a decimal number...
      {kWord, "h", 0x0012, "0012", ValueKind::Text, 0, 12.0, 12.0, std::nullopt},
      // ... one with a "D" is a number with an exponent, which the graph reads without it.
      {kWord, "h", 0x12D4, "12D4", ValueKind::Text, 0, 120000.0, 12.0, std::nullopt},
      {kWord, "h", 0x00AB, "00AB", ValueKind::Text, 0, std::nullopt, 0.0, std::nullopt},
      // Stamps show the time, the date or both ("t"); the letter is found in any case.
      {kLong, "th", 1115143025, "14:30:25", ValueKind::Timestamp, 0, std::nullopt, 0.0, time},
      {kLong, "tH", 1115143025, "14:30:25", ValueKind::Timestamp, 0, std::nullopt, 0.0, time},
      {kLong, "t", 1115143025, "15/11/26 14:30:25", ValueKind::Timestamp, 0, std::nullopt, 0.0,
       stamp},
      {kLong, "td", -5, "Invalid time", ValueKind::Text, 0, std::nullopt, 0.0, std::nullopt},
      // "tx" is exported as text, but the stamp is still a time.
      {kLong, "tx", 1115143025, "15/11/26 14:30:25", ValueKind::Timestamp, 0, std::nullopt, 0.0,
       std::nullopt},
      // A column without a field type decodes nothing.
      {9, "d", 5, "", ValueKind::None, 0, std::nullopt, 0.0, std::nullopt},
  };
  for (const TypedCase& c : cases) {
    SCOPED_TRACE(std::string("code ") + c.code + " register " + std::to_string(c.reg));
    DecoderFixture f;
    f.Define(0, c.type, 0, 0, "C", c.code);
    ASSERT_TRUE(f.Decode({c.reg}));
    const CellValue value = f.record.cells.Value(0);
    EXPECT_EQ(f.record.cells.Text(0), c.text);
    EXPECT_EQ(value.kind, c.kind);
    if (c.kind == ValueKind::Integer || c.kind == ValueKind::Decimal) {
      EXPECT_EQ(value.integer, c.integer);
    }
    EXPECT_EQ(f.record.cells.Number(0), c.number);
    EXPECT_EQ(f.record.cells.Plot(0), c.plot);
    EXPECT_EQ(f.record.cells.Serial(0).has_value(), c.serial.has_value());
    if (c.serial) {
      EXPECT_DOUBLE_EQ(value.real, *c.serial);
      EXPECT_EQ(f.record.cells.Serial(0), value.real);
    }
  }
}

// The decoder reads its own decimal texts without parsing them; that must give exactly what
// reading the text gives, or exports and graphs would change.
TEST(TypedCells, DecimalReadingsAreThoseOfTheirTexts) {
  const std::vector<int64_t> values = {
      0,          1,         -1,        5,          -5,
      99,         1234,      -1234,     65535,      -32768,
      2147483647, INT32_MIN, 100000001, -987654321, 4503599627370495};
  for (const char separator : {'.', ','}) {
    for (int decimals = 0; decimals <= 23; ++decimals) {
      for (const int64_t value : values) {
        const std::string text = DecimalText(value, decimals, separator);
        SCOPED_TRACE(text);
        const CellReading fast = ReadDecimalCell(text, value, decimals, separator, false);
        const CellReading read = ReadCellText(text, separator, false);
        EXPECT_EQ(fast.number, read.number);
        EXPECT_EQ(fast.plot, read.plot);
      }
    }
  }
}

TEST(TypedCells, TheGraphReadsNumbersAsItAlwaysHas) {
  struct ReadCase {
    const char* text;
    std::optional<double> number;
    double plot;
  };
  for (const ReadCase& c : std::vector<ReadCase>{
           {" 12", 12.0, 12.0},
           {"&H1F", 31.0, 0.0},
           {"1D3", 1000.0, 1.0},
           {"1E3", 1000.0, 1000.0},
           {"12 3", std::nullopt, 0.0},
           {"", std::nullopt, 0.0},
           {"----------------", std::nullopt, 0.0},
       }) {
    SCOPED_TRACE(c.text);
    const CellReading reading = ReadCellText(c.text, '.', false);
    EXPECT_EQ(reading.number, c.number);
    EXPECT_EQ(reading.plot, c.plot);
  }
}

}  // namespace
}  // namespace vantrel
