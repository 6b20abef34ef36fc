#include "store/LayerSymbol.h"

#include "platform/SystemServices.h"

#include <string_view>

namespace tvx {

namespace {
std::string_view trimmed(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && blank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && blank(text.back()))
    text.remove_suffix(1);
  return text;
}
}  // namespace

void EnsureSymbol(Store& store, SymbolId id, const std::string& name, bool replace,
                  bool deadEntry) {
  if (const ObjectHandle symbol = store.S_Symbol(id); symbol != ObjectHandle::None) {
    bool remove = replace;
    if (!remove) {
      const std::string stored = SystemServices::StringFromPointer(store.O_GetName(symbol));
      remove = trimmed(stored) != trimmed(name);
    }
    if (remove)
      store.OM_Delete(store.DB_SymbMap(), id);
  }
  // When the store refuses the symbol it stays without one and reads as empty.
  if (store.S_Symbol(id) != ObjectHandle::None || store.S_CreateSymbol(id, name) != id)
    return;
  if (deadEntry) {
    const int32_t entry = store.S_InsertEntry(id, -1, 0, 0);
    if (entry > 0)
      store.O_Mask(store.S_Entry(id, entry), 0, -1);
  }
  store.O_Mask(store.S_Symbol(id), attr::MadeBySystem, attr::MadeBySystem);
}

}  // namespace tvx
