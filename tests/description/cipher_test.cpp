#include "description/cipher.h"

#include <gtest/gtest.h>

#include <string>

#include "description/description_files.h"

namespace vantrel {
namespace {

// The key spelled out here on purpose, so that a changed key in the code is noticed.
const std::string kKey = "QzPlume_Cloak-4";

char Shift(char c, size_t keyPosition) {
  return static_cast<char>(c + kKey[keyPosition]);
}

TEST(Cipher, SevenBitTextRoundTripsWithCrLfLineEnds) {
  std::string printable;
  for (int c = 32; c < 127; ++c)
    printable += static_cast<char>(c);
  const std::string plain = "[VANTREL]\nApp=x\n\n" + printable + "\n\tTabbed=1\r[S]\rk=v";
  const std::string enciphered = EncipherText(plain);
  EXPECT_EQ(enciphered.find("App=x"), std::string::npos);
  EXPECT_EQ(DecipherText(enciphered),
            "[VANTREL]\r\nApp=x\r\n\r\n" + printable + "\r\n\tTabbed=1\r\n[S]\r\nk=v\r\n");
}

TEST(Cipher, CharactersFrom128DecipherAsCode127) {
  const std::string enciphered = EncipherText("[S]\n\xE9=1\n");
  EXPECT_EQ(enciphered, std::string("[S]\r\n") + static_cast<char>('Q' + 127) + Shift('=', 1) +
                            Shift('1', 2) + "\r\n");
  EXPECT_EQ(DecipherText(enciphered), "[S]\r\n\x7F=1\r\n");
}

TEST(Cipher, KeyPositionMovesPerCharacterAndPerLine) {
  std::string plain = "[S]\n";
  std::string expected = "[S]\r\n";
  for (size_t line = 0; line < 16; ++line) {
    plain += "aa\n\n";  // empty lines do not count
    expected += std::string{Shift('a', line % 15), Shift('a', (line + 1) % 15)} + "\r\n\r\n";
  }
  EXPECT_EQ(EncipherText(plain), expected);

  // A header line starts the key again; within a line the position wraps after 15.
  const std::string wrapped = EncipherText("x\n[T]\n" + std::string(16, 'b'));
  std::string bs;
  for (size_t i = 0; i < 16; ++i)
    bs += Shift('b', i % 15);
  EXPECT_EQ(wrapped, std::string{Shift('x', 0)} + "\r\n[T]\r\n" + bs + "\r\n");
}

TEST(Cipher, InfoSectionsStayPlainAndDoNotMoveTheKey) {
  const std::string enciphered =
      EncipherText("[INFO]\nfree text\n[MYINFO]\nmore\n[info]\na\na\n[X]\na\n");
  EXPECT_EQ(enciphered, "[INFO]\r\nfree text\r\n[MYINFO]\r\nmore\r\n[info]\r\n" +
                            std::string{Shift('a', 0)} + "\r\n" + std::string{Shift('a', 1)} +
                            "\r\n[X]\r\n" + std::string{Shift('a', 0)} + "\r\n");
}

TEST(Cipher, CharacterBelowItsKeyCodeIsNoEncipheredFile) {
  std::string partial;
  EXPECT_EQ(DecipherText("[S]\r\n" + EncipherText("ok\n") + "A=1\r\n", &partial), std::nullopt);
  EXPECT_EQ(partial, "[S]\r\nok\r\n");
}

TEST(CipherFiles, EncryptWritesASiblingVtld) {
  testing::DescriptionFiles files;
  const std::string source = files.Write("plant.txt", "[S]\r\nk=v\r\n");
  EXPECT_EQ(EncryptDescription(source), "Cryptage successful !");
  EXPECT_EQ(testing::ReadBytes(files.Path("plant.vtld")), EncipherText("[S]\nk=v\n"));

  const std::string noDot = files.Write("plain", "k=v");
  EXPECT_EQ(EncryptDescription(noDot), "Cryptage successful !");
  EXPECT_TRUE(std::filesystem::exists(files.Path("plain.vtld")));

  EXPECT_EQ(EncryptDescription(files.Path("missing.vtl")), "Cannot open file ");
  EXPECT_FALSE(std::filesystem::exists(files.Path("missing.vtld")));
  std::filesystem::create_directory(files.Path("blocked.vtld"));  // destination cannot open
  EXPECT_EQ(EncryptDescription(files.Write("blocked.vtl", "k=v")), "Cannot open file ");
}

TEST(CipherFiles, DecryptRefusesOtherExtensionsAndPlainText) {
  testing::DescriptionFiles files;
  const std::string plain = "[VANTREL]\r\nKey=PMP1\r\n";
  for (const auto& [path, message] : std::vector<std::pair<std::string, std::string>>{
           {files.Write("trace.VTLD", EncipherText(plain)), "Bad source file extension !"},
           {files.Write("trace.vtl.bak", EncipherText(plain)), "Bad source file extension !"},
           {files.Write("plain.vtl", plain), "Incorrect file !"}}) {
    std::string error;
    EXPECT_EQ(DecryptDescription(path, error), std::nullopt) << path;
    EXPECT_EQ(error, message) << path;
  }
  std::string error;
  EXPECT_EQ(DecryptDescription(files.Write("ok.vtl", EncipherText(plain)), error), plain);
}

// The shipped enciphered example must stay the encipherment of its plain text.
TEST(CipherFiles, ShippedExampleDeciphersToItsPlainText) {
  const std::string examples = testing::ExamplesDirectory();
  std::string expected;  // deciphered lines end in CR LF
  for (char c : testing::ReadBytes(examples + "/PMP1_pumps.vtl")) {
    if (c == '\n' && (expected.empty() || expected.back() != '\r')) expected += '\r';
    expected += c;
  }
  std::string error;
  EXPECT_EQ(DecryptDescription(examples + "/PMP1_pumps.vtld", error), expected) << error;
}

}  // namespace
}  // namespace vantrel
