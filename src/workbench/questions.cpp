#include <algorithm>
#include <vector>

#include "workbench/question.h"
#include "workbench/tables.h"

namespace tessarlorn::workbench {

std::span<const Question> Questions() {
  static const std::vector<Question> all = [] {
    std::vector<Question> questions;
    for (const std::span<const Question> table : {OrderQuestions(), FigureQuestions(), OfficeQuestions()}) {
      questions.insert(questions.end(), table.begin(), table.end());
    }
    return questions;
  }();
  return all;
}

const Question* FindQuestion(std::string_view name) {
  const std::span<const Question> questions = Questions();
  const auto found =
      std::find_if(questions.begin(), questions.end(), [&](const Question& question) { return question.name == name; });
  return found == questions.end() ? nullptr : &*found;
}

}  // namespace tessarlorn::workbench
