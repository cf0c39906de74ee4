#include "description/cipher.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "description/description_files.h"

namespace vantrel {
namespace {

// The key spelled out here on purpose, so that a changed key in the code is noticed.
const std::string kKey = "QzPlume_Cloak-4";

char Shift(char c, size_t keyPosition) {
  return static_cast<char>(c + kKey[keyPosition]);
}

// The shipped example holds an [INFO] section, empty lines, long lines and several
// sections: the key, its moves and the plain sections all show in its bytes.
TEST(Cipher, ShippedExampleDeciphersToItsPlainText) {
  const std::string examples = testing::ExamplesDirectory();
  std::string expected;  // deciphered lines end in CR LF
  for (char c : testing::ReadBytes(examples + "/PMP1_pumps.vtl")) {
    if (c == '\n' && (expected.empty() || expected.back() != '\r')) expected += '\r';
    expected += c;
  }
  std::string error;
  EXPECT_EQ(DecryptDescription(examples + "/PMP1_pumps.vtld", error), expected) << error;
}

TEST(Cipher, SevenBitTextRoundTripsWithCrLfLineEnds) {
  std::string printable;
  for (int c = 32; c < 127; ++c)
    printable += static_cast<char>(c);
  const std::string plain = "[VANTREL]\nApp=x\n" + printable + "\n\tTabbed=1\r[S]\rk=v";
  EXPECT_EQ(DecipherText(EncipherText(plain)),
            "[VANTREL]\r\nApp=x\r\n" + printable + "\r\n\tTabbed=1\r\n[S]\r\nk=v\r\n");
}

// Characters from 128 encipher as code 127; an empty line does not move the key; only
// sections whose name holds "INFO" in capitals stay plain.
TEST(Cipher, WideCharactersEmptyLinesAndInfoSections) {
  const std::string enciphered =
      EncipherText("[S]\n\xE9=1\n\na\n[MYINFO]\nmore\n[info]\na\n" + std::string(16, 'b'));
  std::string bs;
  for (size_t i = 0; i < 16; ++i)
    bs += Shift('b', (i + 1) % 15);
  EXPECT_EQ(enciphered, std::string("[S]\r\n") + static_cast<char>('Q' + 127) + Shift('=', 1) +
                            Shift('1', 2) + "\r\n\r\n" + Shift('a', 1) +
                            "\r\n[MYINFO]\r\nmore\r\n" + "[info]\r\n" + Shift('a', 0) + "\r\n" +
                            bs + "\r\n");
  EXPECT_EQ(DecipherText(enciphered).value_or("").substr(0, 10), "[S]\r\n\x7F=1\r\n");
}

TEST(CipherFiles, EncryptWritesASiblingVtldOrSaysItCannot) {
  testing::DescriptionFiles files;
  EXPECT_EQ(EncryptDescription(files.Write("plain", "[S]\r\nk=v\r\n")), "Cryptage successful !");
  EXPECT_EQ(testing::ReadBytes(files.Path("plain.vtld")), EncipherText("[S]\nk=v\n"));
  EXPECT_EQ(EncryptDescription(files.Path("missing.vtl")), "Cannot open file ");
  EXPECT_FALSE(std::filesystem::exists(files.Path("missing.vtld")));
  std::filesystem::create_directory(files.Path("blocked.vtld"));  // destination cannot open
  EXPECT_EQ(EncryptDescription(files.Write("blocked.vtl", "k=v")), "Cannot open file ");
  std::filesystem::create_directory(files.Path("folder.vtl"));
  EXPECT_EQ(EncryptDescription(files.Path("folder.vtl")), "Cannot open file ");
  // Nor is a folder, device or pipe read as a description: reading one fails or never ends.
  std::filesystem::create_directory(files.Path("folder.vtld"));
  std::filesystem::create_symlink("/dev/zero", files.Path("zero.vtld"));
  for (const char* name : {"folder.vtld", "zero.vtld"}) {
    std::string error;
    EXPECT_FALSE(DecryptDescription(files.Path(name), error).has_value()) << name;
    EXPECT_EQ(error, "Not a regular file !") << name;
  }
}

// A link in the destination's place is replaced, never written through; an enciphered file
// is not enciphered again.
TEST(CipherFiles, EncryptNeverWritesThroughALinkNorEnciphersTwice) {
  testing::DescriptionFiles files;
  const std::string notes = files.Write("notes.txt", "keep");
  std::filesystem::create_symlink(notes, files.Path("P.vtld"));
  EXPECT_EQ(EncryptDescription(files.Write("P.vtl", "[S]\r\nk=v\r\n")), "Cryptage successful !");
  EXPECT_EQ(testing::ReadBytes(notes), "keep");
  EXPECT_FALSE(std::filesystem::is_symlink(files.Path("P.vtld")));
  EXPECT_EQ(testing::ReadBytes(files.Path("P.vtld")), EncipherText("[S]\nk=v\n"));
  EXPECT_EQ(EncryptDescription(files.Path("P.vtld")), "File already enciphered !");
  EXPECT_EQ(testing::ReadBytes(files.Path("P.vtld")), EncipherText("[S]\nk=v\n"));
  EXPECT_FALSE(std::filesystem::exists(files.Path("P.vtld.part")));
}

}  // namespace
}  // namespace vantrel
