// Strings and tables that the suite's modules share through the kernel.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tvx {

class KernelStrings {
public:
  KernelStrings();

  // The text stored under name, or nullptr when the name was never set.
  const char* E_GetString(const std::string& name) const;
  void E_SetString(const std::string& name, const std::string& value);

  // The memory of table number, or nullptr for a number the kernel does not keep.
  uint8_t* E_SysTable(int32_t number);
  // Size in bytes of table number; 0 for an unknown number.
  static int32_t tableSize(int32_t number);

  static void E_MemCopy(void* target, const void* source, int32_t bytes);

private:
  std::map<std::string, std::string> strings_;
  std::map<int32_t, std::vector<uint8_t>> tables_;
};

}  // namespace tvx
