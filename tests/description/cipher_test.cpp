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
  EXPECT_NE(enciphered.find("[VANTREL]\r\n"), std::string::npos);
  EXPECT_EQ(enciphered.find("App=x"), std::string::npos);
  EXPECT_EQ(DecipherText(enciphered),
            "[VANTREL]\r\nApp=x\r\n\r\n" + printable + "\r\n\tTabbed=1\r\n[S]\r\nk=v\r\n");
}

TEST(Cipher, CharactersFrom128DecipherAsCode127) {
  const std::string enciphered = EncipherText("[S]\n\xE9=1\n");
  EXPECT_EQ(enciphered, std::string("[S]\r\n") + static_cast<char>('Q' + 127) + Shift('=', 1) +
                            Shift('1', 2) + "\r\n");
  EXPECT_EQ(DecipherText(enciphered), "[S]\r\n\x7F=1\r\n");
  // A code of 255 or more in an enciphered file stands for 255 less the key code.
  EXPECT_EQ(DecipherText("\xFF"), std::string(1, static_cast<char>(255 - 'Q')) + "\r\n");
}

TEST(Cipher, KeyPositionMovesPerCharacterAndPerLine) {
  std::string plain = "[S]\n";
  for (int line = 0; line < 16; ++line)
    plain += "aa\n\n";  // empty lines do not count
  const std::string enciphered = EncipherText(plain);
  std::string expected = "[S]\r\n";
  for (size_t line = 0; line < 16; ++line) {
    const size_t start = line % 15;
    expected += std::string{Shift('a', start), Shift('a', (start + 1) % 15)} + "\r\n\r\n";
  }
  EXPECT_EQ(enciphered, expected);

  // A header line starts the key again; within a line the position wraps after 15.
  const std::string wrapped = EncipherText("x\n[T]\n" + std::string(16, 'b'));
  EXPECT_EQ(wrapped.substr(0, 3), std::string{Shift('x', 0)} + "\r\n");
  EXPECT_EQ(static_cast<unsigned char>(wrapped[8]), static_cast<unsigned char>(Shift('b', 0)));
  EXPECT_EQ(static_cast<unsigned char>(wrapped[22]), static_cast<unsigned char>(Shift('b', 14)));
  EXPECT_EQ(static_cast<unsigned char>(wrapped[23]), static_cast<unsigned char>(Shift('b', 0)));
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

class CipherFiles : public ::testing::Test {
 protected:
  testing::DescriptionFiles files;
};

TEST_F(CipherFiles, EncryptWritesASiblingVtld) {
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

TEST_F(CipherFiles, DecryptChecksTheExtensionExactly) {
  const std::string plain = "[VANTREL]\nKey=PMP1\n";
  for (const char* name : {"trace.VTLD", "trace.vtl.bak"}) {
    const std::string source = files.WriteEnciphered(name, plain);
    std::string error;
    EXPECT_FALSE(DecryptDescription(source, files.Path("out"), error)) << name;
    EXPECT_EQ(error, "Bad source file extension !") << name;
  }
}

TEST_F(CipherFiles, DecryptOfAPlainFileIsIncorrect) {
  const std::string source = files.Write("plain.vtl", "[VANTREL]\r\nKey=PMP1\r\n");
  std::string error;
  EXPECT_FALSE(DecryptDescription(source, files.Path("out"), error));
  EXPECT_EQ(error, "Incorrect file !");
  EXPECT_EQ(testing::ReadBytes(files.Path("out")), "[VANTREL]\r\n");
}

// The shipped enciphered example must stay the encipherment of its plain text.
TEST_F(CipherFiles, ShippedExampleDeciphersToItsPlainText) {
  const std::string examples = testing::ExamplesDirectory();
  std::string error;
  ASSERT_TRUE(DecryptDescription(examples + "/PMP1_pumps.vtld", files.Path("out"), error)) << error;
  std::string plain = testing::ReadBytes(examples + "/PMP1_pumps.vtl");
  // The working copy ends every line in CR LF.
  std::string expected;
  for (char c : plain) {
    if (c == '\n' && (expected.empty() || expected.back() != '\r')) expected += '\r';
    expected += c;
  }
  EXPECT_EQ(testing::ReadBytes(files.Path("out")), expected);
}

}  // namespace
}  // namespace vantrel
