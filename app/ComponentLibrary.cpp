// The component library's own translation unit: the subsystems are linked in whole.
namespace tvx {
const char* componentName() { return "TVNGBRVIEWER"; }
}  // namespace tvx
