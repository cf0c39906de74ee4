#include "crypt_command.h"

#include <cstdio>

#include "description/cipher.h"

namespace vantrel::cli {

int Crypt(const std::vector<std::string>& files) {
  int status = 0;
  for (const std::string& file : files) {
    const std::string result = EncryptDescription(file);
    std::printf("%s: %s\n", file.c_str(), result.c_str());
    if (result != "Cryptage successful !") status = 1;
  }
  return status;
}

}  // namespace vantrel::cli
