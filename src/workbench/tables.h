// The tables of questions, each in the order in which the description lists them.
#pragma once

#include <span>

#include "workbench/question.h"

namespace tessarlorn::workbench {

/// Which orders there are, and what each is.
std::span<const Question> OrderQuestions();
/// How much is to be done and was done.
std::span<const Question> FigureQuestions();
/// The log, bills, tasks and settings.
std::span<const Question> OfficeQuestions();

}  // namespace tessarlorn::workbench
