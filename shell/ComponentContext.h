// The owner objects a component works with. Whoever creates the component (the host, a test)
// creates them first and keeps them alive as long as the component.
#pragma once

namespace tvx {

struct Kernel;
class SystemServices;
class UserPrompts;

struct ComponentContext {
  Kernel& kernel;
  SystemServices& services;
  UserPrompts& prompts;
};

}  // namespace tvx
