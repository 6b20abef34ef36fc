#include "platform/UserPrompts.h"

namespace tvx {

int ScriptedPrompts::nextAnswer(const std::string& prompt, int flags, const std::string& title,
                                int unscripted) {
  shown.push_back({prompt, flags, title});
  if (answers.empty())
    return unscripted;
  int a = answers.front();
  answers.pop_front();
  return a;
}

int ScriptedPrompts::messageBox(const std::string& prompt, int flags, const std::string& title) {
  return nextAnswer(prompt, flags, title,
                    (flags & 0xF) == msgbox::YesNo ? answer::Yes : answer::Ok);
}

int ScriptedPrompts::fourButtonBox(const std::string& prompt, int flags, const std::string& title) {
  return nextAnswer(prompt, flags, title, answer::Yes);
}

QueryAnswer ScriptedPrompts::query(const QueryRequest& request) {
  queries.push_back(request);
  if (queryAnswers.empty())
    return {};
  QueryAnswer a = queryAnswers.front();
  queryAnswers.pop_front();
  return a;
}

}  // namespace tvx
