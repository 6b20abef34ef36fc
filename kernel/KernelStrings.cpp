#include "kernel/KernelStrings.h"

#include <cstring>

namespace tvx {

namespace {
// Table numbers the kernel keeps, with their sizes in bytes.
struct TableSize {
  int32_t number;
  int32_t bytes;
};
constexpr TableSize TableSizes[] = {{1, 64},  {2, 32},  {5, 104}, {6, 104}, {7, 28}, {8, 20},
                                    {9, 192}, {10, 12}, {11, 4},  {17, 4},  {18, 4}, {21, 128}};
}  // namespace

KernelStrings::KernelStrings() {
  for (const TableSize& t : TableSizes)
    tables_[t.number].assign(size_t(t.bytes), 0);
}

const char* KernelStrings::E_GetString(const std::string& name) const {
  auto it = strings_.find(name);
  return it == strings_.end() ? nullptr : it->second.c_str();
}

void KernelStrings::E_SetString(const std::string& name, const std::string& value) {
  strings_[name] = value;
}

uint8_t* KernelStrings::E_SysTable(int32_t number) {
  auto it = tables_.find(number);
  return it == tables_.end() ? nullptr : it->second.data();
}

int32_t KernelStrings::tableSize(int32_t number) {
  for (const TableSize& t : TableSizes)
    if (t.number == number)
      return t.bytes;
  return 0;
}

void KernelStrings::E_MemCopy(void* target, const void* source, int32_t bytes) {
  if (target && source && bytes > 0)
    std::memmove(target, source, size_t(bytes));
}

}  // namespace tvx
