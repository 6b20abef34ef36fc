#include "common/QueryBoxModel.h"

#include "common/WholeNumber.h"

#include <algorithm>
#include <cstdlib>

namespace tvx {

namespace {

// The text of the third button's answer: one character that no typed answer holds.
const std::string ButtonAnswer(1, '\x01');

bool choosesRow(QueryMode mode) { return mode == QueryMode::Dropdown || mode == QueryMode::List; }

}  // namespace

QueryBoxModel::QueryBoxModel(const QueryRequest& request) : request_(request) {
  if (request_.mode >= 1 && request_.mode <= 5)
    mode_ = static_cast<QueryMode>(request_.mode);
  if (request_.list.empty())
    request_.list.emplace_back();
  std::string& start = request_.list[0];
  start.erase(start.find_last_not_of(' ') + 1);
}

std::vector<std::string> QueryBoxModel::rows() const {
  return {request_.list.begin() + 1, request_.list.end()};
}

void QueryBoxModel::Accept(const std::string& text, int32_t row) {
  if (!choosesRow(mode_)) {
    answer_ = {text, 0};
    return;
  }
  const bool valid = row >= 0 && size_t(row) + 1 < request_.list.size();
  answer_ = {valid ? request_.list[size_t(row) + 1] : std::string(), valid ? row + 1 : 0};
}

void QueryBoxModel::Cancel() { answer_ = {}; }

void QueryBoxModel::FButton() { answer_ = {ButtonAnswer, QueryButtonIndex}; }

int32_t QueryHeight(const QueryBoxModel& model, const QueryMeasures& measures) {
  const std::string& prompt = model.request().prompt;
  const int32_t textWidth = std::max(measures.promptWidth - 120, 1);
  const auto parts = int32_t(std::count(prompt.begin(), prompt.end(), '\n')) + 1;
  const int32_t lines = whole(double(measures.promptTextWidth) / textWidth) + parts + 3;
  const bool tall = model.Mode() == QueryMode::TextBlock || model.Mode() == QueryMode::List;
  int32_t height =
      std::max(measures.controlHeight + lines * measures.letterHeight, tall ? 2400 : 2000);
  if (model.request().showButton)
    height += 120 + measures.buttonHeight;
  if (height > measures.screenHeight)
    height = measures.screenHeight - 1200;
  return height;
}

FormPlace SetForm(int32_t screenWidth, int32_t screenHeight, int32_t width, int32_t height) {
  return {std::abs(screenHeight - height) / 2, std::abs(screenWidth - width) / 2};
}

}  // namespace tvx
