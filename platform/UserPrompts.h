// The one interface through which the system asks the user and tells the user things.
// The Qt implementation shows real boxes; the scripted one lets tests answer and read the texts.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace tvx {

// Flags of a message box, as the system passes them.
namespace msgbox {
inline constexpr int Ok = 0x0;
inline constexpr int YesNo = 0x4;
inline constexpr int FourButtons = 0x8;  // Yes, No, Yes To All and Cancel (fourButtonBox)
inline constexpr int Critical = 0x10;
inline constexpr int Question = 0x20;
inline constexpr int Exclamation = 0x30;
inline constexpr int SystemModal = 0x1000;
inline constexpr int IconMask = 0x70;
}  // namespace msgbox

// Results of a message box.
namespace answer {
inline constexpr int Ok = 1;
inline constexpr int Cancel = 2;
inline constexpr int Yes = 6;
inline constexpr int No = 7;
inline constexpr int YesToAll = 8;
}  // namespace answer

// A question for the query box.
struct QueryRequest {
  std::string title;
  std::string prompt;             // may hold CR LF
  std::vector<std::string> list;  // [0] the start text, the rows from [1] on
  int32_t mode = 1;               // 1 text, 2 text with proposals, 3 drop-down, 4 block, 5 list
  int32_t index = 0;              // the row selected at the start in modes 3 and 5, from 0
  bool showButton = false;        // shows a third button, captioned buttonCaption
  std::string buttonCaption;
};

// What the query box answered: the text and the way out (see AskQuery).
struct QueryAnswer {
  std::string text;
  int32_t index = -1;
};

class UserPrompts {
public:
  virtual ~UserPrompts() = default;
  // A modal message box; returns one of the answer values.
  virtual int messageBox(const std::string& prompt, int flags, const std::string& title) = 0;
  // The message box with Yes, No, Yes To All and Cancel; returns 6, 7, 8 or 2 (also on closing).
  virtual int fourButtonBox(const std::string& prompt, int flags, const std::string& title) = 0;
  // The modal query box.
  virtual QueryAnswer query(const QueryRequest& request) = 0;
  virtual void beep() = 0;
};

// Records every box, question and beep. Boxes are answered from a queue, Yes (or Ok) when it is
// empty; questions from a queue of their own, cancelled when it is empty.
class ScriptedPrompts : public UserPrompts {
public:
  struct Shown {
    std::string prompt;
    int flags = 0;
    std::string title;
  };

  int messageBox(const std::string& prompt, int flags, const std::string& title) override;
  int fourButtonBox(const std::string& prompt, int flags, const std::string& title) override;
  QueryAnswer query(const QueryRequest& request) override;
  void beep() override { ++beeps; }

  std::vector<Shown> shown;
  std::deque<int> answers;
  std::vector<QueryRequest> queries;
  std::deque<QueryAnswer> queryAnswers;
  int beeps = 0;

private:
  int nextAnswer(const std::string& prompt, int flags, const std::string& title, int unscripted);
};

}  // namespace tvx
