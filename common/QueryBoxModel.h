// The query box without its window: what it shows for a question, the answer of each way out,
// and its height. TvxQuery shows it.
#pragma once

#include "platform/UserPrompts.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

// The query box's modes, by the control that shows the value.
enum class QueryMode : int32_t { Text = 1, Combo = 2, Dropdown = 3, TextBlock = 4, List = 5 };

// The index of an answer given by the query box's third button.
inline constexpr int32_t QueryButtonIndex = -100;

class QueryBoxModel {
public:
  // Takes the question: a mode outside 1 to 5 counts as 1, the start text loses its trailing
  // blanks, the rows are the list from [1] on. Until a way out is taken the answer is Cancel's.
  explicit QueryBoxModel(const QueryRequest& request);

  const QueryRequest& request() const { return request_; }
  QueryMode Mode() const { return mode_; }
  // The text the mode's control starts with (modes 1, 2 and 4).
  const std::string& startText() const { return request_.list[0]; }
  std::vector<std::string> rows() const;
  // The row selected at the start (modes 3 and 5), from 0.
  int32_t startRow() const { return request_.index; }

  // The ways out. Accept takes what the mode's control holds: its text (modes 1, 2, 4) or its
  // selected row from 0, -1 for none (modes 3, 5). Closing the window is Cancel.
  void Accept(const std::string& text, int32_t row);
  void Cancel();
  void FButton();

  const std::string& Answer() const { return answer_.text; }
  int32_t AnswerIndex() const { return answer_.index; }
  const QueryAnswer& answer() const { return answer_; }

private:
  QueryRequest request_;
  QueryMode mode_ = QueryMode::Text;
  QueryAnswer answer_;
};

// What the window's height is made of, in twips, as the view measures it.
struct QueryMeasures {
  int32_t promptWidth = 0;      // the prompt label's width
  int32_t promptTextWidth = 0;  // the whole prompt on one line
  int32_t letterHeight = 0;     // the height of "R"
  int32_t controlHeight = 0;    // the mode's control
  int32_t buttonHeight = 0;     // the third button
  int32_t screenHeight = 0;
};

// The window's height in twips: room for the prompt's lines (its text wrapped at the label's
// width, its own line breaks and three more) and the control, at least 2400 for the block and
// the list and 2000 for the rest, the third button's row when shown. A height above the screen's
// becomes the screen's less 1200.
int32_t QueryHeight(const QueryBoxModel& model, const QueryMeasures& measures);

// SetForm: the top left corner that centres a window of this size on the screen.
struct FormPlace {
  int32_t top = 0;
  int32_t left = 0;
};
FormPlace SetForm(int32_t screenWidth, int32_t screenHeight, int32_t width, int32_t height);

}  // namespace tvx
