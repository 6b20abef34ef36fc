// The system's questions and messages: every caller goes through these, and they reach the user
// through UserPrompts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

class KernelStrings;
class UserPrompts;

// Beeps and asks the query box. list[0] is the start text and takes the answer, the rows follow
// from [1]; index is the row selected at the start in modes 3 and 5, from 0. Out, in the result
// and list[0]: the text (accepted: the control's text, or the chosen row's; cancelled or closed:
// empty; the third button: one character of code 1), and in index the way out (0 for a text,
// the row + 1 for a choice, -1 cancelled, -100 the third button).
std::string AskQuery(UserPrompts& prompts, const std::string& title, const std::string& prompt,
                     std::vector<std::string>& list, int32_t mode, int32_t& index,
                     bool showButton = false, const std::string& buttonCaption = {});

// A line of text with a start text, without a beep; empty when cancelled.
std::string AskText(UserPrompts& prompts, const std::string& prompt, const std::string& title,
                    const std::string& defaultText);

// A message box: flags with 8 give the box with Yes, No, Yes To All and Cancel, other flags the
// platform's box. Returns the answer (see UserPrompts.h).
int ShowMessage(UserPrompts& prompts, const std::string& prompt, int flags,
                const std::string& title);
// The same, titled with the suite's name (the kernel string "PRODUCT_NAME") when title is empty.
int ShowMessage(UserPrompts& prompts, const KernelStrings& strings, const std::string& prompt,
                int flags, const std::string& title = {});

}  // namespace tvx
